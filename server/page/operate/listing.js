// Keeps what the list shows as the server has it.
import { keyOf } from "../shell/event.js";
import { setText } from "../shell/dom.js";
import { number } from "../shell/format.js";
import { throttled } from "../shell/throttled.js";
import { label } from "../shell/words.js";
import { lastOffset, load } from "./loader.js";
import { Pace } from "./pace.js";

/** @typedef {import("./row.js").Row} Row */
/** @typedef {import("./row.js").Item} Item */

/**
 * @typedef {object} Parts
 * @property {import("./list.js").List} list
 * @property {import("./pane.js").Pane} pane
 * @property {import("./confirmations.js").Confirmations} confirmations
 * @property {() => import("./choices.js").Choices} choices
 * @property {() => boolean} isGrouped
 * @property {(choices: Record<string, string | number>) => void} use
 */

export class Listing {
  pace = new Pace();
  /** Events that the choices leave out. */
  hidden = 0;
  #context;
  #parts;
  #find;
  #loading = new AbortController();
  #isClosed = false;
  #atOnce = true;
  #items = /** @type {Item[]} */ ([]);
  #total = 0;

  /**
   * @param {HTMLElement} root
   * @param {import("../types.js").Context} context
   * @param {Parts} parts
   */
  constructor(root, context, parts) {
    this.#context = context;
    this.#parts = parts;
    this.#find = (/** @type {string} */ name) =>
      /** @type {HTMLElement} */ (root.querySelector(name));
    this.load = throttled(() => this.#load(), () => this.pace.pause);
  }

  /** Soon. */
  load;

  /** The operator wants to see something else: not even rows that stand still stay. */
  loadAnew() {
    this.#loading.abort();
    this.#atOnce = true;
    this.load();
  }

  async #load() {
    this.#loading = new AbortController();
    const { signal } = this.#loading;
    const { choices, isGrouped, use, pane, list } = this.#parts;
    const asked = choices();
    try {
      const answer = await this.pace.measure(
        () => load(asked, this.#context.locale(), isGrouped(), keyOf, signal));
      const offset = Number(asked.offset);
      if (signal.aborted || this.#isClosed)
        return;
      if (offset > 0 && offset >= answer.total)
        return use({ offset: lastOffset(answer.total) || "" });
      this.#items = answer.items;
      this.#total = answer.total;
      this.hidden = answer.hidden;
      this.show();
      this.#showRange(offset);
      pane.follow(list);
    } catch (error) {
      if (!signal.aborted)
        this.#context.notify(
          `${label("loadFailed")}: ${/** @type {Error} */ (error).message}`, true);
    }
  }

  /** What was loaded, with what we know better. */
  show() {
    const { confirmations, list, choices } = this.#parts;
    const items = this.#items.map((item) =>
      item.group ? item : { ...item, event: confirmations.applyTo(item.event) });
    list.show(items, { atOnce: this.#atOnce, isLater: Number(choices().offset) > 0 });
    this.#atOnce = false;
    this.#find(".empty").hidden = this.#total > 0;
  }

  /** @param {number} offset */
  #showRange(offset) {
    const last = offset + this.#items.length;
    setText(this.#find(".range"), this.#total === 0 ? ""
      : label("range", number(offset + 1), number(last), number(this.#total)));
    /** @type {HTMLButtonElement} */ (this.#find(".newer")).disabled = offset === 0;
    /** @type {HTMLButtonElement} */ (this.#find(".older")).disabled = last >= this.#total;
  }

  /** Each by itself: whether it is still there, and how. @param {Row[]} rows */
  async lookFor(rows) {
    const { api, locale } = this.#context;
    for (const row of rows) {
      row.isDoubtful = false;
      const found = await api.request(`/api/events/${row.key}?${api.query({ locale: locale() })}`)
        .catch((error) => error.status === 404 ? null : row.event);
      if (this.#isClosed)
        return;
      this.#parts.list.settle(row, found);
    }
  }

  close() {
    this.#isClosed = true;
    this.#loading.abort();
  }
}
