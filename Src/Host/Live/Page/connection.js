// The WebSocket to the server: what the page asks for, what it gets, and new attempts after a loss.
const kTokenKey = "avsk.live.token";
const kToken = /^#[0-9a-f]{32}$/;
const kPauses = [0.5, 1, 2, 4, 8, 15]; // seconds between attempts

// The token stands in the address once. After that the tab keeps it, so that a reload works and the address bar, and
// what is copied from it, holds no secret.
function takeToken() {
  if (kToken.test(location.hash)) {
    sessionStorage.setItem(kTokenKey, location.hash.slice(1));
    history.replaceState(null, "", location.pathname + location.search);
  }
  return sessionStorage.getItem(kTokenKey);
}

export class Connection {
  constructor() {
    this.listeners = new Map(); // topic -> functions. "fresh": what was received before is of another simulator or time
    this.wanted = new Map();    // who -> topics
    this.waiting = new Map();   // id of a line -> resolve
    this.lastId = 0;
    this.attempts = 0;
    this.everOpen = false;
    window.addEventListener("hashchange", () => kToken.test(location.hash) && this.open());
  }

  on(topic, listener) {
    const known = this.listeners.get(topic) ?? [];
    this.listeners.set(topic, [...known, listener]);
  }

  tell(topic, message) {
    for (const listener of this.listeners.get(topic) ?? [])
      listener(message);
  }

  get isOpen() { return this.socket?.readyState === WebSocket.OPEN; }

  open() {
    clearTimeout(this.timer);
    const token = takeToken();
    if (!token) {
      this.tell("state", { state: "no token" });
      return;
    }
    if (this.socket) {
      this.socket.onclose = null;
      this.socket.close();
    }
    this.tell("state", { state: "waiting" });
    const socket = new WebSocket(`ws://${location.host}/live`, ["avsk", token]);
    socket.binaryType = "arraybuffer";
    socket.onopen = () => this.opened();
    socket.onmessage = (event) => this.receive(event.data);
    socket.onclose = (event) => this.closed(event);
    this.socket = socket;
  }

  opened() {
    this.attempts = 0;
    this.everOpen = true;
    this.sendTopics();
    this.tell("fresh");
    this.tell("state", { state: "open" });
  }

  closed(event) {
    this.failWaiting("the connection was lost");
    const seconds = kPauses[Math.min(this.attempts++, kPauses.length - 1)];
    this.tell("state", { state: "lost", seconds, everOpen: this.everOpen, reason: event.reason });
    this.timer = setTimeout(() => this.open(), seconds * 1000);
  }

  failWaiting(text) {
    for (const resolve of this.waiting.values())
      resolve({ ok: false, text });
    this.waiting.clear();
  }

  receive(data) {
    if (typeof data !== "string") {
      this.tell("tiles", data);
      return;
    }
    const message = JSON.parse(data);
    if (message.topic === "answer" && this.waiting.has(message.id)) {
      this.waiting.get(message.id)(message);
      this.waiting.delete(message.id);
    }
    if (message.topic === "ended" || message.topic === "restarted")
      this.failWaiting("the simulator ended");
    if (message.topic === "restarted")
      this.tell("fresh");
    this.tell(message.topic, message);
  }

  send(message) {
    if (this.isOpen)
      this.socket.send(JSON.stringify(message));
  }

  // Sends a message that is answered: {ok, text}.
  ask(message) {
    if (!this.isOpen)
      return Promise.resolve({ ok: false, text: "there is no connection" });
    const id = ++this.lastId;
    return new Promise((resolve) => {
      this.waiting.set(id, resolve);
      this.send({ ...message, id });
    });
  }

  line(line) { return this.ask({ do: "line", line }); }

  // What `who` shows now. Nothing is computed for topics that no page wants.
  want(who, topics) {
    this.wanted.set(who, topics);
    this.sendTopics();
  }

  sendTopics() { this.send({ do: "topics", open: [...new Set([...this.wanted.values()].flat())].sort() }); }
}
