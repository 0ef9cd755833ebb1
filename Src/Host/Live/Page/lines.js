// A list of lines that grows at its end and follows it, unless the reader has scrolled up or chosen a line.
import { oncePerRepaint } from "./dom.js";
import { List } from "./list.js";

const kKept = 500;
const kNear = 24; // pixels from the end

export class Lines {
  constructor(properties) {
    this.lines = [];
    this.last = 0;
    this.list = new List({ ...properties, key: (line) => line.n,
      cells: (line) => [{ text: line.text, class: line.class }] });
    this.element = this.list.element;
    const { body } = this.list;
    this.follows = true;
    body.addEventListener("scroll", () => {
      this.follows = body.scrollHeight - body.scrollTop - body.clientHeight < kNear;
    });
    this.toEnd = oncePerRepaint(() => { body.scrollTop = body.scrollHeight; });
  }

  get newest() { return this.lines.at(-1)?.text ?? null; }
  get chosen() { return this.list.item?.text ?? null; }

  add(texts, kind = null) {
    this.show([...this.lines, ...texts.map((text) => ({ n: ++this.last, text, class: kind }))]);
  }

  // All lines, or the last ones if some are omitted before them.
  set(texts, omitted = 0) {
    const note = omitted > 0 ? [{ n: -1, text: `… ${omitted} lines before`, class: "muted" }] : [];
    this.show([...note, ...texts.map((text, n) => ({ n: n + omitted, text })).filter(({ text }) => text !== "")]);
  }

  show(lines) {
    this.lines = lines.slice(-kKept);
    this.list.show(this.lines);
    if (this.follows)
      this.toEnd();
  }
}
