// The rows in the order in which they stand.
import { Row } from "./row.js";

/** @typedef {import("./row.js").Item} Item */

export class Rows {
  #body;
  /** @type {Map<string, Row>} */
  #byKey = new Map();

  /** @param {HTMLTableSectionElement} body */
  constructor(body) {
    this.#body = body;
  }

  get size() {
    return this.#byKey.size;
  }

  /** @param {string} key */
  has(key) {
    return this.#byKey.has(key);
  }

  /** @param {string} key */
  get(key) {
    return this.#byKey.get(key) ?? null;
  }

  /** The one that this element is in. @param {EventTarget | null} place */
  at(place) {
    const element = /** @type {HTMLElement | null} */ (place)?.closest?.("tr");
    return this.get(element?.dataset.key ?? "");
  }

  get inOrder() {
    return [...this.#body.rows].map((element) => /** @type {Row} */ (this.at(element)));
  }

  /** These and no others, in this order. @param {Item[]} items */
  stand(items) {
    const { rows } = this.#body;
    return items.length === rows.length &&
      items.every(({ key }, at) => this.#byKey.get(key)?.element === rows[at]);
  }

  /**
   * Has a row for each, in this order.
   * @param {Item[]} items
   * @param {(row: Row, item: Item) => void} fill
   */
  place(items, fill) {
    const placed = new Map();
    const free = this.#free(items);
    items.forEach((item, at) => {
      const here = this.#body.rows[at] ?? null;
      const row = this.#byKey.get(item.key) ?? rowFor(item, free, here);
      row.hasLeft = row.isDoubtful = false;
      row.at = at;
      placed.set(item.key, row);
      if (here !== row.element)
        this.#body.insertBefore(row.element, here);
      fill(row, item);
    });
    while (this.#body.rows.length > items.length)
      this.#body.lastElementChild?.remove();
    this.#byKey = placed;
  }

  /**
   * Rows of events that are shown no more, by element; one that has the focus is not given away.
   * @param {Item[]} items
   */
  #free(items) {
    const wanted = new Set(items.map(({ key }) => key));
    return new Map([...this.#byKey.values()]
      .filter(({ key, element }) => !wanted.has(key) && !element.contains(document.activeElement))
      .map((row) => [row.element, row]));
  }
}

/**
 * The row that stands there if it is free, else any, else a new one: in a flood of alarms elements
 * are not made and thrown away by the thousand.
 * @param {Item} item @param {Map<HTMLElement, Row>} free @param {HTMLElement | null} here
 */
function rowFor(item, free, here) {
  const row = (here && free.get(here)) ?? free.values().next().value;
  if (!row)
    return new Row(item);
  free.delete(row.element);
  row.take(item);
  return row;
}
