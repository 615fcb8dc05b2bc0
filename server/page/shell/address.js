// The choices of a view live in the page's address, so that a view is a link.

/** @type {Set<() => void>} */
const listeners = new Set();
addEventListener("popstate", () => listeners.forEach((listener) => listener()));

/** @param {Record<string, string | number | null>} changes */
function changed(changes) {
  const all = new URLSearchParams(location.search);
  for (const [name, value] of Object.entries(changes)) {
    if (value === null || value === "")
      all.delete(name);
    else
      all.set(name, String(value));
  }
  const text = all.toString();
  return location.pathname + (text && `?${text}`) + location.hash;
}

/** @type {import("../types.js").Address} */
export const address = {
  get: (name) => new URLSearchParams(location.search).get(name) ?? "",
  all: () => Object.fromEntries(new URLSearchParams(location.search)),
  replace: (changes) => history.replaceState(null, "", changed(changes)),
  go: (changes) => history.pushState(null, "", changed(changes)),
  onChange(listener) {
    listeners.add(listener);
    return () => listeners.delete(listener);
  },
};
