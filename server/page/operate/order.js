// By what the list is ordered: the heads of its columns say and change it, and where rows are cards
// and have no heads, a choice does.
import { orderOf } from "./choices.js";

/** How a column is ordered without a "-" before its name, in words of aria-sort. */
const natural = /** @type {Record<string, string>} */ ({
  priority: "descending", time: "descending", target: "ascending", name: "ascending",
});

/** @param {string} order */
function directionOf(order) {
  const direction = natural[order.replace(/^-/, "")];
  const opposite = direction === "ascending" ? "descending" : "ascending";
  return order.startsWith("-") ? opposite : direction;
}

export class Order {
  #heads;
  #choice;
  #address;

  /**
   * @param {HTMLElement} heads
   * @param {HTMLSelectElement} choice
   * @param {import("../types.js").Address} address
   * @param {(order: string) => void} use
   */
  constructor(heads, choice, address, use) {
    this.#heads = heads;
    this.#choice = choice;
    this.#address = address;
    const change = (/** @type {string} */ order) => use(order === "priority" ? "" : order);
    heads.addEventListener("click", ({ target }) => {
      const column = /** @type {HTMLElement} */ (target).closest("button")?.dataset.order;
      if (column)
        change(this.#now() === column ? `-${column}` : column);
    });
    choice.addEventListener("change", () => change(choice.value));
  }

  #now() {
    return orderOf({ order: this.#address.get("order") });
  }

  /** As the address says, in the language of now. */
  show() {
    const now = this.#now();
    const options = [];
    for (const head of this.#heads.querySelectorAll("th")) {
      const button = head.querySelector("button");
      const column = button?.dataset.order ?? "";
      if (column && column === now.replace(/^-/, ""))
        head.setAttribute("aria-sort", directionOf(now));
      else
        head.removeAttribute("aria-sort");
      for (const order of column ? [column, `-${column}`] : []) {
        const arrow = directionOf(order) === "ascending" ? "▴" : "▾";
        options.push(new Option(`${button?.textContent} ${arrow}`, order));
      }
    }
    if (options.map(({ text }) => text).join() !== [...this.#choice].map((one) => one.text).join())
      this.#choice.replaceChildren(...options);
    this.#choice.value = now;
  }
}
