// What a click in the list means: what stood there when the button went down.
import { Aim } from "./aim.js";

/** @typedef {import("./row.js").Row} Row */
/** @typedef {import("../types.js").HmiEvent} HmiEvent */

export class Clicks {
  #list;
  #handlers;
  #aim;

  /**
   * @param {HTMLElement} body the rows
   * @param {import("./list.js").List} list
   * @param {import("./list.js").Handlers} handlers
   * @param {AbortSignal} signal ends it
   */
  constructor(body, list, handlers, signal) {
    this.#list = list;
    this.#handlers = handlers;
    this.#aim = new Aim(body, (place) => list.rowAt(place), signal);
    body.addEventListener("click", (click) => this.#click(click), { signal });
  }

  /** @param {MouseEvent} click */
  #click(click) {
    const target = /** @type {HTMLElement} */ (click.target);
    const row = this.#list.rowAt(target);
    if (!row)
      return;
    const meant = this.#aim.take(row);
    if (target.closest("button"))
      this.#press(row, meant, click.detail);
    else if (target === row.check)
      this.#list.toggle(row);
    else if (!target.closest(".select") && getSelection()?.isCollapsed !== false)
      this.#handlers.open(row);
  }

  /**
   * The second click of a double one is not meant for whatever stands there.
   * @param {Row} row @param {HmiEvent | null} meant @param {number} clicks
   */
  #press(row, meant, clicks) {
    if (clicks > 1 || row.button.getAttribute("aria-disabled") === "true")
      return;
    if (row.group)
      this.#handlers.showGroup(row);
    else if (meant)
      this.#handlers.confirm(meant);
    else
      this.#handlers.unseen();
  }
}
