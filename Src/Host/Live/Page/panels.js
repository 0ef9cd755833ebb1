// The panels beside the screen: which are open, kept over reloads of the page, and which topics they need.
import { button, el, store, stored } from "./dom.js";

const kKey = "avsk.live.panels";
const kClosedAtFirst = ["commands", "calls", "findings"];

// A panel: {id, title, column, topics, content, whenShown}
export class Panels {
  constructor(connection) {
    this.connection = connection;
    this.closed = new Set(stored(kKey, kClosedAtFirst));
    this.toggles = document.getElementById("toggles");
  }

  add(panel) {
    const heading = `${panel.id}-heading`;
    const close = button("×", () => {
      this.set(panel, false);
      toggle.focus();
    }, { class: "close", "aria-label": `Close ${panel.title}`, title: "Close" });
    const section = el("section", { id: panel.id, class: "panel", "aria-labelledby": heading },
      el("header", {}, el("h2", { id: heading }, panel.title), ...(panel.tools ?? []), close),
      el("div", { class: "body" }, ...panel.content));
    const toggle = button(panel.title, () => this.set(panel, section.hidden), { "aria-controls": panel.id });
    this.toggles.append(toggle);
    document.getElementById(panel.column).append(section);
    Object.assign(panel, { section, toggle });
    this.show(panel);
  }

  set(panel, open) {
    if (open)
      this.closed.delete(panel.id);
    else
      this.closed.add(panel.id);
    store(kKey, [...this.closed]);
    this.show(panel);
  }

  show(panel) {
    const open = !this.closed.has(panel.id);
    panel.section.hidden = !open;
    panel.toggle.setAttribute("aria-pressed", String(open));
    const column = panel.section.parentElement;
    column.hidden = [...column.children].every((section) => section.hidden);
    this.connection.want(panel.id, open ? panel.topics : []);
    if (open)
      panel.whenShown?.();
  }
}
