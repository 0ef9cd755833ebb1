// Panel "Calls": the newest calls between plugins, library and host.
import { button, el, setText } from "./dom.js";

const kPause = 200;  // milliseconds after the last key before the filter is used
const kRepaint = 250; // milliseconds: thousands of calls a second are more than a reader follows
const kKept = 300;    // lines

export function callsPanel({ connection, say }) {
  let paused = false;
  let timer = 0;
  let lines = [];
  let repaint = 0;
  const shown = el("pre", { class: "calls", tabindex: "0", role: "region", "aria-label": "Calls" });

  // Follows the end unless the reader has scrolled up.
  function show() {
    repaint = 0;
    const follows = shown.scrollHeight - shown.scrollTop - shown.clientHeight < 24;
    setText(shown, lines.join("\n") || "No calls yet.");
    if (follows)
      shown.scrollTop = shown.scrollHeight;
  }

  function add(fresh) {
    lines = [...lines, ...fresh].slice(-kKept);
    repaint ||= setTimeout(show, kRepaint);
  }

  const ask = () => connection.send({ do: "calls", filter: filter.value.trim(), paused });
  const filter = el("input", {
    type: "search", placeholder: "function or plugin, * is any text", "aria-label": "Filter of calls",
    spellcheck: "false",
    oninput: () => {
      clearTimeout(timer);
      timer = setTimeout(() => {
        lines = [];
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
    add([...(state.gap > 0 ? [`… ${state.gap} lines are left out`] : []), ...(state.lines ?? [])]);
  });
  connection.on("fresh", () => { lines = []; });
  connection.on("hello", ask);
  return {
    id: "calls", title: "Calls", column: "second", topics: ["calls"], tools: [filter, pause, file], content: [shown],
    whenShown: ask,
  };
}
