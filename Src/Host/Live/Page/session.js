// Writes lines of the session language.
export const quoted = (text) =>
  `"${text.replace(/[\\"]/g, "\\$&").replace(/\n/g, "\\n").replace(/\t/g, "\\t").replace(/[\x00-\x1f\x7f]/g, "")}"`;

// A word: in quotes only if it must be, because some words mean something else in quotes.
export const word = (text) => (/^[^\s"#][^\s"]*$/.test(text) ? text : quoted(text));

export const isText = (dataref) => dataref.type.startsWith("data") || dataref.type.startsWith("text");
export const isArray = (dataref) => dataref.type.includes("array") || (!isText(dataref) && dataref.values?.length > 1);

// The values of a dataref as an expectation or a `set` writes them.
const written = (dataref, value) => (isText(dataref) ? quoted(String(value)) : String(value));

export function setLine(dataref, value, element = null) {
  const name = element === null ? dataref.name : `${dataref.name}[${element}]`;
  return `set ${word(name)} ${written(dataref, value)}`;
}

export function expectDataref(dataref, tolerance = "") {
  const values = isText(dataref) ? [dataref.value] : (dataref.values ?? [dataref.value]);
  const slack = tolerance && !isText(dataref) ? `~${tolerance}` : "";
  return `expect dataref ${word(dataref.name)} ${values.map((value) => written(dataref, value) + slack).join(" ")}`;
}

export function expectWindow(window) {
  const place = window.place.join(",");
  return `expect window ${word(window.plugin)} ${place} ${window.visible ? "visible" : "hidden"}${window.front ? " front" : ""}`;
}

export function expectItem(item) {
  const mark = item.mark && item.mark !== "none" ? ` ${item.mark}` : "";
  return `expect item ${quoted(item.path)}${mark} ${item.enabled ? "enabled" : "disabled"}`;
}

// Why a dataref cannot hold this text, or nothing.
export function refuseValue(dataref, text) {
  if (isText(dataref))
    return "";
  const trimmed = text.trim();
  if (dataref.type.startsWith("int")) {
    const number = Number(trimmed);
    return /^[+-]?\d+$/.test(trimmed) && number >= -2147483648 && number <= 2147483647
      ? "" : "A whole number from -2147483648 to 2147483647.";
  }
  return trimmed !== "" && Number.isFinite(Number(trimmed)) && !/^[+-]?0[xbo]/i.test(trimmed) ? "" : "A number, such as 1.5 or -2e3.";
}
