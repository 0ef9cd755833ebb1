// Names of keys in the session language, from events of the browser.
const kNames = {
  Backspace: "Backspace", Tab: "Tab", Enter: "Return", Escape: "Escape", Space: "Space", PageUp: "Page Up",
  PageDown: "Page Down",
  End: "End", Home: "Home", ArrowLeft: "Left", ArrowUp: "Up", ArrowRight: "Right", ArrowDown: "Down", Insert: "Insert",
  Delete: "Delete", Help: "Help", NumpadMultiply: "Numpad-*", NumpadAdd: "Numpad-+", NumpadSubtract: "Numpad--",
  NumpadDecimal: "Numpad-.", NumpadDivide: "Numpad-/", NumpadEnter: "Numpad-Enter", NumpadEqual: "Numpad-=",
};
const kSingle = /^[A-Za-z0-9=\-[\]';\\,/.`]$/;

// The key's name; null if it has none, as the characters that need shift on some keyboards.
export function keyName(event) {
  if (kNames[event.code])
    return kNames[event.code];
  if (/^F([1-9]|1\d|2[0-4])$/.test(event.code))
    return event.code;
  const numpad = /^Numpad(\d)$/.exec(event.code);
  if (numpad)
    return `Numpad-${numpad[1]}`;
  return kSingle.test(event.key) ? event.key : null;
}

// A character without a key of its own, which `type` can send.
export const typed = (event) => (/^[!-~]$/.test(event.key) ? event.key : null);

// The browser and the system keep their own: Alt and the Windows or Command key. AltGr makes characters.
export const isForTheBrowser = (event) => event.metaKey || (event.altKey && !event.getModifierState("AltGraph"));

// 1 leaves forward, -1 backward, 0 stays.
export function wayOut(event) {
  if (event.ctrlKey && event.key === "Escape")
    return 1;
  return event.shiftKey && event.key === "F6" ? -1 : 0;
}
