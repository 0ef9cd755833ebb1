// Panel "Commands, keys and menus".
import { Field, button, el, labelled, setChoices, setText } from "./dom.js";
import { List } from "./list.js";
import { flatItems } from "./menubar.js";
import { expectItem, quoted, word } from "./session.js";

export function commandsPanel({ connection, line, expect }) {
  let commands = [];
  const search = el("input", {
    type: "search", placeholder: "part of a name", "aria-label": "Search commands", spellcheck: "false",
    oninput: () => showCommands(),
  });
  const list = new List({
    label: "Commands", kind: "commands", heads: ["Command", "Description"], empty: "No command matches.",
    key: (command) => command.name,
    cells: (command) => [
      { text: command.held ? `${command.name} (held)` : command.name, title: command.name },
      { text: command.description, title: command.description }],
    choose: (command) => {
      commandTools.hidden = !command;
      if (command)
        setText(hold, command.held ? "End" : "Hold");
    },
    open: (command) => line(`command ${word(command.name)}`),
  });
  const hold = button("Hold", () => line(`${list.item.held ? "end" : "begin"} ${word(list.item.name)}`));
  const commandTools = el("p", { class: "tools", hidden: true },
    button("Run", () => line(`command ${word(list.item.name)}`)), hold);

  const hotKeys = new List({
    label: "Hot keys", kind: "hotkeys", heads: ["Hot key", "Plugin", "Meaning"], empty: "No plugin has hot keys.",
    key: (key) => `${key.plugin} ${key.key} ${key.description}`,
    cells: (key) => [key.key, key.plugin, { text: key.description, title: key.description }],
    choose: (key) => { hotKeyTools.hidden = !key; },
    open: (key) => line(`key ${key.key}`),
  });
  const hotKeyTools = el("p", { class: "tools", hidden: true },
    button("Press it", () => line(`key ${hotKeys.item.key}`)));

  const key = el("select");
  const shift = el("input", { type: "checkbox" });
  const control = el("input", { type: "checkbox" });
  const keyLine = (step, modifiers = true) => line(`${step} ${word(key.value)}` +
    (modifiers && shift.checked ? " shift" : "") + (modifiers && control.checked ? " control" : ""));
  const text = new Field({
    label: "Type", size: "14", check: (typed) => (typed ? "" : "A text."),
    submit: (typed) => line(`type ${quoted(typed)}`, null),
  });
  const keys = el("div", { class: "tools" }, labelled("Key", key), labelled("Shift", shift),
    labelled("Control", control),
    button("Press", () => keyLine("key")), button("Hold key", () => keyLine("keydown")),
    button("Let go", () => keyLine("keyup", false)),
    text.element, button("Type text", () => text.send()));

  const items = new List({
    label: "Menu items", kind: "items", heads: ["Menu item", "Mark", "State"], empty: "There are no menu items.",
    key: (item) => item.path,
    cells: (item) => [{ text: item.path, title: item.path }, item.mark ?? "", item.enabled ? "enabled" : "disabled"],
    choose: (item) => {
      itemTools.hidden = !item;
      pick.disabled = !item?.enabled || item.isMenu;
    },
    open: (item) => item.enabled && !item.isMenu && line(`menu ${quoted(item.path)}`),
  });
  const pick = button("Pick", () => line(`menu ${quoted(items.item.path)}`));
  const itemTools = el("p", { class: "tools", hidden: true }, pick,
    button("Expect this item", () => expect(expectItem(items.item))));

  function showCommands() {
    const part = search.value.trim().toLowerCase();
    list.show(commands.filter((command) => `${command.name} ${command.description}`.toLowerCase().includes(part)));
  }
  connection.on("commands", (state) => {
    ({ commands } = state);
    showCommands();
    hotKeys.show(state.hotKeys);
    setChoices(key, state.keys.filter((name) => name !== "Unknown"));
  });
  connection.on("menus", (state) => items.show(flatItems(state.menus)));

  return {
    id: "commands", title: "Commands", column: "first", topics: ["commands"], tools: [search],
    content: [list.element, commandTools, hotKeys.element, hotKeyTools, keys, items.element, itemTools],
  };
}
