// Writes lines of the session language.
export const quoted = (text) =>
  `"${text.replace(/[\\"]/g, "\\$&").replace(/\n/g, "\\n").replace(/\t/g, "\\t").replace(/[\x00-\x1f\x7f]/g, "")}"`;

// A word: in quotes only if it must be, because some words mean something else in quotes.
export const word = (text) => (/^[^\s"#][^\s"]*$/.test(text) ? text : quoted(text));

// A dataref may have several types: "int, float".
const hasType = (dataref, pattern) => dataref.type.split(", ").some((type) => pattern.test(type));
export const isText = (dataref) => !hasType(dataref, /^(int|float|double)/);
export const isArray = (dataref) => hasType(dataref, / array$/) && !hasType(dataref, /^(int|float|double)$/);

const written = (dataref, value) => (isText(dataref) ? quoted(value) : value);
export const elementOf = (dataref, index) => `${dataref.name}[${index}]`;

export const setLine = (dataref, value, index = null) =>
  `set ${word(index === null ? dataref.name : elementOf(dataref, index))} ${written(dataref, value)}`;

// Of a long array, only the beginning is known here: then one element is expected.
export function expectDataref(dataref, tolerance, index) {
  const isWhole = dataref.count <= dataref.values.length;
  const values = isWhole ? dataref.values : [dataref.values[index]];
  const slack = tolerance && !isText(dataref) ? `~${tolerance}` : "";
  const name = isWhole ? dataref.name : elementOf(dataref, index);
  return ["expect dataref", word(name), ...values.map((value) => written(dataref, value) + slack)].join(" ");
}

export function expectWindow(window) {
  const place = window.place.join(",");
  const state = `${window.visible ? "visible" : "hidden"}${window.front ? " front" : ""}`;
  return `expect window ${word(window.plugin)} ${place} ${state}`;
}

export function expectItem(item) {
  return `expect item ${quoted(item.path)} ${item.mark} ${item.enabled ? "enabled" : "disabled"}`;
}

// Why a dataref cannot hold this text, or nothing.
export function refuseValue(dataref, text) {
  if (isText(dataref))
    return "";
  const trimmed = text.trim();
  if (!hasType(dataref, /^(float|double)/)) {
    const number = Number(trimmed);
    return /^[+-]?\d+$/.test(trimmed) && number >= -2147483648 && number <= 2147483647
      ? "" : "A whole number from -2147483648 to 2147483647.";
  }
  const isNumber = /^[+-]?[\d.]/.test(trimmed) && Number.isFinite(Number(trimmed)) && !/^[+-]?0[xbo]/i.test(trimmed);
  return isNumber ? "" : "A number, such as 1.5 or -2e3.";
}
