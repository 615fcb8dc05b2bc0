// The rows of the list: which stand where, which is active, selected, open.
import { Clicks } from "./clicks.js";
import { Hold } from "./hold.js";
import { Rows } from "./rows.js";

/** @typedef {import("./row.js").Row} Row */
/** @typedef {import("./row.js").Item} Item */
/** @typedef {import("../types.js").HmiEvent} HmiEvent */

/**
 * @typedef {object} Handlers
 * @property {(row: Row) => void} open
 * @property {() => void} close the row that was open is gone
 * @property {(event: HmiEvent) => void} confirm
 * @property {() => void} unseen what was to be confirmed had only just come there
 * @property {(row: Row) => void} showGroup
 * @property {(rows: Row[]) => void} doubt rows of which nobody knows whether they still exist
 * @property {() => boolean} isBusy a dialog asks about rows
 * @property {() => boolean} mayConfirm
 * @property {() => void} changed something to be said about the list has changed
 */

export class List {
  #rows;
  /** @type {Item[]} */
  #latest = [];
  #isLater = false;
  #body;
  #handlers;
  #activeKey = "";
  /** @type {Set<string>} */
  selected = new Set();
  openKey = "";
  /** How many events are there that are not shown yet, and whether others have moved. */
  waiting = { count: 0, worst: 0, hasMoved: false };

  /**
   * @param {HTMLTableSectionElement} body
   * @param {Handlers} handlers
   * @param {AbortSignal} signal ends it
   */
  constructor(body, handlers, signal) {
    this.#body = body;
    this.#rows = new Rows(body);
    this.#handlers = handlers;
    this.hold = new Hold(body, () => this.#isChosen(), () => this.#release(), signal);
    this.clicks = new Clicks(body, this, handlers, signal);
    body.addEventListener("focusin", ({ target }) => this.#activate(this.rowAt(target)), { signal });
  }

  #isChosen() {
    return this.selected.size > 0 || this.openKey !== "" || this.#isLater || this.#handlers.isBusy();
  }

  /** @param {EventTarget | null} place */
  rowAt(place) {
    return this.#rows.at(place);
  }

  get rows() {
    return this.#rows.inOrder;
  }

  get active() {
    return this.#rows.get(this.#activeKey);
  }

  /** @param {string} key */
  get(key) {
    return this.#rows.get(key);
  }

  get selectedRows() {
    return [...this.selected].map((key) => this.#rows.get(key)).filter((row) => row !== null);
  }

  /** Those of the rows as they stand. */
  get events() {
    return this.rows.filter((row) => !row.group && !row.hasLeft).map(({ event }) => event);
  }

  /** @param {Row} row @param {Item} item */
  #fill(row, item) {
    row.fill(item, {
      isSelected: this.selected.has(row.key), isOpen: row.key === this.openKey,
      isActive: row.key === this.#activeKey, mayConfirm: this.#handlers.mayConfirm(),
    });
  }

  /** Brings all rows up to date as they stand. */
  refill() {
    for (const row of this.#rows.inOrder)
      this.#fill(row, row);
  }

  /**
   * Shows these. `atOnce`: the operator has asked for another view. `isLater`: they are not the
   * first ones, and a reader's page does not slide away under him.
   * @param {Item[]} items
   * @param {{atOnce: boolean, isLater: boolean}} manner
   */
  show(items, { atOnce, isLater }) {
    this.#latest = items;
    this.#isLater = isLater;
    if (!atOnce && this.#rows.size > 0 && this.hold.isHeld)
      this.#refresh();
    else
      this.place();
  }

  /** All to their places. Focus stays with its row, or where that one was. */
  place() {
    const focused = this.rowAt(document.activeElement);
    const wasButton = focused?.button === document.activeElement;
    const index = focused ? this.rows.indexOf(focused) : 0;
    this.#rows.place(this.#latest, (row, item) => this.#fill(row, item));
    this.waiting = { count: 0, worst: 0, hasMoved: false };
    this.#dropWhatIsGone();
    this.#ensureActive(index);
    if (focused && !this.#body.contains(document.activeElement))
      (wasButton && !this.active?.button.hidden ? this.active?.button : this.active?.element)
        ?.focus({ preventScroll: true });
    this.#handlers.changed();
  }

  #dropWhatIsGone() {
    this.selected = new Set([...this.selected].filter((key) => this.#rows.has(key)));
    if (this.openKey && !this.#rows.has(this.openKey)) {
      this.openKey = "";
      this.#handlers.close();
    }
  }

  /** What is shown is brought up to date where it stands; what is new waits. */
  #refresh() {
    const news = new Map(this.#latest.map((item) => [item.key, item]));
    const doubtful = [];
    for (const row of this.#rows.inOrder) {
      const { key } = row;
      const item = news.get(key);
      if (item)
        row.hasLeft = row.isDoubtful = false;
      else if (row.isDoubtful)
        doubtful.push(row);
      this.#fill(row, item ?? row);
      news.delete(key);
    }
    const fresh = [...news.values()];
    this.waiting = {
      count: fresh.length,
      worst: Math.max(0, ...fresh.map(({ event }) => Math.min(event.severity ?? 0, 4))),
      hasMoved: !this.#rows.stand(this.#latest),
    };
    if (doubtful.length > 0)
      this.#handlers.doubt(doubtful);
    this.#handlers.changed();
  }

  #release() {
    if (this.waiting.count > 0 || this.waiting.hasMoved)
      this.place();
    else
      this.#handlers.changed();
  }

  /** Brings a row up to date where it stands; its texts stay. @param {HmiEvent} event */
  update(event) {
    const row = this.#rows.get(String(event.id));
    if (!row || row.group)
      return;
    const { lastKnownSince, confirmation, ...known } = row.event;
    row.isDoubtful = false;
    this.#fill(row, { key: row.key, event: { ...known, ...event } });
  }

  /** Somebody has to look whether these are still there. @param {(row: Row) => boolean} isMeant */
  doubt(isMeant) {
    for (const row of this.#rows.inOrder)
      row.isDoubtful ||= isMeant(row);
  }

  /** @param {Row} row @param {HmiEvent | null} event what is known of it now */
  settle(row, event) {
    row.isDoubtful = false;
    row.hasLeft = !event;
    this.#fill(row, event ? { key: row.key, event } : row);
  }

  /** @param {number} [index] where to look when the active row is gone */
  #ensureActive(index = 0) {
    if (!this.#rows.has(this.#activeKey))
      this.#activate(this.rows[Math.min(index, this.#rows.size - 1)] ?? null);
  }

  /** @param {Row | null} row */
  #activate(row) {
    if (!row || row.key === this.#activeKey)
      return;
    const before = this.active;
    this.#activeKey = row.key;
    for (const one of [before, row])
      one && this.#fill(one, one);
  }

  /** Puts the focus on the row that is so many away. @param {number} step */
  move(step) {
    const { rows } = this;
    if (rows.length === 0)
      return;
    const at = this.active ? rows.indexOf(this.active) : 0;
    const isInside = this.#body.contains(document.activeElement);
    const to = isInside ? Math.min(rows.length - 1, Math.max(0, at + step)) : at;
    rows[to].element.focus();
    rows[to].element.scrollIntoView({ block: "nearest" });
    if (this.openKey)
      this.#handlers.open(rows[to]);
  }

  /** @param {Row} row */
  toggle(row) {
    if (row.group || row.event.kind === "gap")
      return;
    if (!this.selected.delete(row.key))
      this.selected.add(row.key);
    this.#fill(row, row);
    this.#handlers.changed();
    this.hold.checkSoon();
  }

  clearSelection() {
    this.selected.clear();
    this.refill();
    this.#handlers.changed();
    this.hold.checkSoon();
  }

  /** @param {string} key "" for none */
  setOpen(key) {
    this.openKey = key;
    this.refill();
    this.hold.checkSoon();
  }
}
