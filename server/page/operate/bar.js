// The line above the list: what waits, what is hidden, what is selected, whether alarms flood.
import { setText } from "../shell/dom.js";
import { clock, number } from "../shell/format.js";
import { flood } from "../shell/situation.js";
import { link } from "../shell/stream.js";
import { label } from "../shell/words.js";

/**
 * @typedef {object} Said
 * @property {import("./list.js").List} list
 * @property {number} hidden events that the choices leave out
 * @property {boolean} isGrouped
 * @property {number} confirmable of those that are shown
 * @property {boolean} mayConfirm
 */

export class Bar {
  #part;

  /**
   * @param {HTMLElement} root
   * @param {Record<string, (press: Event) => void>} actions by the class of the button
   */
  constructor(root, actions) {
    this.#part = (/** @type {string} */ name) =>
      /** @type {HTMLElement} */ (root.querySelector(`.${name}`));
    for (const [name, action] of Object.entries(actions))
      this.#part(name).addEventListener("click", action);
  }

  /** @param {Said} said */
  show({ list, hidden, isGrouped, confirmable, mayConfirm }) {
    this.#showWaiting(list);
    const { flood: isFlood, rate } = flood();
    setText(this.#part("flood"), isFlood ? label("flood", number(rate)) : "");
    this.#part("grouping").setAttribute("aria-pressed", String(isGrouped));
    setText(this.#part("hiddenCount"), hidden > 0 ? label("hidden", number(hidden)) : "");
    this.#part("showAll").hidden = hidden <= 0;
    const chosen = list.selected.size;
    setText(this.#part("chosen"), chosen > 0 ? label("selected", number(chosen)) : "");
    this.#part("confirmChosen").hidden = chosen === 0 || !mayConfirm;
    const all = /** @type {HTMLButtonElement} */ (this.#part("confirmShown"));
    all.hidden = !mayConfirm;
    all.setAttribute("aria-disabled", String(confirmable === 0));
    setText(all, label("confirmShown", number(confirmable)));
  }

  /** @param {import("./list.js").List} list */
  #showWaiting({ hold, waiting: { count, worst, hasMoved } }) {
    const frozen = this.#part("freeze");
    frozen.setAttribute("aria-pressed", String(hold.isFrozen));
    setText(frozen, label(hold.isFrozen ? "frozen" : "freeze"));
    const isDown = link.state === "silent" || link.state === "reconnecting";
    setText(this.#part("still"), isDown ? label("asOf", clock(link.heard))
      : hold.isHeld && !hold.isFrozen ? label("still") : "");
    const waiting = this.#part("waiting");
    const isHidden = count === 0 && !hasMoved;
    if (isHidden && waiting === document.activeElement)
      this.#part("freeze").focus();
    waiting.hidden = isHidden;
    setText(waiting, count > 0
      ? `${label("waiting", number(count))} (${label(`severity${worst}`)})` : label("moved"));
  }
}
