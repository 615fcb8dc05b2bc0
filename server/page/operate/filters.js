// The form that narrows the list, and the heads of its columns that order it.
import { orderOf, filterNames } from "./choices.js";

/** @typedef {import("../types.js").Context} Context */

/** How a column is ordered without a "-" before its name, in words of aria-sort. */
const natural = {
  priority: "descending", time: "descending", target: "ascending", name: "ascending",
};

export class Filters {
  #form;
  #heads;
  #context;

  /**
   * @param {HTMLFormElement} form
   * @param {HTMLElement} heads
   * @param {Context} context
   * @param {(choices: Record<string, string>) => void} use
   */
  constructor(form, heads, context, use) {
    this.#form = form;
    this.#heads = heads;
    this.#context = context;
    form.addEventListener("submit", (submit) => submit.preventDefault());
    form.addEventListener("input", ({ target }) => {
      const { name, value } = /** @type {HTMLInputElement} */ (target);
      if (filterNames.includes(name))
        use({ [name]: value });
    });
    form.addEventListener("reset", (reset) => {
      reset.preventDefault();
      use(Object.fromEntries(filterNames.map((name) => [name, ""])));
    });
    form.querySelector(".unfold")?.addEventListener("click", ({ currentTarget }) => {
      const isOpen = form.classList.toggle("unfolded");
      /** @type {Element} */ (currentTarget).setAttribute("aria-expanded", String(isOpen));
    });
    heads.addEventListener("click", ({ target }) => {
      const column = /** @type {HTMLElement} */ (target).closest("button")?.dataset.order;
      if (column)
        use({ order: this.#next(column) });
    });
  }

  /** The other direction of the column that orders already. @param {string} column */
  #next(column) {
    const next = this.#order() === column ? `-${column}` : column;
    return next === "priority" ? "" : next;
  }

  #order() {
    return orderOf({ order: this.#context.address.get("order") });
  }

  /** As the address says. */
  show() {
    this.offerTargets();
    for (const name of filterNames) {
      const field = /** @type {HTMLInputElement} */ (this.#form.elements.namedItem(name));
      const value = this.#context.address.get(name);
      if (field.value !== value)
        field.value = value;
    }
    this.showOrder();
  }

  showOrder() {
    const order = this.#order();
    const by = order.replace(/^-/, "");
    for (const head of this.#heads.querySelectorAll("th")) {
      const column = head.querySelector("button")?.dataset.order;
      const direction = natural[/** @type {keyof typeof natural} */ (by)];
      const opposite = direction === "ascending" ? "descending" : "ascending";
      if (column === by)
        head.setAttribute("aria-sort", order === by ? direction : opposite);
      else
        head.removeAttribute("aria-sort");
    }
  }

  /** A target that is gone stays a choice while it is chosen. */
  offerTargets() {
    const choice = /** @type {HTMLSelectElement} */ (this.#form.elements.namedItem("target"));
    const chosen = this.#context.address.get("target");
    const names = this.#context.targets().map(({ name }) => name);
    const wanted = [...new Set([...names, chosen].filter(Boolean))].sort();
    const offered = [...choice.options].slice(1).map(({ value }) => value);
    if (wanted.join("\n") === offered.join("\n"))
      return;
    choice.replaceChildren(choice.options[0], ...wanted.map((name) => new Option(name, name)));
    choice.value = chosen;
  }
}
