// What the page says about its connection to the server.
import { byId, setText } from "./dom.js";
import { clock } from "./format.js";
import { label } from "./words.js";

/** @param {import("../types.js").Link} link */
export function showLink({ state, heard }) {
  const isDown = state === "reconnecting" || state === "silent";
  const line = byId("link");
  line.dataset.state = state;
  setText(byId("linkText"), label(state));
  document.body.classList.toggle("stale", isDown);
  setText(byId("silence"), isDown ? label(`${state}Since`, clock(heard)) : "");
}
