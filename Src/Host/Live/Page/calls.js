// Panel "Calls": the newest calls between plugins, library and host.
import { button, el, setText } from "./dom.js";
import { Lines } from "./lines.js";

const kPause = 200; // milliseconds after the last key before the filter is used

export function callsPanel({ connection, say }) {
  let paused = false;
  let timer = 0;
  const lines = new Lines({ label: "Calls", kind: "lines", empty: "No calls yet." });
  const ask = () => connection.send({ do: "calls", filter: filter.value.trim(), paused });
  const filter = el("input", {
    type: "search", placeholder: "function or plugin, * is any text", "aria-label": "Filter of calls", spellcheck: "false",
    oninput: () => {
      clearTimeout(timer);
      timer = setTimeout(() => {
        lines.set([]);
        ask();
      }, kPause);
    },
  });
  const pause = button("Pause", () => {
    paused = !paused;
    setText(pause, paused ? "Go on" : "Pause");
    ask();
  });
  const file = button("Save the trace", async () => {
    const answer = await connection.ask({ do: "trace" });
    if (!answer.ok) {
      say(answer.text, false);
      return;
    }
    const url = URL.createObjectURL(new Blob([answer.text], { type: "application/json" }));
    el("a", { href: url, download: "trace.json" }).click();
    URL.revokeObjectURL(url);
    say("trace.json is saved. Perfetto and Chromium's tracing page open it.", true);
  });
  connection.on("calls", (state) => {
    if (state.gap > 0)
      lines.add([`… ${state.gap} lines were left out`], "muted");
    lines.add(state.lines ?? []);
  });
  connection.on("fresh", () => lines.set([]));
  connection.on("hello", ask);
  return {
    id: "calls", title: "Calls", column: "second", topics: ["calls"], tools: [filter, pause, file], content: [lines.element], whenShown: ask,
  };
}
