// Views that the operator has given a name, kept by the browser.
import { element } from "../shell/dom.js";
import { keep, kept } from "../shell/storage.js";
import { label } from "../shell/words.js";
import { ask } from "./dialog.js";
import { filterNames } from "./choices.js";

const storeName = "views";
const parts = [...filterNames, "order", "group"];

/** @typedef {Record<string, Record<string, string>>} Views */

/** @returns {Views} */
function all() {
  try {
    return JSON.parse(kept(storeName) ?? "{}");
  } catch {
    return {};
  }
}

export class NamedViews {
  #choice;
  #remove;
  #address;
  #use;

  /**
   * @param {HTMLElement} form
   * @param {import("../types.js").Address} address
   * @param {(choices: Record<string, string>) => void} use
   */
  constructor(form, address, use) {
    this.#address = address;
    this.#use = use;
    this.#choice = /** @type {HTMLSelectElement} */ (form.querySelector(".namedView"));
    this.#remove = /** @type {HTMLButtonElement} */ (form.querySelector(".removeView"));
    this.#choice.addEventListener("change", () => this.#chosen());
    form.querySelector(".saveView")?.addEventListener("click", () => this.#save());
    this.#remove.addEventListener("click", () => this.#drop());
    this.show();
  }

  #now() {
    return Object.fromEntries(parts.map((part) => [part, this.#address.get(part)]));
  }

  /** The name of what is shown, if it has one. */
  show() {
    const views = all();
    const now = JSON.stringify(this.#now());
    const name = Object.keys(views).find((one) => JSON.stringify(views[one]) === now) ?? "";
    this.#choice.replaceChildren(new Option(label("noView"), ""),
      ...Object.keys(views).sort().map((one) => new Option(one, one)));
    this.#choice.value = name;
    this.#remove.disabled = !name;
  }

  #chosen() {
    const view = all()[this.#choice.value];
    this.#use(view ?? Object.fromEntries(parts.map((part) => [part, ""])));
  }

  async #save() {
    const name = element("input", { required: true, maxLength: 60, autocomplete: "off" });
    const isSure = await ask(label("saveView"), [element("label", {}, label("viewName"), name)],
      label("save"));
    if (isSure && name.value.trim())
      keep(storeName, JSON.stringify({ ...all(), [name.value.trim()]: this.#now() }));
    this.show();
  }

  #drop() {
    const { [this.#choice.value]: dropped, ...rest } = all();
    if (dropped)
      keep(storeName, JSON.stringify(rest));
    this.show();
    this.#choice.focus();
  }
}
