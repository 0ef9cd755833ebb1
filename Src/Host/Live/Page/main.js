// Puts the page together.
import { Banners } from "./banners.js";
import { callsPanel } from "./calls.js";
import { commandsPanel } from "./commands.js";
import { Connection } from "./connection.js";
import { datarefsPanel } from "./datarefs.js";
import { el, setText } from "./dom.js";
import { findingsPanel } from "./findings.js";
import { logPanel } from "./log.js";
import { MenuBar } from "./menubar.js";
import { Panels } from "./panels.js";
import { pluginsPanel } from "./plugins.js";
import { recordPanel } from "./record.js";
import { Screen } from "./screen.js";
import { simulatorPanel } from "./simulator.js";
import { timePanel } from "./time.js";

const connection = new Connection();
const answer = document.getElementById("answer");

function say(text, ok) {
  answer.dataset.ok = ok;
  setText(answer, ok ? text : `Failed: ${text}`);
}

// Has a line executed. Its error stands beside `field`; without one, at the foot of the page; with null, nowhere.
async function line(text, field) {
  const result = await connection.line(text);
  if (field)
    field.fail(result.ok ? "" : result.text);
  else if (field === undefined)
    say(result.ok ? (result.text || text) : `${text}: ${result.text}`, result.ok);
  return result;
}

async function expect(text, field) {
  const result = await line(text, field ?? null);
  say(result.ok ? `Recorded: ${text}` : `${text}: ${result.text}`, result.ok);
  return result;
}

const context = { connection, say, line, expect };
new Screen(connection, say);
new MenuBar(connection, line);
new Banners(connection, say);
const panels = new Panels(connection);
const makers = [simulatorPanel, pluginsPanel, commandsPanel, datarefsPanel, timePanel, callsPanel, findingsPanel,
  recordPanel, logPanel];
for (const make of makers)
  panels.add(make(context));

// The page always shows the screen, the menu bar and the readings.
const showScreen = () => connection.want("page", ["simulator", "menus", ...(document.hidden ? [] : ["screen"])]);
document.addEventListener("visibilitychange", showScreen);
showScreen();

const state = document.getElementById("state");
function showState(kind, text) {
  state.dataset.state = kind;
  setText(state.querySelector(".word"), text);
}

const readings = new Map();
function read(label, text) {
  if (!readings.has(label)) {
    const value = el("dd", { class: "number" });
    document.getElementById("readings").append(el("div", {}, el("dt", {}, label), value));
    readings.set(label, value);
  }
  setText(readings.get(label), text);
}

let ended = false;
connection.on("hello", (hello) => {
  ended = false;
  setText(document.getElementById("name"), hello.name);
  document.title = `${hello.name} – avsk live`;
});
connection.on("simulator", (now) => {
  showState(now.paused ? "paused" : "running", now.paused ? "Paused" : "Running");
  read("Frame", String(now.frame));
  read("Time", `${now.seconds.toFixed(2)} s`);
  read("Frames/s", now.framesPerSecond.toFixed(0));
  read("Pictures/s", now.picturesPerSecond.toFixed(0));
});
connection.on("ended", () => {
  ended = true;
  showState("ended", "Ended");
});
connection.on("state", ({ state: kind }) => {
  if (kind === "waiting")
    showState("waiting", "Connecting");
  else if (kind === "open")
    showState(ended ? "ended" : "waiting", ended ? "Ended" : "Connected");
  else
    showState("lost", "No connection");
});
connection.open();
