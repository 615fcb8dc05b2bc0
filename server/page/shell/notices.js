// One line at the foot of the page; it covers nothing and moves nothing.
import { byId } from "./dom.js";
import { clock } from "./format.js";

const lasts = 15000;  // ms
/** @type {ReturnType<typeof setTimeout>} */
let timer;

/**
 * @param {string} text
 * @param {boolean} [isTrouble] it stays until the next one
 */
export function notify(text, isTrouble = false) {
  const [said, trouble] = [byId("notice"), byId("trouble")];
  clearTimeout(timer);
  said.textContent = isTrouble ? "" : text;
  trouble.textContent = isTrouble ? `${clock(new Date())} ${text}` : "";
  if (!isTrouble)
    timer = setTimeout(() => { said.textContent = ""; }, lasts);
}
