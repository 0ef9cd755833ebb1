// Panel "Time": a bar for each frame, stacked by plugin, with the budget's line. A chosen frame shows its calls.
import { Field, button, el, oncePerRepaint, setAttribute, setText, store, stored } from "./dom.js";
import { List } from "./list.js";
import { colour, style } from "./plot.js";

const kKept = 1200;     // frames
const kBar = 4;         // pixels of a bar with its gap
const kHeight = 120;    // pixels
const kLeast = 0.05;    // milliseconds: the smallest scale
const kShown = 0.0005; // milliseconds: less is left out of the legend
const kMost = 8;        // plugins with a colour of their own
const kHint = "Click a bar, or choose one with the arrow keys; Page Up and Page Down find those over the budget";
const kBudgetKey = "avsk.live.budget";

// A round number above the highest bar, so that the scale stays calm.
function roundUp(value) {
  const power = 10 ** Math.floor(Math.log10(value));
  return [1, 2, 5, 10].map((factor) => factor * power).find((round) => round >= value);
}

export function timePanel({ connection }) {
  let frames = [];
  let held = null; // the frames as they were when one was chosen
  let chosen = null;
  let budget = stored(kBudgetKey, 2);
  let plugins = []; // in the order in which they were seen, which is that of their colours
  let omitted = ""; // says that calls of the chosen frame are missing

  const canvas = el("canvas", {
    tabindex: "0", role: "slider", "aria-label": "Frame", title: kHint,
    "aria-valuemin": "0", "aria-valuemax": "0", "aria-valuenow": "0",
    "aria-valuetext": "no frame is chosen", onclick: (event) => click(event), onkeydown: (event) => key(event),
  });
  const box = el("div", { class: "bars" }, canvas);
  const legend = el("ul", { class: "legend", "aria-label": "Plugins in the bars" });
  const said = el("p", { class: "about" });
  const follow = button("Follow", () => choose(null), { hidden: true });
  const limit = new Field({
    label: "Budget, ms", size: "5", inputmode: "decimal", value: String(budget),
    check: (text) => (Number(text) > 0 ? "" : "A number above 0."),
    submit: (text) => {
      budget = Number(text);
      store(kBudgetKey, budget);
      askBudget();
      draw();
    },
  });
  limit.input.addEventListener("change", () => limit.send());
  const calls = new List({
    label: "Calls of the frame", kind: "tree", heads: ["Call", "ms"], empty: "",
    key: (call) => call.n,
    cells: (call) => [
      { text: `${call.plugin}  ${call.name}`, title: `${call.start.toFixed(3)} ms after the first call` },
      { text: call.ms.toFixed(3), class: "number" }],
    level: (call) => ({ depth: call.depth, share: call.share }),
  });
  calls.element.hidden = true;

  const shown = () => (held ?? frames).slice(-Math.max(1, Math.floor(box.clientWidth / kBar)));
  const isOver = (frame) => Object.values(frame.plugins).some((ms) => ms > budget);
  const askBudget = () => connection.send({ do: "budget", milliseconds: budget });
  const series = (name) => Math.min(plugins.indexOf(name), kMost);

  const draw = oncePerRepaint(() => {
    const width = box.clientWidth;
    if (width === 0)
      return;
    const dense = devicePixelRatio;
    if (canvas.width !== width * dense || canvas.height !== kHeight * dense) {
      canvas.width = width * dense;
      canvas.height = kHeight * dense;
    }
    const bars = shown();
    const heights = bars.map((frame) => Object.values(frame.plugins).reduce((a, b) => a + b, 0));
    const scale = roundUp(Math.max(kLeast, ...heights));
    const context = canvas.getContext("2d");
    const top = 10; // room for the marks of slow frames
    const y = (ms) => kHeight - ms / scale * (kHeight - top);
    const colours = [...Array(kMost).keys()].map(colour).concat(style("--muted"));
    context.setTransform(dense, 0, 0, dense, 0, 0);
    context.clearRect(0, 0, width, kHeight);
    context.fillStyle = style("--line");
    for (const part of [0.25, 0.5, 0.75, 1])
      context.fillRect(0, Math.round(y(scale * part)), width, 1);
    bars.forEach((frame, i) => {
      const x = width - (bars.length - i) * kBar;
      if (frame.frame === chosen) {
        context.fillStyle = style("--chosen");
        context.fillRect(x - 1, 0, kBar + 1, kHeight);
      }
      let sum = 0;
      for (const name of plugins) {
        const ms = frame.plugins[name] ?? 0;
        if (ms === 0)
          continue;
        context.fillStyle = colours[series(name)];
        context.fillRect(x, y(sum + ms), kBar - 1, Math.max(y(sum) - y(sum + ms), 0.5));
        sum += ms;
      }
      if (isOver(frame)) {
        context.fillStyle = style("--bad");
        context.beginPath();
        context.moveTo(x - 1, 1);
        context.lineTo(x + kBar, 1);
        context.lineTo(x + kBar / 2, 8);
        context.fill();
      }
    });
    context.font = `11px ${style("--mono")}`;
    context.fillStyle = style("--muted");
    context.fillText(`${scale} ms`, 3, y(scale) + 11);
    if (budget <= scale) {
      context.fillText(`budget ${budget} ms`, 3, y(budget) - 4);
      context.strokeStyle = style("--bad");
      context.setLineDash([6, 4]);
      context.beginPath();
      context.moveTo(0, Math.round(y(budget)) + 0.5);
      context.lineTo(width, Math.round(y(budget)) + 0.5);
      context.stroke();
      context.setLineDash([]);
    }
    describe(bars);
  });

  function describe(bars) {
    const frame = bars.find(({ frame: number }) => number === chosen);
    setAttribute(canvas, "aria-valuemin", bars[0]?.frame ?? 0);
    setAttribute(canvas, "aria-valuemax", bars.at(-1)?.frame ?? 0);
    setAttribute(canvas, "aria-valuenow", chosen ?? bars.at(-1)?.frame ?? 0);
    const slow = bars.filter(isOver).length;
    const over = frame && isOver(frame) ? ", over the budget" : "";
    const text = frame
      ? `Frame ${frame.frame}: ${frame.total.toFixed(3)} ms in plugins and library${over}${omitted}`
      : `${bars.length} frames, ${slow} over the budget (▼). Below is the worst of each plugin, in ms.`;
    setText(said, text);
    setAttribute(canvas, "aria-valuetext", frame ? text : "no frame is chosen");
    [...legend.children].forEach((item, i) => {
      const ms = frame ? frame.plugins[plugins[i]] : Math.max(...bars.map((bar) => bar.plugins[plugins[i]] ?? 0));
      item.hidden = !(ms >= kShown);
      setText(item.querySelector("output"), item.hidden ? "" : ms.toFixed(3));
    });
  }

  function choose(number) {
    chosen = number;
    held = number === null ? null : (held ?? [...frames]);
    follow.hidden = number === null;
    calls.element.hidden = number === null;
    calls.show([]);
    omitted = "";
    if (number !== null)
      connection.send({ do: "frame-calls", frame: number });
    draw();
  }

  function click(event) {
    const bars = shown();
    const fromRight = (box.clientWidth - (event.clientX - canvas.getBoundingClientRect().left)) / kBar;
    const frame = bars[bars.length - Math.ceil(fromRight)];
    if (frame)
      choose(frame.frame);
  }

  // The slowest is found with Page Up and Page Down: they go to the next frame over the budget.
  function key(event) {
    const bars = shown();
    const at = bars.findIndex((frame) => frame.frame === chosen);
    const before = at < 0 ? bars.length : at;
    const goal = {
      ArrowLeft: () => bars[before - 1], ArrowDown: () => bars[before - 1], ArrowRight: () => bars[at + 1],
      ArrowUp: () => bars[at + 1],
      Home: () => bars[0], End: () => bars.at(-1),
      PageUp: () => bars.slice(0, before).findLast(isOver), PageDown: () => bars.slice(at + 1).find(isOver),
      Escape: () => null,
    }[event.key];
    if (!goal)
      return;
    event.preventDefault();
    const frame = goal();
    if (frame !== undefined)
      choose(frame?.frame ?? null);
  }

  function addPlugins(seen) {
    const fresh = seen.filter((name) => !plugins.includes(name));
    if (fresh.length === 0)
      return;
    plugins = [...plugins, ...fresh];
    legend.replaceChildren(...plugins.map((name) => {
      const sample = el("span", { class: "block", "aria-hidden": "true" });
      sample.style.setProperty("--series", series(name) < kMost ? `var(--series-${series(name)})` : "var(--muted)");
      return el("li", {}, sample, name, el("output", { class: "number", "aria-live": "off" }));
    }));
  }

  connection.on("time", (state) => {
    for (const frame of state.frames)
      addPlugins(Object.keys(frame.plugins).filter((name) => frame.plugins[name] > 0));
    frames = [...frames, ...state.frames].slice(-kKept);
    draw();
  });
  connection.on("frameCalls", (state) => {
    if (state.frame !== chosen)
      return;
    const most = Math.max(...state.calls.map((call) => call.ms), 1e-6);
    omitted = state.omitted > 0 ? `; ${state.omitted} calls are left out` : "";
    draw();
    calls.empty.textContent = "No calls of this frame are kept.";
    calls.show(state.calls.map((call, n) => ({ ...call, n, share: call.ms / most })));
  });
  connection.on("fresh", () => {
    frames = [];
    choose(null);
  });
  connection.on("hello", (hello) => {
    if (hello.budget > 0)
      limit.value = String(budget = hello.budget);
    askBudget();
  });
  new ResizeObserver(draw).observe(box);
  matchMedia("(prefers-color-scheme: dark)").addEventListener("change", draw);

  return {
    id: "time", title: "Time", column: "second", topics: ["time"], tools: [limit.element, follow],
    content: [box, said, legend, calls.element],
    whenShown: () => {
      askBudget();
      draw();
    },
  };
}
