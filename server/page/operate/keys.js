// The keys of the view, as in a mail program. They rest while somebody writes, and can be turned
// off.
import { element } from "../shell/dom.js";
import { keep, kept } from "../shell/storage.js";
import { label } from "../shell/words.js";
import { ask } from "./dialog.js";

const storeName = "keys";

/** @typedef {Record<string, (press: KeyboardEvent) => void>} Actions */

/** In the list, where no letter is needed to act. */
const steps = {
  ArrowDown: 1, ArrowUp: -1, PageDown: 10, PageUp: -10, Home: -Infinity, End: Infinity,
};

/** What the help shows: the keys, and the word for what they do. */
const help = [
  ["↑ ↓ Home End Page↑ Page↓", "keyMove"], ["Space", "keySelect"], ["Enter", "keyOpen"],
  ["→ ←", "keyButton"], ["Esc", "keyLeave"], ["A", "keyConfirm"], ["Shift+A", "keyConfirmAll"],
  ["/", "keySearch"], ["S", "keySilence"], ["E", "keyExport"], ["P", "keyFreeze"], ["?", "keyHelp"],
];

const isWriting = (/** @type {EventTarget | null} */ place) =>
  place instanceof HTMLElement &&
  (place.matches("input:not([type=checkbox]), textarea, select") || place.isContentEditable);

/**
 * The letter of the key's place on boards that write in other letters.
 * @param {KeyboardEvent} press
 */
function letterOf({ key, code, shiftKey }) {
  const isOther = key.length === 1 && key > "~";
  const placed = { Slash: shiftKey ? "?" : "/" }[code] ?? code.replace(/^Key/, "");
  return (isOther ? placed : key).toLowerCase();
}

export const areOn = () => kept(storeName) !== "off";

export class Keys {
  #list;
  #actions;

  /**
   * @param {import("./list.js").List} list
   * @param {Actions} actions by letter; "open" and "leave"
   * @param {AbortSignal} signal ends it
   */
  constructor(list, actions, signal) {
    this.#list = list;
    this.#actions = actions;
    document.addEventListener("keydown", (press) => this.#press(press), { signal });
  }

  /** @param {KeyboardEvent} press */
  #press(press) {
    if (press.defaultPrevented || press.ctrlKey || press.altKey || press.metaKey ||
      document.querySelector("dialog[open]"))
      return;
    if (press.key === "Escape")
      return this.#actions.leave(press);
    if (isWriting(press.target))
      return;
    if (this.#move(press) || !areOn())
      return;
    const letter = letterOf(press);
    const action = this.#actions[press.shiftKey && letter === "a" ? "A" : letter];
    if (!action)
      return;
    press.preventDefault();
    if (!press.repeat)
      action(press);
  }

  /** Inside the list, or where nothing else has the focus. @param {KeyboardEvent} press */
  #move(press) {
    const row = this.#list.rowAt(press.target);
    const step = steps[/** @type {keyof typeof steps} */ (press.key)];
    if (!row && !(press.target === document.body && step))
      return false;
    const isButton = press.target === row?.button;
    if (step)
      this.#list.move(step);
    else if (press.key === "ArrowRight" && !row?.button.hidden)
      row?.button.focus();
    else if (press.key === "ArrowLeft")
      row?.element.focus();
    else if (press.key === " " && row && !isButton)
      this.#list.toggle(row);
    else if (press.key === "Enter" && row && !isButton)
      this.#actions.open(press);
    else
      return false;
    press.preventDefault();
    return true;
  }
}

export async function showHelp() {
  const list = element("dl", { className: "keys" });
  for (const [keys, word] of help)
    list.append(element("dt", {}, element("kbd", {}, keys)), element("dd", {}, label(word)));
  const on = element("input", { type: "checkbox", checked: areOn() });
  on.addEventListener("change", () => keep(storeName, on.checked ? "on" : "off"));
  await ask(label("keys"), [list, element("label", { className: "line" }, on, label("keysOn"))],
    label("close"), "");
}
