// The menu bar of the simulator as the usual widget: arrows move, Enter and Space pick, Escape closes.
import { el } from "./dom.js";
import { quoted } from "./session.js";

const isSeparator = (item) => item.name === "-";

// All items of all menus with their paths, for lists.
export function flatItems(menus) {
  const flat = [];
  const add = (items, depth) => {
    for (const item of items) {
      if (isSeparator(item))
        continue;
      flat.push({ ...item, depth, isMenu: item.items.length > 0 });
      add(item.items, depth + 1);
    }
  };
  for (const menu of menus)
    add(menu.items, 0);
  return flat;
}

export class MenuBar {
  constructor(connection, pick) {
    this.element = document.getElementById("menubar");
    this.pick = pick;
    this.shown = "";
    this.bar = el("div", { role: "menubar", "aria-label": "Menus of the simulator",
      onkeydown: (event) => this.key(event) });
    this.element.append(this.bar);
    document.addEventListener("pointerdown", (event) => {
      if (!this.bar.contains(event.target))
        this.closeAll();
    });
    this.bar.addEventListener("focusout", (event) => {
      if (event.relatedTarget && !this.bar.contains(event.relatedTarget))
        this.closeAll();
    });
    connection.on("menus", ({ menus }) => this.show(menus));
  }

  // An open menu is not replaced while it is used.
  show(menus) {
    const text = JSON.stringify(menus);
    if (text === this.shown)
      return;
    this.shown = text;
    const open = [...this.bar.querySelectorAll("[aria-expanded=true]")].map((item) => item.dataset.path);
    const focused = this.bar.contains(document.activeElement) ? document.activeElement.dataset.path : null;
    const top = menus.map((menu, i) => this.make({ ...menu, path: menu.name, enabled: true }, i === 0));
    this.bar.replaceChildren(...top);
    for (const item of this.bar.querySelectorAll("[role^=menuitem]")) {
      if (open.includes(item.dataset.path))
        item.setAttribute("aria-expanded", "true");
      if (item.dataset.path === focused)
        item.focus();
    }
  }

  make(item, first = false) {
    if (isSeparator(item))
      return el("div", { role: "separator" });
    const marked = item.mark === "checked" || item.mark === "unchecked";
    const hasItems = item.items.length > 0;
    const label = el("span", {
      role: marked ? "menuitemcheckbox" : "menuitem", tabindex: first ? "0" : "-1", class: "item",
      "aria-checked": marked ? String(item.mark === "checked") : null,
      "aria-disabled": item.enabled ? null : "true",
      "aria-haspopup": hasItems ? "true" : null, "aria-expanded": hasItems ? "false" : null,
      onclick: () => this.act(label),
    }, item.name);
    label.dataset.path = item.path;
    const group = hasItems ? el("div", { role: "menu", "aria-label": item.name },
      ...item.items.map((inner) => this.make(inner))) : null;
    return el("div", { role: "none", class: "holder" }, label, group);
  }

  act(label) {
    if (label.hasAttribute("aria-expanded"))
      this.toggle(label);
    else if (label.getAttribute("aria-disabled") !== "true") {
      this.closeAll();
      this.bar.querySelector("[role=menuitem]").focus();
      this.pick(`menu ${quoted(label.dataset.path)}`);
    }
  }

  toggle(label, open = label.getAttribute("aria-expanded") !== "true") {
    for (const other of label.parentElement.parentElement.querySelectorAll("[aria-expanded=true]"))
      other.setAttribute("aria-expanded", "false");
    label.setAttribute("aria-expanded", String(open));
  }

  closeAll() {
    for (const label of this.bar.querySelectorAll("[aria-expanded=true]"))
      label.setAttribute("aria-expanded", "false");
  }

  itemsOf(group) { return [...group.querySelectorAll(":scope > .holder > .item")]; }

  enter(label) {
    this.toggle(label, true);
    this.itemsOf(label.nextElementSibling)[0]?.focus();
  }

  key(event) {
    const label = event.target.closest(".item");
    if (!label)
      return;
    const group = label.parentElement.parentElement;
    const outer = group === this.bar ? null : group.previousElementSibling;
    const items = this.itemsOf(group);
    const at = items.indexOf(label);
    const step = (by) => items[(at + by + items.length) % items.length].focus();
    const hasItems = label.hasAttribute("aria-expanded");
    const leave = () => {
      if (!outer)
        return this.closeAll();
      this.toggle(outer, false);
      outer.focus();
    };
    const actions = {
      Enter: () => (hasItems ? this.enter(label) : this.act(label)),
      " ": () => (hasItems ? this.enter(label) : this.act(label)),
      ArrowDown: () => (outer ? step(1) : hasItems && this.enter(label)),
      ArrowUp: () => outer && step(-1),
      ArrowRight: () => (!outer ? step(1) : hasItems && this.enter(label)),
      ArrowLeft: () => (outer ? leave() : step(-1)),
      Home: () => items[0].focus(),
      End: () => items.at(-1).focus(),
      Escape: leave,
    };
    if (!actions[event.key])
      return;
    event.preventDefault();
    actions[event.key]();
  }
}
