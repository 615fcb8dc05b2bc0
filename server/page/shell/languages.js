// The choice of the page's language.
import { address } from "./address.js";
import { byId } from "./dom.js";
import { notify } from "./notices.js";
import { keep, kept } from "./storage.js";
import { language, locales } from "./words.js";

/** The link's language, else the one chosen before, else the browser's. */
export const startLanguage = () =>
  address.get("lang") || kept("language") || navigator.language;

/** @param {(language: string) => Promise<void>} use */
export function offerLanguages(use) {
  const choice = /** @type {HTMLSelectElement} */ (byId("language"));
  for (const [name, text] of locales) {
    const option = new Option(text, name.slice(0, 2));
    option.lang = name.slice(0, 2);
    choice.append(option);
  }
  choice.value = language();
  choice.addEventListener("change", async () => {
    try {
      await use(choice.value);
      keep("language", choice.value);
      address.replace({ lang: choice.value });
    } catch (error) {
      choice.value = language();
      notify(/** @type {Error} */ (error).message, true);
    }
  });
}
