// Makes elements. Properties that begin with "on" are listeners; the rest are attributes.
let lastId = 0;

export const newId = (prefix) => `${prefix}-${++lastId}`;

export function el(tag, properties = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (name.startsWith("on"))
      element.addEventListener(name.slice(2), value);
    else if (value === true)
      element.setAttribute(name, "");
    else if (value !== false && value !== undefined && value !== null)
      element.setAttribute(name, value);
  }
  element.append(...children.filter((child) => child !== null && child !== undefined));
  return element;
}

export const button = (text, onclick, properties = {}) =>
  el("button", { type: "button", onclick, ...properties }, text);

// Writes only what differs, so that selections and live regions stay as they are.
export function setText(element, text) {
  if (element.textContent !== text)
    element.textContent = text;
}

export function setAttribute(element, name, value) {
  if (value === null || value === undefined || value === false)
    element.removeAttribute(name);
  else if (element.getAttribute(name) !== String(value))
    element.setAttribute(name, value);
}

// A labelled input with the error of its last use beside it.
// submit(value) returns nothing, or a promise of {ok, text}.
export class Field {
  constructor({ label, value = "", submit = null, check = () => "", hideLabel = false, ...properties }) {
    const id = newId("field");
    this.check = check;
    this.submit = submit;
    this.input = el("input", {
      id, type: "text", autocomplete: "off", spellcheck: "false", "aria-describedby": `${id}-error`, ...properties,
      onkeydown: (event) => {
        if (event.key === "Enter" && this.submit)
          this.send();
      },
      oninput: () => this.fail(""),
    });
    this.input.value = value;
    this.error = el("span", { id: `${id}-error`, class: "error", role: "alert" });
    this.label = el("label", { for: id, class: hideLabel ? "unseen" : "" }, label);
    this.element = el("span", { class: "field" }, this.label, this.input, this.error);
  }

  get value() { return this.input.value; }
  set value(text) { this.input.value = text; }

  fail(text) {
    setText(this.error, text);
    setAttribute(this.input, "aria-invalid", text ? "true" : null);
    return text === "";
  }

  valid() { return this.fail(this.check(this.value)); }

  async send() {
    if (!this.valid())
      return null;
    const answer = await this.submit(this.value);
    if (answer)
      this.fail(answer.ok ? "" : answer.text);
    return answer;
  }
}

// A select whose choices change while it is shown. The choice stays if it still exists.
export function setChoices(select, choices) {
  const now = [...select.options].map((option) => option.value);
  if (now.length === choices.length && now.every((value, i) => value === choices[i]))
    return;
  const chosen = select.value;
  select.replaceChildren(...choices.map((choice) => el("option", { value: choice }, choice || "(none)")));
  if (choices.includes(chosen))
    select.value = chosen;
}

export function labelled(label, control) {
  control.id ||= newId("control");
  return el("span", { class: "field" }, el("label", { for: control.id }, label), control);
}

// What this browser remembers.
export function stored(key, fallback) {
  try {
    return JSON.parse(localStorage.getItem(key)) ?? fallback;
  } catch {
    return fallback;
  }
}

export const store = (key, value) => localStorage.setItem(key, JSON.stringify(value));

// Focuses the next control in the tab order, or with -1 the one before.
export function focusBeside(element, by) {
  const controls = [...document.querySelectorAll("a[href], button, input, select, [tabindex='0']")]
    .filter((control) => control === element || (!control.disabled && control.checkVisibility()));
  controls[(controls.indexOf(element) + by + controls.length) % controls.length].focus();
}

// Calls `work` once before the next repaint, however often it is asked for.
export function oncePerRepaint(work) {
  let asked = false;
  return () => {
    if (asked)
      return;
    asked = true;
    requestAnimationFrame(() => {
      asked = false;
      work();
    });
  };
}
