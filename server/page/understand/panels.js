// Panels that are brought up to date one by one: what has not changed stays, and with it the
// place that somebody has scrolled to; focus stays in any case.

const pressable = "button, summary, [tabindex]";

/** @param {HTMLElement} from @param {HTMLElement} to */
function takeOver(from, to) {
  const before = [...from.querySelectorAll(pressable)];
  const after = /** @type {HTMLElement[]} */ ([...to.querySelectorAll(pressable)]);
  for (const name of ["details", ".scroller"]) {
    const [old, fresh] = [from.querySelector(name), to.querySelector(name)];
    if (old instanceof HTMLDetailsElement && fresh instanceof HTMLDetailsElement)
      fresh.open = old.open;
  }
  const focused = before.indexOf(/** @type {Element} */ (document.activeElement));
  const scrolled = from.querySelector(".scroller")?.scrollTop ?? 0;
  from.replaceWith(to);
  const scroller = to.querySelector(".scroller");
  if (scroller)
    scroller.scrollTop = scrolled;
  if (focused >= 0)
    after[Math.min(focused, after.length - 1)]?.focus({ preventScroll: true });
}

/** @param {HTMLElement} root */
export function createPanels(root) {
  /** @type {Map<string, {content: string, panel: HTMLElement}>} */
  const shown = new Map();
  return {
    /**
     * @param {string} name panels stand in the order in which they were first shown
     * @param {any} content what it is made of; the panel stays while this is the same
     * @param {() => HTMLElement} build
     */
    show(name, content, build) {
      const known = shown.get(name);
      const text = JSON.stringify(content);
      if (known?.content === text)
        return;
      const panel = build();
      if (known)
        takeOver(known.panel, panel);
      else
        root.append(panel);
      shown.set(name, { content: text, panel });
    },
    /** @param {string} name */
    remove(name) {
      shown.get(name)?.panel.remove();
      shown.delete(name);
    },
    clear() {
      shown.clear();
      root.replaceChildren();
    },
  };
}
