import { label } from "../shell/words.js";

/** @type {import("../types.js").View["open"]} */
export function open(root) {
  root.textContent = label("engineer");
}

export function close() {}
