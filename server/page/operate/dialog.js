// Questions to the operator. Focus goes back to where it was.
import { element } from "../shell/dom.js";
import { label } from "../shell/words.js";

let number = 0;

/**
 * @param {string} heading
 * @param {Node[]} content
 * @param {string} yes the word on the button that agrees
 * @param {string} [no]
 * @returns {Promise<boolean>}
 */
export function ask(heading, content, yes, no = label("cancel")) {
  const before = /** @type {HTMLElement | null} */ (document.activeElement);
  const id = `dialog${++number}`;
  const agree = element("button", { type: "submit", className: "main", value: "yes" }, yes);
  const refuse = element("button", { type: "button" }, no);
  const form = element("form", { method: "dialog" }, ...content,
    element("div", { className: "choices" }, ...(no ? [refuse] : []), agree));
  const dialog = element("dialog", { "aria-labelledby": id },
    element("h2", { id, textContent: heading }), form);
  document.body.append(dialog);
  dialog.showModal();
  /** @type {HTMLElement} */ (form.querySelector("input:not([type=checkbox])") ?? agree).focus();
  refuse.addEventListener("click", () => dialog.close("no"));
  return new Promise((resolve) => {
    dialog.addEventListener("close", () => {
      dialog.remove();
      before?.focus({ preventScroll: true });
      resolve(dialog.returnValue === "yes");
    });
  });
}
