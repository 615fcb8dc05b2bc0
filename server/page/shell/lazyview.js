// A view that is made once its words are there, unless it has been left by then.
import { addWords } from "./words.js";

/** @typedef {{close(): void, languageChanged(): void}} Opened */

/**
 * @param {string} name of its words
 * @param {(root: HTMLElement, context: import("../types.js").Context) => Opened} create
 */
export function lazyView(name, create) {
  /** @type {Opened | null} */
  let opened = null;
  let openings = 0;
  return {
    /** @type {import("../types.js").View["open"]} */
    async open(root, context) {
      const mine = ++openings;
      await addWords(name);
      if (mine === openings)
        opened = create(root, context);
    },
    close() {
      ++openings;
      opened?.close();
      opened = null;
    },
    languageChanged: () => opened?.languageChanged(),
  };
}
