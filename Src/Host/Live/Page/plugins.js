// Panel "Plugins": their state, what they own, their windows, and what can be done with them.
import { Field, button, el, setText } from "./dom.js";
import { List } from "./list.js";
import { expectWindow, quoted, word } from "./session.js";

const kMilliseconds = 3; // decimals

export function pluginsPanel({ connection, line, expect }) {
  let windows = [];
  let stays = null; // the chosen plugin, by ID

  const list = new List({
    label: "Plugins", kind: "plugins", heads: ["", "Plugin", "Calls", "ms", "Worst"], empty: "No plugin is loaded.",
    key: (plugin) => plugin.id,
    cells: (plugin) => [
      { text: plugin.enabled ? "●" : "○", class: plugin.enabled ? "good" : "muted",
        title: plugin.enabled ? "enabled" : "disabled" },
      { text: plugin.enabled ? plugin.name : `${plugin.name} (disabled)`, title: plugin.path },
      { text: String(plugin.calls), class: "number" },
      { text: plugin.time?.last?.toFixed(kMilliseconds) ?? "", class: "number" },
      { text: plugin.time?.worst?.toFixed(kMilliseconds) ?? "", class: "number" },
    ],
    choose: (plugin) => detail(plugin),
  });

  const about = el("p", { class: "about" });
  const able = button("Disable", () => line(`${list.item.enabled ? "disable" : "enable"} ${word(list.item.name)}`));
  const expectState = button("Expect this state", () =>
    expect(`expect plugin ${word(list.item.name)} ${list.item.enabled ? "enabled" : "disabled"}`));
  const number = new Field({
    label: "Message", inputmode: "numeric", size: "6",
    check: (text) => (/^[+-]?\d+$/.test(text.trim()) ? "" : "A whole number."),
    submit: () => send(),
  });
  const text = new Field({ label: "with text", size: "10", submit: () => (number.valid() ? send() : null) });
  const send = () => {
    const words = ["message", word(list.item.name), number.value.trim(), ...(text.value ? [quoted(text.value)] : [])];
    return line(words.join(" "), number);
  };
  const ownWindows = new List({
    label: "Windows of the plugin", kind: "windows", heads: ["", "Left,top,right,bottom", ""],
    empty: "It has no windows.",
    key: (window) => window.number,
    cells: (window) => [
      { text: String(window.number), class: "number" }, { text: window.place.join(","), class: "number left" },
      `${window.visible ? "visible" : "hidden"}${window.front ? ", front" : ""}`],
    choose: (window) => {
      windowTools.hidden = !window;
      if (window)
        setText(showHide, window.visible ? "Hide" : "Show");
    },
  });
  const showHide = button("Hide", () =>
    line(`${ownWindows.item.visible ? "hide" : "show"} ${word(ownWindows.item.plugin)} ${ownWindows.item.number}`));
  const windowTools = el("p", { class: "tools", hidden: true }, showHide,
    button("Expect this window", () => expect(expectWindow(ownWindows.item))));
  const owns = new List({
    label: "What the plugin owns", kind: "owns", heads: ["Kind", "What it owns"], empty: "It owns nothing.",
    key: (thing) => `${thing.kind} ${thing.what} ${thing.n}`,
    cells: (thing) => [thing.kind, { text: thing.what, title: `${thing.what}, by ${thing.madeBy}` }],
    choose: (thing) => { ownTools.hidden = !thing; },
  });
  const more = el("p", { class: "muted" });
  const ownTools = el("p", { class: "tools", hidden: true }, button("Expect that it owns this", () =>
    expect(`expect owns ${word(list.item.name)} ${owns.item.kind} ${quoted(owns.item.what)}`)));
  const chosen = el("div", { class: "detail", hidden: true }, about,
    el("p", { class: "tools" }, able, expectState, number.element, text.element, button("Send", () => number.send())),
    ownWindows.element, windowTools, owns.element, more, ownTools);
  const left = el("p", { class: "note", hidden: true });

  function detail(plugin) {
    chosen.hidden = !plugin;
    if (plugin?.id !== stays) {
      ownWindows.select(null);
      owns.select(null);
      stays = plugin?.id ?? null;
    }
    if (!plugin)
      return;
    setText(about, `${plugin.signature} — ${plugin.description}`);
    setText(able, plugin.enabled ? "Disable" : "Enable");
    ownWindows.show(windows.filter((window) => window.plugin === plugin.name));
    const seen = new Map();
    setText(more, plugin.owned > plugin.owns.length ? `and ${plugin.owned - plugin.owns.length} more` : "");
    owns.show(plugin.owns.map((thing) => {
      const n = (seen.get(thing.kind + thing.what) ?? 0) + 1;
      seen.set(thing.kind + thing.what, n);
      return { ...thing, n };
    }));
  }

  connection.on("plugins", (state) => {
    list.show(state.plugins);
    left.hidden = !state.leftBehind?.length;
    setText(left, `Left behind when unloaded: ${(state.leftBehind ?? []).join("; ")}`);
  });
  connection.on("windows", (state) => {
    windows = state.windows;
    detail(list.item);
  });

  return {
    id: "plugins", title: "Plugins", column: "first", topics: ["plugins", "windows"],
    tools: [button("Reload all", () => line("reload"))],
    content: [list.element, left, chosen],
  };
}
