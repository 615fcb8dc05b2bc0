// A list of names and values that is brought up to date in place: what somebody has marked in it
// stays marked.
import { element, setText } from "../shell/dom.js";
import { number } from "../shell/format.js";
import { label } from "../shell/words.js";

const longest = 20000;  // characters that are shown at once

/**
 * @typedef {object} Term
 * @property {string} name
 * @property {string | null | undefined} value without one it is not shown
 * @property {boolean} [isBlock] its lines are kept
 * @property {string} [lang]
 */

export class Terms {
  element = element("dl");
  /** @typedef {Record<"dt" | "dd" | "text" | "more", HTMLElement>} Shown */
  /** @type {Map<string, Shown>} */
  #shown = new Map();
  /** @type {Set<string>} */
  #whole = new Set();

  /** @param {Term[]} terms names may be there twice */
  show(terms) {
    const used = new Set();
    for (const term of terms.filter(({ value }) => value != null && value !== "")) {
      let key = term.name;
      while (used.has(key))
        key += "\n";
      used.add(key);
      this.#fill(key, term);
    }
    for (const [key, { dt, dd }] of this.#shown) {
      if (used.has(key))
        continue;
      dt.remove();
      dd.remove();
      this.#shown.delete(key);
    }
  }

  /** @param {string} key @param {Term} term */
  #fill(key, { name, value, isBlock, lang }) {
    const parts = this.#shown.get(key) ?? this.#create(key, name);
    const text = value ?? "";
    const isCut = text.length > longest && !this.#whole.has(key);
    setText(parts.text, isCut ? text.slice(0, longest) : text);
    parts.text.lang = lang ?? "";
    parts.dd.className = isBlock ? "block" : "";
    parts.more.hidden = !isCut;
    setText(parts.more, isCut ? label("showWhole", number(text.length)) : "");
    parts.more.onclick = () => {
      this.#whole.add(key);
      this.#fill(key, { name, value, isBlock, lang });
    };
  }

  /** @param {string} key @param {string} name */
  #create(key, name) {
    const text = element("bdi");
    const more = element("button", { type: "button", hidden: true });
    const parts = { dt: element("dt", {}, element("bdi", {}, name)),
      dd: element("dd", {}, text, more), text, more };
    this.element.append(parts.dt, parts.dd);
    this.#shown.set(key, parts);
    return parts;
  }
}
