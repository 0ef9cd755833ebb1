// Panel "Record": the session as it grows, lines of one's own, pictures, and saving.
import { Field, button, el, setText } from "./dom.js";
import { Lines } from "./lines.js";

const isFile = (ending) => (text) =>
  (text.endsWith(ending) && !/[\\"\x00-\x1f]/.test(text) && !text.startsWith("/") && !text.split("/").includes("..")
    ? "" : `A file in the session's folder whose name ends in ${ending}.`);

export function recordPanel({ connection, line, say }) {
  let history = [];
  let back = 0;
  const lines = new Lines({ label: "The session so far", kind: "lines code", empty: "Nothing is recorded yet." });
  const saved = el("span", { class: "muted" });
  const own = new Field({
    label: "Line", size: "18", placeholder: "click 60,495",
    check: (text) => (text.trim() ? "" : "A line of the session language."),
    submit: async (text) => {
      const answer = await line(text.trim(), null);
      if (answer.ok) {
        history = [...history.filter((old) => old !== text), text];
        back = 0;
        own.value = "";
        say(answer.text || "Done.", true);
      }
      return answer;
    },
  });
  own.input.addEventListener("keydown", (event) => {
    const step = { ArrowUp: 1, ArrowDown: -1 }[event.key];
    if (!step)
      return;
    event.preventDefault();
    back = Math.min(Math.max(back + step, 0), history.length);
    own.value = back === 0 ? "" : history.at(-back);
  });
  // A field for the name of a file to write, with a button that appears if there is such a file.
  function fileField(properties, action, done) {
    const write = async (file, replace) => {
      const answer = await connection.ask({ do: action, file, replace });
      field.fail(answer.ok ? "" : answer.text);
      again.hidden = answer.ok || !answer.text.includes("exists");
      if (answer.ok)
        say(done(answer.text), true);
      return answer;
    };
    const field = new Field({ size: "12", ...properties, submit: (file) => write(file, false) });
    const again = button("Replace it", () => write(field.value, true), { hidden: true });
    field.input.addEventListener("input", () => { again.hidden = true; });
    return { field, again };
  }
  const picture = fileField({ label: "Picture", value: "screen.png", check: isFile(".png") }, "picture",
    (path) => `Recorded: expect picture, which is in ${path}`);
  const file = fileField({ label: "File", hideLabel: true, value: "session.avs", check: isFile(".avs") }, "save",
    (path) => `Saved: ${path}`);

  connection.on("recording", (state) => {
    lines.set(state.lines, state.omitted);
    setText(saved, state.saved ? `saved as ${state.saved}` : "not saved");
  });

  return {
    id: "record", title: "Record", column: "dock", topics: ["recording"],
    tools: [saved, file.field.element, button("Save", () => file.field.send(), { class: "main" }), file.again],
    content: [
      lines.element,
      el("p", { class: "tools" }, own.element, button("Do it", () => own.send()), picture.field.element,
        button("Expect this picture", () => picture.field.send()), picture.again),
    ],
  };
}
