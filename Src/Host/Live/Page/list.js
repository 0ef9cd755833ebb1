// A list of rows of which one can be chosen, by mouse or with the arrow keys. It is one tab stop. Rows have keys and
// are changed in place, so a list that changes ten times a second keeps its choice and its place.
import { el, newId, oncePerRepaint, setAttribute, setText } from "./dom.js";

const kPage = 10;

export class List {
  // key(item), cells(item): texts or {text, class, title}; choose(item): null if the choice is gone; open(item): Enter
  constructor({ label, kind, heads = null, key, cells, choose = () => {}, open = null, level = null, empty = "" }) {
    Object.assign(this, { key, cells, choose, open, level });
    this.id = newId("list");
    this.items = [];
    this.rows = new Map(); // key -> {element, item}
    this.chosen = null;
    this.body = el("div", {
      role: level ? "tree" : "listbox", "aria-label": label, tabindex: "0", class: "rows",
      onkeydown: (event) => this.move(event),
      onclick: (event) => this.click(event),
      ondblclick: () => this.openChosen(),
    });
    this.heads = heads && el("div", { class: "heads row", "aria-hidden": "true" },
      ...heads.map((head) => el("span", {}, head)));
    this.empty = el("p", { class: "empty" }, empty);
    this.element = el("div", { class: `list ${kind}` }, this.heads, this.body, this.empty);
    this.show([]);
  }

  get item() { return this.rows.get(this.chosen)?.item ?? null; }

  show(items) {
    const kept = new Map(items.map((item) => [String(this.key(item)), item]));
    for (const [key, row] of this.rows) {
      if (!kept.has(key)) {
        row.element.remove();
        this.rows.delete(key);
      }
    }
    let place = this.body.firstElementChild;
    for (const [key, item] of kept) {
      const row = this.rows.get(key) ?? this.add(key);
      if (row.item !== item) {
        row.item = item;
        this.write(row);
      }
      if (row.element === place)
        place = place.nextElementSibling;
      else
        this.body.insertBefore(row.element, place);
    }
    this.items = items;
    this.empty.hidden = items.length > 0;
    if (this.heads)
      this.heads.hidden = items.length === 0;
    if (this.chosen !== null && !this.rows.has(this.chosen))
      this.select(null);
    else if (this.chosen !== null)
      this.choose(this.item);
  }

  add(key) {
    const element = el("div", { role: this.level ? "treeitem" : "option", id: newId(this.id), class: "row",
      "aria-selected": "false" });
    element.dataset.key = key;
    const row = { element, item: null };
    this.rows.set(key, row);
    return row;
  }

  write(row) {
    this.cells(row.item).forEach((given, i) => {
      const cell = typeof given === "object" ? given : { text: given };
      const element = row.element.children[i] ?? row.element.appendChild(el("span"));
      setText(element, cell.text);
      setAttribute(element, "class", cell.class || null);
      setAttribute(element, "title", cell.title || null);
    });
    if (this.level) {
      const { depth, share } = this.level(row.item);
      setAttribute(row.element, "aria-level", depth + 1);
      row.element.style.setProperty("--depth", depth);
      row.element.style.setProperty("--share", share);
    }
  }

  select(key) {
    this.rows.get(this.chosen)?.element.setAttribute("aria-selected", "false");
    this.chosen = key;
    const row = this.rows.get(key);
    row?.element.setAttribute("aria-selected", "true");
    setAttribute(this.body, "aria-activedescendant", row?.element.id ?? null);
    this.choose(row?.item ?? null);
    this.scrollToChosen();
  }

  // Scrolls the list only, and after the details below it have taken their room.
  scrollToChosen = oncePerRepaint(() => {
    const element = this.rows.get(this.chosen)?.element;
    if (!element)
      return;
    const { offsetTop: top, offsetHeight: height } = element;
    this.body.scrollTop = Math.min(Math.max(this.body.scrollTop, top + height - this.body.clientHeight), top);
  });

  click(event) {
    const element = event.target.closest("[data-key]");
    if (element)
      this.select(element.dataset.key);
  }

  openChosen() {
    if (this.open && this.item)
      this.open(this.item);
  }

  move(event) {
    const elements = [...this.body.children];
    const last = elements.length - 1;
    const now = elements.findIndex((element) => element.dataset.key === this.chosen);
    const goal = {
      ArrowDown: now + 1, ArrowUp: now < 0 ? last : now - 1, PageDown: now + kPage, PageUp: now - kPage, Home: 0,
      End: last,
    }[event.key];
    if (event.key === "Enter")
      this.openChosen();
    else if (event.key === "Escape")
      this.select(null);
    else if (goal !== undefined && last >= 0)
      this.select(elements[Math.min(Math.max(goal, 0), last)].dataset.key);
    else
      return;
    event.preventDefault();
  }
}
