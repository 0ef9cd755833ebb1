// Panel "Datarefs": search, live values, editing within the type, and pinned ones over time.
import { Field, button, el, setText } from "./dom.js";
import { List } from "./list.js";
import { Plot } from "./plot.js";
import { expectDataref, isArray, isText, refuseValue, setLine } from "./session.js";

const kPinnedKey = "avsk.live.pinned";
const kPause = 150; // milliseconds after the last key before a search

export function datarefsPanel({ connection, line, expect }) {
  let pinned = JSON.parse(localStorage.getItem(kPinnedKey) ?? "[]");
  let seconds = 0;
  let total = 0;
  let timer = 0;
  let editors = []; // the fields of the chosen one
  let edited = null; // name and shape for which they were made

  const ask = () => connection.send({ do: "datarefs", pattern: search.value.trim(), pinned });
  const search = el("input", {
    type: "search", placeholder: "part of a name, or a pattern with *", "aria-label": "Search datarefs", spellcheck: "false",
    oninput: () => {
      clearTimeout(timer);
      timer = setTimeout(ask, kPause);
    },
  });
  const count = el("span", { class: "muted number" });

  const list = new List({
    label: "Datarefs", kind: "datarefs", heads: ["", "Name", "Type", "Value"], empty: "No name matches.",
    key: (dataref) => dataref.name,
    cells: (dataref) => [
      { text: pinned.includes(dataref.name) ? "◆" : "", title: pinned.includes(dataref.name) ? "pinned" : null },
      { text: dataref.name, title: `${dataref.name}, of ${dataref.owner}` },
      `${dataref.type}${dataref.writable ? "" : " (read-only)"}`,
      { text: dataref.value, class: "number", title: dataref.value },
    ],
    choose: (dataref) => detail(dataref),
    open: () => (editors[0]?.input ?? pin).focus(),
  });

  const about = el("p", { class: "about" });
  const fields = el("div", { class: "values" });
  const tolerance = new Field({
    label: "within ±", size: "5", inputmode: "decimal",
    check: (text) => (text === "" || Number(text) >= 0 ? "" : "A number from 0 on, or nothing."),
    submit: () => expectThis(),
  });
  const expectThis = () => expect(expectDataref(list.item, tolerance.value.trim()), tolerance);
  const pin = button("Pin to the plot", () => setPinned(list.item.name));
  const tools = el("p", { class: "tools" }, pin, button("Expect this value", () => tolerance.send()), tolerance.element);
  const chosen = el("div", { class: "detail", hidden: true }, about, fields, tools);
  const plot = new Plot((name) => setPinned(name));

  function setPinned(name) {
    pinned = pinned.includes(name) ? pinned.filter((other) => other !== name) : [...pinned, name];
    localStorage.setItem(kPinnedKey, JSON.stringify(pinned));
    plot.keep(pinned);
    list.show(list.items);
    ask();
  }

  // One field for a value, or one for each element.
  function edit(dataref) {
    const values = isArray(dataref) ? (dataref.values ?? []) : [dataref.value];
    const shape = `${dataref.name} ${dataref.type} ${values.length}`;
    if (edited !== shape) {
      edited = shape;
      editors = values.map((_, i) => new Field({
        label: isArray(dataref) ? `[${i}]` : "Value", size: isText(dataref) ? "30" : "9", inputmode: isText(dataref) ? "text" : "decimal",
        check: (text) => refuseValue(dataref, text),
        submit: async (text) => {
          const answer = await line(setLine(dataref, isText(dataref) ? text : text.trim(), isArray(dataref) ? i : null), null);
          if (answer.ok)
            delete editors[i]?.input.dataset.changed;
          return answer;
        },
      }));
      for (const { input } of editors) {
        input.addEventListener("input", () => { input.dataset.changed = ""; });
        input.addEventListener("keydown", (event) => {
          if (event.key === "Escape") {
            delete input.dataset.changed;
            input.dispatchEvent(new Event("input"));
            delete input.dataset.changed;
            edit(list.item);
          }
        });
      }
      fields.replaceChildren(...editors.map((editor) => editor.element));
    }
    // What is being typed is not overwritten by live values.
    editors.forEach((editor, i) => {
      const text = isText(dataref) ? unquoted(dataref.value) : String(values[i]);
      if (editor.input.dataset.changed === undefined && editor.value !== text)
        editor.value = text;
      editor.input.readOnly = !dataref.writable;
    });
  }

  function detail(dataref) {
    chosen.hidden = !dataref;
    if (!dataref) {
      edited = null;
      return;
    }
    setText(about, `${dataref.name}: ${dataref.type}, ${dataref.writable ? "writable" : "read-only"}, of ${dataref.owner}`);
    setText(pin, pinned.includes(dataref.name) ? "Unpin" : "Pin to the plot");
    edit(dataref);
  }

  connection.on("simulator", (state) => { seconds = state.seconds; });
  connection.on("datarefs", (state) => {
    ({ total } = state);
    list.show(state.datarefs);
    setText(count, `${state.datarefs.length} of ${total}`);
    plot.add(seconds, state.pinned ?? {});
  });
  connection.on("hello", ask);
  plot.keep(pinned);

  return {
    id: "datarefs", title: "Datarefs", column: "second", topics: ["datarefs"], whenShown: ask,
    tools: [search, count], content: [list.element, chosen, plot.element],
  };
}

// Texts arrive as the session language writes them, in quotes.
function unquoted(text) {
  if (!/^".*"$/s.test(text))
    return text;
  try {
    return JSON.parse(text);
  } catch {
    return text.slice(1, -1);
  }
}
