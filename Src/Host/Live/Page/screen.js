// The simulator's screen: draws the tiles, and sends mouse, wheel and keys as lines of the session language.
import { isForTheBrowser, keyName, typed, wayOut } from "./keys.js";
import { quoted, word } from "./session.js";
import { focusBeside, setText } from "./dom.js";

const kHeader = 14;     // bytes before the first tile
const kTileHeader = 12; // before each tile's picture
const kWheelStep = 100; // what one click of a wheel scrolls, in pixels

function readTiles(data) {
  const view = new DataView(data);
  const message = {
    version: view.getUint32(0, true), frame: view.getUint32(4, true), width: view.getUint16(8, true),
    height: view.getUint16(10, true),
    tiles: [],
  };
  let at = kHeader;
  for (let left = view.getUint16(12, true); left > 0; --left) {
    const length = view.getUint32(at + 8, true);
    message.tiles.push({
      x: view.getUint16(at, true), y: view.getUint16(at + 2, true),
      png: new Uint8Array(data, at + kTileHeader, length),
    });
    at += kTileHeader + length;
  }
  return message;
}

// The decoder takes half the time of a blob, but not every browser has it.
async function decode({ png }) {
  if (!("ImageDecoder" in window))
    return createImageBitmap(new Blob([png], { type: "image/png" }));
  const decoder = new ImageDecoder({ data: png, type: "image/png", colorSpaceConversion: "none" });
  const { image } = await decoder.decode();
  decoder.close();
  return image;
}

export class Screen {
  constructor(connection, say) {
    this.connection = connection;
    this.say = say;
    this.canvas = document.getElementById("screen");
    this.context = this.canvas.getContext("2d", { alpha: false });
    this.mouse = document.getElementById("mouse");
    this.drawn = Promise.resolve();
    this.pointer = null;   // id of the pointer whose button is down
    this.held = new Map(); // event.code -> the name that was pressed
    this.wheel = 0;
    connection.on("tiles", (data) => this.receive(data));
    connection.on("hello", (hello) => this.resize(...hello.screen));
    connection.on("fresh", () => this.forget());
    this.listen();
  }

  resize(width, height) {
    if (this.canvas.width !== width)
      this.canvas.width = width;
    if (this.canvas.height !== height)
      this.canvas.height = height;
    this.canvas.style.setProperty("--ratio", width / height);
    this.canvas.style.setProperty("--natural", `${width}px`);
  }

  // A new simulator knows neither the mouse nor held keys.
  forget() {
    this.x = undefined;
    this.pointer = null;
    this.held.clear();
  }

  // The pictures of one message are decoded at once, and drawn together after those of the message before.
  receive(data) {
    const message = readTiles(data);
    const decoded = Promise.all(message.tiles.map(decode));
    this.drawn = Promise.all([decoded, this.drawn]).then(([pictures]) => {
      this.resize(message.width, message.height);
      pictures.forEach((picture, i) => {
        this.context.drawImage(picture, message.tiles[i].x, message.tiles[i].y);
        picture.close();
      });
      this.canvas.dataset.frame = message.frame;
      this.connection.send({ do: "shown", version: message.version });
    }).catch((error) => this.say(`A picture could not be shown: ${error.message}`, false));
  }

  // The place of the mouse as plugins see it: y points upward. Outside the picture it is at the edge.
  place(event) {
    const box = this.canvas.getBoundingClientRect();
    const limit = (value, size) => Math.min(Math.max(Math.floor(value), 0), size - 1);
    const x = limit((event.clientX - box.left) / box.width * this.canvas.width, this.canvas.width);
    const row = limit((event.clientY - box.top) / box.height * this.canvas.height, this.canvas.height);
    return [x, this.canvas.height - 1 - row];
  }

  move(event) {
    const [x, y] = this.place(event);
    if (x === this.x && y === this.y)
      return;
    [this.x, this.y] = [x, y];
    this.connection.send({ do: "move", x, y });
    setText(this.mouse, `${x},${y}`);
  }

  async line(line) {
    const answer = await this.connection.line(line);
    if (!answer.ok)
      this.say(`${line}: ${answer.text}`, false);
  }

  listen() {
    const { canvas } = this;
    canvas.addEventListener("pointerdown", (event) => {
      if (event.button !== 0 || this.pointer !== null)
        return;
      this.pointer = event.pointerId;
      canvas.setPointerCapture(event.pointerId);
      canvas.focus({ preventScroll: true });
      this.move(event);
      this.line("press");
      event.preventDefault();
    });
    canvas.addEventListener("pointermove", (event) => this.move(event));
    // The capture makes these arrive here, wherever the pointer is.
    for (const end of ["pointerup", "pointercancel", "lostpointercapture"])
      canvas.addEventListener(end, (event) => this.letGo(event));
    canvas.addEventListener("wheel", (event) => this.turn(event), { passive: false });
    canvas.addEventListener("keydown", (event) => this.press(event));
    canvas.addEventListener("keyup", (event) => this.release(event.code));
    canvas.addEventListener("blur", () => this.releaseAll());
    canvas.addEventListener("contextmenu", (event) => event.preventDefault());
    window.addEventListener("blur", () => this.releaseAll());
  }

  letGo(event) {
    if (this.pointer !== event.pointerId)
      return;
    this.pointer = null;
    if (event.type === "pointerup")
      this.move(event);
    this.line("release");
  }

  // Touchpads scroll by a few pixels at a time. Up is positive, as the wheel's clicks are.
  turn(event) {
    if (event.ctrlKey)
      return; // the browser's zoom
    event.preventDefault();
    const size = event.deltaMode === WheelEvent.DOM_DELTA_PIXEL ? kWheelStep : 3;
    this.wheel -= event.deltaY / size;
    const clicks = Math.trunc(this.wheel);
    if (clicks === 0)
      return;
    this.wheel -= clicks;
    const [x, y] = this.place(event);
    this.line(`wheel ${x},${y} ${clicks}`);
  }

  press(event) {
    const way = wayOut(event);
    if (way !== 0) {
      focusBeside(this.canvas, way);
      event.preventDefault();
      return;
    }
    if (isForTheBrowser(event))
      return;
    const name = keyName(event);
    const character = name ? null : typed(event);
    if (!name && !character)
      return;
    event.preventDefault();
    if (event.repeat)
      return;
    if (!name) {
      this.line(`type ${quoted(character)}`);
      return;
    }
    const altGr = event.getModifierState("AltGraph");
    this.held.set(event.code, name);
    this.line(`keydown ${word(name)}${event.shiftKey ? " shift" : ""}${event.ctrlKey && !altGr ? " control" : ""}`);
  }

  // The name is that of the press: with shift let go first, "A" would end as "a".
  release(code) {
    const name = this.held.get(code);
    if (name === undefined)
      return;
    this.held.delete(code);
    this.line(`keyup ${word(name)}`);
  }

  releaseAll() {
    for (const code of [...this.held.keys()])
      this.release(code);
  }
}
