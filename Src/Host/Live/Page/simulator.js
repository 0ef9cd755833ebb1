// Panel "Simulator": time, aircraft, scenery, view and the crash.
import { button, el, labelled, setChoices, setText } from "./dom.js";
import { word } from "./session.js";

const kViews = ["tower", "chase", "cockpit"];

// The slider's steps are ratios, because 0.1 and 10 are as far from 1.
const factorOf = (step) => Number((10 ** (step / 10)).toPrecision(2));
const stepOf = (factor) => Math.round(10 * Math.log10(factor));

export function simulatorPanel({ connection, line, expect }) {
  let state = { paused: false, speed: 1 };
  const pause = button("Pause", () => connection.send({ do: state.paused ? "continue" : "pause" }), { class: "main" });
  const frame = button("One frame", () => connection.send({ do: "frame" }));
  const speed = el("input", {
    type: "range", min: "-10", max: "10", step: "1", value: "0",
    oninput: () => {
      write(factorOf(Number(speed.value)));
      connection.send({ do: "speed", factor: factorOf(Number(speed.value)) });
    },
  });
  const shownSpeed = el("output", { class: "number" });
  const view = el("select", { onchange: () => line(`view ${view.value}`) },
    ...kViews.map((name) => el("option", { value: name }, name)));
  const model = el("select");
  const load = button("Load", () => line(`load aircraft ${word(model.value)}`));
  const about = el("p", { class: "about" });

  function write(factor) {
    setText(shownSpeed, `× ${factor}`);
    speed.setAttribute("aria-valuetext", `${factor} times`);
  }

  connection.on("simulator", (message) => {
    state = message;
    setText(pause, state.paused ? "Continue" : "Pause");
    if (document.activeElement !== speed)
      speed.value = String(stepOf(state.speed));
    write(state.speed);
    if (document.activeElement !== view && kViews.includes(state.view))
      view.value = state.view;
    setChoices(model, state.models ?? []);
    load.disabled = model.options.length === 0;
    const scenery = state.scenery?.length ? `scenery ${state.scenery.join(", ")}` : "no scenery folder";
    setText(about, [state.position, state.aircraft, scenery].filter(Boolean).join(" · "));
  });

  return {
    id: "simulator", title: "Simulator", column: "first", topics: ["simulator"],
    content: [
      el("p", { class: "tools" }, pause, frame, labelled("Speed", speed), shownSpeed, labelled("View", view)),
      el("p", { class: "tools" }, labelled("Aircraft", model), load,
        button("Expect this view", () => expect(`expect view ${state.view}`)),
        button("Report scenery", () => line("report scenery")),
        button("Crash", () => line("crash"), { class: "danger" })),
      about,
    ],
  };
}
