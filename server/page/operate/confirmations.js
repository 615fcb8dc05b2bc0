// Confirming, and what became of it as long as the server has not said it better.
import { clock, number } from "../shell/format.js";
import { isConfirmable, keyOf, severities, targetOf } from "../shell/event.js";
import { element, icon } from "../shell/dom.js";
import { label } from "../shell/words.js";
import { ask } from "./dialog.js";

const most = 1000;      // occurrences a request
const mostOwn = 5000;   // occurrences of which we remember what became of them

/** @typedef {import("../types.js").HmiEvent} HmiEvent */
/** @typedef {import("../types.js").Confirmation} Confirmation */

export class Confirmations {
  /** Of an occurrence; the server's own word replaces it. @type {Map<string, Confirmation>} */
  #own = new Map();
  #context;
  #changed;
  isAsking = false;

  /**
   * @param {import("../types.js").Context} context
   * @param {() => void} changed
   */
  constructor(context, changed) {
    this.#context = context;
    this.#changed = changed;
  }

  /** @param {HmiEvent} event */
  #key = (event) => `${keyOf(event)} ${event.timeRaised}`;

  /** The event with what we know of its confirmation. @param {HmiEvent} event */
  applyTo(event) {
    const own = this.#own.get(this.#key(event));
    if (!own)
      return event;
    const isSaid = event.confirmation && (own.state === "requested" || event.confirmation.at > own.at);
    if (isSaid || !isConfirmable({ ...event, confirmation: undefined }))
      this.#own.delete(this.#key(event));
    return isSaid ? event : { ...event, confirmation: own };
  }

  /** @param {HmiEvent[]} events @param {Confirmation["state"]} state @param {string} [text] */
  #note(events, state, text = "") {
    const by = this.#context.user?.name ?? label("thisPage");
    const at = new Date().toISOString();
    for (const event of events)
      this.#own.set(this.#key(event), { state, by, at, ...(text && { text }) });
    for (const key of [...this.#own.keys()].slice(0, -mostOwn))
      this.#own.delete(key);
    this.#changed();
  }

  /**
   * What is selected; else what has the focus or is open.
   * @param {import("./list.js").List} list
   * @param {Event} press
   */
  confirmSelected(list, press) {
    const focused = list.rowAt(document.activeElement) ?? list.get(list.openKey);
    const chosen = list.selected.size > 0 ? list.selectedRows
      : focused && !focused.group ? [focused] : [];
    const rows = chosen.filter(({ event }) => isConfirmable(event));
    const meant = rows.map(({ event }) => event);
    if (meant.length !== 1 || !this.#context.may("confirm"))
      return this.confirmMany(meant);
    return rows[0].seen.isBefore(press) ? this.confirm(meant) : this.sayUnseen();
  }

  sayUnseen() {
    this.#context.notify(label("unseen"));
  }

  /** Confirms these occurrences. @param {HmiEvent[]} events @param {string} [comment] */
  async confirm(events, comment = "") {
    const meant = events.filter(isConfirmable);
    this.#note(meant, "requested");
    for (let first = 0; first < meant.length; first += most)
      await this.#send(meant.slice(first, first + most), comment);
  }

  /** @param {HmiEvent[]} events @param {string} comment */
  async #send(events, comment) {
    try {
      const answers = await this.#context.api.confirm(events, comment);
      answers.forEach(({ status, text }, index) => {
        if (status >= 300)
          this.#fail(events[index], status, text);
      });
    } catch (error) {
      this.#note(events, "failed", /** @type {Error} */ (error).message);
    }
  }

  /** @param {HmiEvent} event @param {number} status @param {string} [text] */
  #fail(event, status, text) {
    const target = this.#context.targets().find(({ name }) => name === targetOf(event));
    const isAgain = status === 409 && target?.state !== "lost";
    this.#note([event], "failed",
      isAgain ? label("raisedAgain") : status === 409 ? label("targetLost") : text);
    if (isAgain)  // the row is the new occurrence's
      this.#context.notify(label("raisedAgain"));
  }

  /**
   * Asks first, with the count by priority. What is confirmed are the occurrences of now.
   * @param {HmiEvent[]} events
   */
  async confirmMany(events) {
    const meant = this.#context.may("confirm") ? events.filter(isConfirmable) : [];
    if (meant.length === 0)
      return this.#context.notify(label("nothingToConfirm"));
    this.isAsking = true;
    const comment = element("input", { name: "comment", maxLength: 500, autocomplete: "off" });
    const isSure = await ask(label("confirmMany", number(meant.length)),
      [countsOf(meant), element("label", {}, label("comment"), comment)],
      label("confirmCount", number(meant.length)));
    this.isAsking = false;
    if (isSure)
      await this.confirm(meant, comment.value.trim());
    this.#changed();
  }
}

/** @param {HmiEvent[]} events */
function countsOf(events) {
  const list = element("ul", { className: "byPriority" });
  for (const severity of severities) {
    const count = events.filter((event) => severityOf(event) === severity).length;
    if (count > 0)
      list.append(element("li", { className: `severity${severity}` },
        icon(`priority${5 - severity}`), ` ${label(`severity${severity}`)}: ${number(count)}`));
  }
  const oldest = events.map(({ timeRaised }) => timeRaised ?? "").sort()[0];
  list.append(element("li", {}, label("oldestOfThese", clock(oldest))));
  return list;
}

const severityOf = (/** @type {HmiEvent} */ { severity }) =>
  severity <= 4 ? Math.max(1, severity) : 1;
