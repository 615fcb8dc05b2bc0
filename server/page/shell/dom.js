// Small things that all parts build their elements with.

/**
 * @template {keyof HTMLElementTagNameMap} Name
 * @param {Name} name
 * @param {Record<string, any>} [properties] of the element; `data-` and `aria-` names, `role` and
 *   `for` become attributes
 * @param {...(Node | string)} children
 * @returns {HTMLElementTagNameMap[Name]}
 */
export function element(name, properties = {}, ...children) {
  const created = document.createElement(name);
  for (const [key, value] of Object.entries(properties)) {
    if (/^(data-|aria-|role$|for$|scope$)/.test(key))
      created.setAttribute(key, value);
    else
      /** @type {any} */ (created)[key] = value;
  }
  created.append(...children);
  return created;
}

/**
 * A text that came from outside: its direction is its own, and stays inside.
 * @param {string} text
 */
export const foreign = (text) => element("bdi", { textContent: text });

const svg = "http://www.w3.org/2000/svg";

/**
 * One of the page's pictures; the words beside it say the same.
 * @param {string} name the id of a symbol of index.html
 */
export function icon(name) {
  const picture = document.createElementNS(svg, "svg");
  picture.setAttribute("class", "icon");
  picture.setAttribute("aria-hidden", "true");
  picture.setAttribute("viewBox", "0 0 20 20");
  const use = document.createElementNS(svg, "use");
  use.setAttribute("href", `#${name}`);
  picture.append(use);
  return picture;
}

/**
 * Changes the text only where it differs: a selection in it stays.
 * @param {Element} place
 * @param {string} text
 */
export function setText(place, text) {
  const { firstChild } = place;
  if (firstChild instanceof Text && !firstChild.nextSibling) {
    if (firstChild.data !== text)
      firstChild.data = text;
  } else if (place.textContent !== text) {
    place.textContent = text;
  }
}

/**
 * The element of that id; the page has it.
 * @param {string} id
 */
export const byId = (id) => /** @type {HTMLElement} */ (document.getElementById(id));
