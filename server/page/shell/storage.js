// What the browser keeps for us. Where it keeps nothing, it lasts as long as the page.

/** @type {Map<string, string>} */
const memory = new Map();

/** @param {string} name */
export function kept(name) {
  try {
    return memory.get(name) ?? localStorage.getItem(name);
  } catch {
    return memory.get(name) ?? null;
  }
}

/**
 * @param {string} name
 * @param {string} value
 */
export function keep(name, value) {
  memory.set(name, value);
  try {
    localStorage.setItem(name, value);
  } catch {
    // The memory has it.
  }
}
