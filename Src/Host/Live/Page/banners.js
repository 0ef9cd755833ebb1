// What has to be known at once: no token, a lost connection, a simulator that ended.
import { button, el, setText } from "./dom.js";

const kTick = 200; // milliseconds

export class Banners {
  constructor(connection, say) {
    this.connection = connection;
    this.place = document.getElementById("banners");
    this.lost = this.make("lost", "status");
    this.ended = this.make("ended", "alert");
    connection.on("state", (state) => this.showState(state));
    connection.on("connected", (state) => {
      if (state.running)
        this.hide(this.ended);
    });
    connection.on("hello", () => this.hide(this.ended));
    connection.on("ended", (state) => this.showEnd(state));
    connection.on("restarted", (state) => {
      this.hide(this.ended);
      say(state.why === "asked" ? "The simulator has started again." : `${state.why}: loaded again.`, true);
    });
  }

  make(kind, role) {
    const banner = el("div", { class: `banner ${kind}`, role, hidden: true });
    this.place.append(banner);
    return banner;
  }

  hide(banner) {
    banner.hidden = true;
    banner.replaceChildren();
  }

  show(banner, ...children) {
    banner.replaceChildren(...children);
    banner.hidden = false;
  }

  showState({ state, seconds, everOpen, reason }) {
    clearInterval(this.timer);
    if (state === "open") {
      this.hide(this.lost);
    } else if (state === "no token") {
      this.show(this.lost, el("p", {}, el("strong", {}, "No token. "),
        "Open the whole address that ‘avsk live’ printed, with what follows the #."));
    } else if (state === "lost") {
      const until = Date.now() + seconds * 1000;
      const countdown = el("span", { "aria-live": "off" });
      const left = () => Math.max(0, (until - Date.now()) / 1000).toFixed(0);
      const tick = () => setText(countdown, `Next attempt in ${left()} s. `);
      tick();
      this.timer = setInterval(tick, kTick);
      const why = everOpen
        ? `The connection to avsk is lost${reason ? `: ${reason}` : ""}. `
        : "avsk does not answer: is ‘avsk live’ running, is this the address that it printed, " +
          "and are fewer than 16 pages open? ";
      this.show(this.lost, el("p", {}, el("strong", {}, why), countdown),
        button("Try now", () => this.connection.open()));
    }
  }

  showEnd({ status, signal, report }) {
    const how = signal ? `by the signal ${signal}` : `with status ${status}`;
    this.show(this.ended,
      el("p", {}, el("strong", {}, `The simulator ended ${how}. `),
        "What was recorded since its start is gone unless it was saved."),
      report ? el("pre", { tabindex: "0", "aria-label": "Report" }, report) : null,
      button("Start again", () => this.connection.send({ do: "restart" }), { class: "main" }));
  }
}
