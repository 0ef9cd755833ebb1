// Panel "Datarefs": search, live values, editing within the type, and pinned ones over time.
import { Field, button, el, setText, store, stored } from "./dom.js";
import { List } from "./list.js";
import { Plot } from "./plot.js";
import { elementOf, expectDataref, isArray, isText, refuseValue, setLine } from "./session.js";

const kPinnedKey = "avsk.live.pinned";
const kElements = 4; // of an array, in the list
const kPause = 150; // milliseconds after the last key before a search

export function datarefsPanel({ connection, line, expect }) {
  let pinned = stored(kPinnedKey, []);
  let seconds = 0;
  let timer = 0;
  let editors = []; // the fields of the chosen one
  let edited = null; // name and shape for which they were made
  let element = 0;   // of an array: the one whose field was used last

  const ask = () => connection.send({ do: "datarefs", pattern: search.value.trim(), pinned });
  const search = el("input", {
    type: "search", placeholder: "part of a name, or a pattern with *", "aria-label": "Search datarefs",
    spellcheck: "false",
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
      isPinned(dataref) ? { text: "◆", title: "pinned" } : "",
      { text: dataref.name, title: `${dataref.name}, of ${dataref.owner}` },
      `${dataref.type}${dataref.writable ? "" : " (read-only)"}`,
      { text: inList(dataref), class: "number", title: dataref.values.join(" ") },
    ],
    choose: (dataref) => detail(dataref),
    open: () => (editors[0]?.input ?? pin).focus(),
  });

  const isPinned = (dataref) => pinned.some((name) => name === dataref.name || name.startsWith(`${dataref.name}[`));
  const inList = (dataref) =>
    dataref.values.slice(0, kElements).join(" ") + (dataref.count > kElements ? ` … (${dataref.count})` : "");
  const toPin = () => (isArray(list.item) ? elementOf(list.item, element) : list.item.name);

  const about = el("p", { class: "about" });
  const fields = el("div", { class: "values" });
  const tolerance = new Field({
    label: "within ±", size: "5", inputmode: "decimal",
    check: (text) => (text === "" || Number(text) >= 0 ? "" : "A number from 0 on, or nothing."),
    submit: () => expectThis(),
  });
  const expectThis = () => expect(expectDataref(list.item, tolerance.value.trim(), element), tolerance);
  const pin = button("Pin", () => setPinned(toPin()));
  const tools = el("p", { class: "tools" }, pin, button("Expect this value", () => tolerance.send()),
    tolerance.element);
  const chosen = el("div", { class: "detail", hidden: true }, about, fields, tools);
  const plot = new Plot((name) => setPinned(name));

  function setPinned(name) {
    pinned = pinned.includes(name) ? pinned.filter((other) => other !== name) : [...pinned, name];
    store(kPinnedKey, pinned);
    plot.keep(pinned);
    list.show(list.items);
    ask();
  }

  // One field for a value, or one for each element.
  function edit(dataref) {
    const { values } = dataref;
    const shape = `${dataref.name} ${dataref.type} ${values.length}`;
    if (edited !== shape) {
      edited = shape;
      element = 0;
      editors = values.map((_, i) => new Field({
        label: isArray(dataref) ? `[${i}]` : "Value", size: isText(dataref) ? "30" : "9",
        inputmode: isText(dataref) ? "text" : "decimal",
        check: (text) => refuseValue(dataref, text),
        submit: async (text) => {
          const value = isText(dataref) ? text : text.trim();
          const answer = await line(setLine(dataref, value, isArray(dataref) ? i : null), null);
          if (answer.ok)
            delete editors[i]?.input.dataset.changed;
          return answer;
        },
      }));
      editors.forEach(({ input }, i) => {
        input.title = dataref.writable ? "Enter writes the value, Escape shows the present one" : "read-only";
        input.addEventListener("focus", () => {
          element = i;
          namePin();
        });
        input.addEventListener("blur", () => list.item && edit(list.item));
        input.addEventListener("input", () => { input.dataset.changed = ""; });
        input.addEventListener("keydown", (event) => {
          if (event.key === "Escape") {
            editors[i].fail("");
            delete input.dataset.changed;
            editors[i].value = list.item.values[i];
          }
        });
      });
      fields.replaceChildren(...editors.map((editor) => editor.element));
    }
    // Live values overwrite neither a selection nor what is being typed.
    editors.forEach((editor, i) => {
      const isUsed = editor.input.dataset.changed !== undefined || document.activeElement === editor.input;
      if (!isUsed && editor.value !== values[i])
        editor.value = values[i];
      editor.input.readOnly = !dataref.writable;
    });
  }

  function detail(dataref) {
    chosen.hidden = !dataref;
    if (!dataref) {
      edited = null;
      return;
    }
    const facts = [dataref.type, dataref.writable ? "writable" : "read-only", dataref.owner && `of ${dataref.owner}`,
      dataref.unit, dataref.meaning];
    setText(about, `${dataref.name}: ${facts.filter(Boolean).join(", ")}`);
    edit(dataref);
    namePin();
  }

  function namePin() {
    pin.hidden = isText(list.item);
    setText(pin, `${pinned.includes(toPin()) ? "Unpin" : "Pin"}${isArray(list.item) ? ` [${element}]` : ""}`);
  }

  connection.on("simulator", (state) => { seconds = state.seconds; });
  connection.on("datarefs", (state) => {
    setText(list.empty, state.note ?? "No dataref is published.");
    list.show(state.datarefs);
    setText(count, `${state.matching} of ${state.total}`);
    plot.add(seconds, state.pinned);
  });
  connection.on("hello", ask);
  plot.keep(pinned);

  return {
    id: "datarefs", title: "Datarefs", column: "second", topics: ["datarefs"], whenShown: ask,
    tools: [search, count], content: [list.element, chosen, plot.element],
  };
}
