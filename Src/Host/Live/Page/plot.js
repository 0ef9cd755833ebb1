// Pinned datarefs over simulated time: one strip each, above a common axis.
import { button, el, setText } from "./dom.js";

const kSeconds = 30; // shown
const kStripHeight = 58;
const kAxisHeight = 26;
const kDashes = [[], [6, 3], [2, 2], [8, 3, 2, 3]];
const kColours = 8;

// A value of the style sheet, which depends on the scheme.
export const style = (name) => getComputedStyle(document.documentElement).getPropertyValue(name).trim();
export const colour = (i) => style(`--series-${i % kColours}`);

export class Plot {
  constructor(unpin) {
    this.unpin = unpin;
    this.points = new Map(); // name -> [{x, y}]
    this.chips = el("ul", { class: "chips", "aria-label": "Pinned datarefs" });
    this.canvas = el("canvas", { role: "img", "aria-label": "Pinned datarefs over time" });
    this.box = el("div", { class: "plot" }, this.canvas);
    this.element = el("div", { class: "pinned", hidden: true }, this.chips, this.box);
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", () => this.make());
  }

  keep(names) {
    for (const name of [...this.points.keys()].filter((known) => !names.includes(known)))
      this.points.delete(name);
    for (const name of names.filter((wanted) => !this.points.has(wanted)))
      this.points.set(name, []);
    this.element.hidden = names.length === 0;
    this.chips.replaceChildren(...names.map((name, i) => {
      const sample = el("span", { class: "sample", "aria-hidden": "true" });
      sample.style.setProperty("--series", `var(--series-${i % kColours})`);
      sample.style.setProperty("border-top-style", ["solid", "dashed", "dotted", "double"][i % kDashes.length]);
      return el("li", {}, sample, name, el("output", { class: "number", "aria-live": "off" }),
        button("×", () => this.unpin(name), { class: "close", "aria-label": `Unpin ${name}`, title: "Unpin" }));
    }));
    this.make();
  }

  make() {
    this.chart?.destroy();
    this.chart = null;
    this.box.hidden = typeof Chart === "undefined"; // libjs-chart.js is not installed
    if (this.points.size === 0 || this.box.hidden)
      return;
    this.box.style.setProperty("height", `${this.points.size * kStripHeight + kAxisHeight}px`);
    const grid = { color: style("--line"), borderColor: style("--line") };
    const ticks = { color: style("--muted"), font: { size: 11, family: style("--mono") }, maxTicksLimit: 3 };
    const scales = { x: { type: "linear", grid, ticks: { ...ticks, maxTicksLimit: 7,
      callback: (value) => `${value} s` } } };
    // The first axis of a stack is its lowest.
    for (let i = this.points.size - 1; i >= 0; --i)
      scales[`y${i}`] = { type: "linear", stack: "strips", offset: true, grid, ticks, grace: "10%" };
    const datasets = [...this.points].map(([label, data], i) => ({
      label, data, yAxisID: `y${i}`, borderColor: colour(i), borderDash: kDashes[i % kDashes.length], borderWidth: 1.5,
      pointRadius: 0,
    }));
    this.chart = new Chart(this.canvas, {
      type: "line", data: { datasets },
      options: {
        animation: false, parsing: false, normalized: true, responsive: true, maintainAspectRatio: false, scales,
        plugins: { legend: { display: false }, tooltip: { enabled: false } }, events: [],
      },
    });
  }

  // Time that runs backward is a new simulator.
  add(seconds, values) {
    [...this.points].forEach(([name, points], i) => {
      const value = values[name];
      if (typeof value !== "number")
        return;
      if (points.length > 0 && points.at(-1).x > seconds)
        points.length = 0;
      if (points.length === 0 || points.at(-1).x !== seconds || points.at(-1).y !== value)
        points.push({ x: seconds, y: value });
      while (points.length > 2 && points[1].x < seconds - kSeconds)
        points.shift();
      const output = this.chips.children[i]?.querySelector("output");
      if (output)
        setText(output, String(value));
    });
    if (!this.chart || this.element.closest("[hidden]"))
      return;
    this.chart.options.scales.x.min = Math.max(0, Math.floor(seconds - kSeconds));
    this.chart.options.scales.x.max = Math.max(kSeconds, Math.ceil(seconds));
    this.chart.update("none");
  }
}
