// What stood under the pointer or had the focus when it was pressed is what is meant, whatever
// stands there when the press ends.

/** @typedef {import("./row.js").Row} Row */
/** @typedef {import("../types.js").HmiEvent} HmiEvent */

export class Aim {
  /** @type {Row | null} */
  #row = null;
  /** @type {HmiEvent | null} */
  #event = null;

  /**
   * @param {HTMLElement} area
   * @param {(place: EventTarget | null) => Row | null} rowAt
   * @param {AbortSignal} signal ends it
   */
  constructor(area, rowAt, signal) {
    const take = (/** @type {Event} */ press) => {
      this.#row = rowAt(press.target);
      this.#event = this.#row?.seen.isBefore(press) ? this.#row.event : null;
    };
    area.addEventListener("pointerdown", take, { capture: true, signal });
    area.addEventListener("keydown", (press) => press.repeat || take(press),
      { capture: true, signal });
  }

  /**
   * The event that a click on this row means; null for one that nobody can have seen.
   * @param {Row} row
   */
  take(row) {
    const meant = row === this.#row ? this.#event : row.event;
    this.#row = null;
    return meant;
  }
}
