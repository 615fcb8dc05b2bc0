// What an engineer does with the bridge: target systems, log, configuration, simulated runtimes.
import { element } from "../shell/dom.js";
import { lazyView } from "../shell/lazyview.js";
import { label } from "../shell/words.js";
import { openConfiguration } from "./configuration.js";
import { openLog } from "./log.js";
import { openSimulator } from "./simulator.js";
import { openTargets } from "./targets.js";

/**
 * A part of the view: it fills `root`, and gives what ends it.
 * @typedef {(root: HTMLElement, context: import("../types.js").Context) => () => void} Part
 */

/** @type {Record<string, Part>} */
const parts = {
  targets: openTargets, log: openLog, configuration: openConfiguration, simulator: openSimulator,
};

/** @param {import("../types.js").Context} context */
async function hasSimulator({ api, targets }) {
  const known = targets().length > 0 ? targets() : await api.targets();
  const asked = await Promise.all(known.map(({ address }) =>
    api.request(`/sim/${encodeURIComponent(address)}`).then(() => true, () => false)));
  return asked.includes(true);
}

/**
 * @param {HTMLElement} root
 * @param {import("../types.js").Context} context
 */
function createView(root, context) {
  const place = element("div", { className: "part" });
  const choices = element("nav", { className: "parts" });
  let names = Object.keys(parts).filter((name) => name !== "simulator");
  let closePart = () => {};
  let isOpen = true;

  const chosen = () => {
    const asked = context.address.get("part");
    return names.includes(asked) ? asked : names[0];
  };

  function offer() {
    choices.setAttribute("aria-label", label("engineerParts"));
    choices.replaceChildren(...names.map((name) => {
      const button = element("button", { type: "button", textContent: label(`part_${name}`) });
      if (name === chosen())
        button.setAttribute("aria-current", "page");
      button.addEventListener("click", () => {
        context.address.go({ part: name });
        draw();
        /** @type {HTMLElement | null} */ (choices.querySelector("[aria-current]"))?.focus();
      });
      return button;
    }));
  }

  function draw() {
    closePart();
    offer();
    place.replaceChildren();
    closePart = parts[chosen()](place, context);
  }

  async function offerSimulator() {
    if (!await hasSimulator(context).catch(() => false) || !isOpen)
      return;
    names = Object.keys(parts);
    if (context.address.get("part") === "simulator")
      draw();
    else
      offer();
  }

  root.replaceChildren(choices, place);
  draw();
  offerSimulator();
  return {
    languageChanged: draw,
    close() {
      isOpen = false;
      closePart();
    },
  };
}

export const { open, close, languageChanged } = lazyView("engineer", createView);
