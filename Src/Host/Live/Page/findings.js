// Panel "Findings": what the rules of correct use say.
import { el, setText } from "./dom.js";
import { List } from "./list.js";

const kSigns = { error: "✕", warning: "▲", note: "i" };

export function findingsPanel({ connection }) {
  const count = el("span", { class: "muted number" });
  const list = new List({
    label: "Findings", kind: "findings", heads: ["", "Level", "Plugin", "What", "Times"], empty: "No findings.",
    key: (finding) => [finding.rule, finding.plugin, finding.function, finding.text, finding.callback].join(" "),
    cells: (finding) => [
      { text: kSigns[finding.level] ?? "", class: finding.level }, finding.level, finding.plugin,
      { text: `${finding.function}: ${finding.text}`, title: finding.text },
      { text: String(finding.count), class: "number" }],
    choose: (finding) => {
      detail.hidden = !finding;
      if (!finding)
        return;
      setText(what, `${finding.plugin}: ${finding.function}: ${finding.text} (${finding.rule})`);
      setText(where, [finding.callback && `in ${finding.callback}`, finding.source && `at ${finding.source}`,
        `since frame ${finding.frame}`].filter(Boolean).join(" "));
      setText(advice, finding.allowed ? `Allowed: ${finding.allowed}` : finding.advice);
    },
  });
  const what = el("p");
  const where = el("p", { class: "muted" });
  const advice = el("p");
  const detail = el("div", { class: "detail", hidden: true }, what, where, advice);
  connection.on("findings", (state) => {
    list.show(state.findings);
    setText(count, ["error", "warning", "note"].map((level) => {
      const many = state.findings.filter((finding) => finding.level === level).length;
      return `${many} ${level}${many === 1 ? "" : "s"}`;
    }).join(", "));
  });
  return { id: "findings", title: "Findings", column: "second", topics: ["findings"], tools: [count],
    content: [list.element, detail] };
}
