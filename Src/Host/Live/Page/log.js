// Panel "Log": what plugins and library have logged.
import { button, el } from "./dom.js";
import { Lines } from "./lines.js";
import { quoted } from "./session.js";

const kAnnounced = 3;       // lines
const kBetween = 2000; // milliseconds between two announcements

export function logPanel({ connection, expect, say }) {
  const lines = new Lines({ label: "Log", kind: "lines", empty: "Nothing is logged yet." });
  const spoken = el("div", { role: "log", "aria-live": "polite", class: "unseen" });
  let fresh = [];
  let timer = 0;

  // A reader is told the newest lines, and not each of hundreds.
  function announce() {
    timer = 0;
    spoken.replaceChildren(...fresh.slice(-kAnnounced).map((text) => el("p", {}, text)));
    fresh = [];
  }

  connection.on("log", (state) => {
    if (state.gap > 0)
      lines.add([`… ${state.gap} lines were left out`], "muted");
    const texts = (state.lines ?? []).filter((line) => line !== "");
    lines.add(texts);
    fresh.push(...texts);
    timer ||= setTimeout(announce, kBetween);
  });
  connection.on("fresh", () => lines.set([]));

  const expectLine = button("Expect this line", () => {
    const text = lines.chosen ?? lines.newest;
    if (text === null)
      say("Nothing is logged yet.", false);
    else
      expect(`expect log ${quoted(text)}`);
  }, { title: "The chosen line, or the newest" });
  return { id: "log", title: "Log", column: "dock", topics: ["log"], tools: [expectLine],
    content: [lines.element, spoken] };
}
