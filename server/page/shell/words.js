// The page's own words. Event texts come from the server, in the same language.
// Each view has a file of words for each language; only those that are shown are loaded.

/** Each in its own language; the first is taken when the browser's is not among them. */
export const locales = [
  ["en-US", "English"], ["de-DE", "Deutsch"], ["ru-RU", "Русский"], ["fr-FR", "Français"],
  ["it-IT", "Italiano"], ["es-ES", "Español"], ["pl-PL", "Polski"], ["zh-CN", "中文"],
];

/** @type {Record<string, string>} */
let current = {};
/** @type {Set<string>} */
const parts = new Set([""]);
let tongue = "en";

export const language = () => tongue;
export const locale = () =>
  locales.find(([name]) => name.startsWith(tongue))?.[0] ?? locales[0][0];

const otherDirection = /[\u0590-\u08ff\u200f\u202a-\u202e\u2066-\u2069\ufb1d-\ufdff\ufe70-\ufefc]/;

/**
 * A text from outside keeps its direction to itself when it stands among other words.
 * @param {string} text
 */
export const isolated = (text) => otherDirection.test(text) ? `\u2068${text}\u2069` : text;

/**
 * The words of that name, with the values in the places of {0}, {1} ...
 * @param {string} key
 * @param {...(string | number)} values
 */
export const label = (key, ...values) => (current[key] ?? key).replace(/\{(\d)\}/g,
  (_, index) => isolated(String(values[index] ?? "")));

/**
 * @param {string} part
 * @param {string} wanted a language
 */
const load = async (part, wanted) =>
  (await import(`../words/${part && `${part}/`}${wanted}.js`)).words;

/**
 * The words of a view, in this language and from now on in each that is chosen.
 * @param {string} part
 */
export async function addWords(part) {
  parts.add(part);
  current = { ...current, ...await load(part, tongue) };
}

/** @param {string} wanted a language or a locale; English when there are no words in it */
export async function useLanguage(wanted) {
  const known = locales.find(([name]) => name.slice(0, 2) === wanted.slice(0, 2));
  const chosen = (known ?? locales[0])[0].slice(0, 2);
  const all = await Promise.all([...parts].map((part) => load(part, chosen)));
  current = Object.assign({}, ...all);
  tongue = chosen;
  document.documentElement.lang = chosen;
  document.documentElement.dir = "ltr";  // all eight are written so
}

/**
 * Puts the words on the elements that name them: data-label, data-label-aria, data-label-title.
 * @param {ParentNode} root
 */
export function applyWords(root) {
  for (const place of root.querySelectorAll("[data-label]"))
    place.textContent = label(place.getAttribute("data-label") ?? "");
  for (const name of ["aria-label", "title", "placeholder"]) {
    for (const place of root.querySelectorAll(`[data-label-${name}]`))
      place.setAttribute(name, label(place.getAttribute(`data-label-${name}`) ?? ""));
  }
}
