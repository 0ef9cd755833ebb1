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
    label: "Line", size: "18", placeholder: "click 60,495", check: (text) => (text.trim() ? "" : "A line of the session language."),
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
  const picture = new Field({
    label: "Picture", size: "12", value: "screen.png", check: isFile(".png"),
    submit: async (file) => {
      const answer = await connection.ask({ do: "picture", file });
      if (answer.ok)
        say(answer.text || `${file} is written and expected.`, true);
      return answer;
    },
  });
  const file = new Field({ label: "File", hideLabel: true, size: "12", value: "session.avs", check: isFile(".avs"), submit: (name) => save(name, false) });
  const replace = button("Replace it", () => save(file.value, true), { hidden: true });
  file.input.addEventListener("input", () => { replace.hidden = true; });

  async function save(name, force) {
    const answer = await connection.ask({ do: "save", file: name, ...(force ? { replace: true } : {}) });
    replace.hidden = answer.ok || !/exist|replace/i.test(answer.text);
    file.fail(answer.ok ? "" : answer.text);
    if (answer.ok)
      say(`Saved: ${answer.text}`, true);
    return answer;
  }

  connection.on("recording", (state) => {
    lines.set(state.lines);
    setText(saved, state.saved ? `saved as ${state.saved}` : "not saved");
  });

  return {
    id: "record", title: "Record", column: "dock", topics: ["recording"], tools: [saved, file.element, button("Save", () => file.send(), { class: "main" }), replace],
    content: [
      lines.element,
      el("p", { class: "tools" }, own.element, button("Do it", () => own.send()), picture.element,
        button("Expect this picture", () => picture.send())),
    ],
  };
}
