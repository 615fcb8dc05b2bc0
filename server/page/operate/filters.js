// The form that narrows the list.
import { filterNames } from "./choices.js";

/** @typedef {import("../types.js").Context} Context */

export class Filters {
  #form;
  #context;

  /**
   * @param {HTMLFormElement} form
   * @param {Context} context
   * @param {(choices: Record<string, string>) => void} use
   */
  constructor(form, context, use) {
    this.#form = form;
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
