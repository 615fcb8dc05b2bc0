// Unconfirmed and active alarms by priority, and how long the oldest has been waiting.
import { byId, element, icon, setText } from "./dom.js";
import { duration, number } from "./format.js";
import { priorityOf, severities } from "./event.js";
import { counts, onCounts } from "./situation.js";
import { label } from "./words.js";

/** @type {import("../types.js").Context} */
let context;

const tiles = severities.map((severity) => {
  const [word, said, waiting, also, standing] =
    ["word", "hidden", "unconfirmed", "hidden", "active"]
      .map((className) => element("span", { className }, "–"));
  const tile = element("button", { type: "button", className: `tile severity${severity}` },
    icon(`priority${priorityOf({ severity })}`), word, said, waiting, also, standing);
  tile.addEventListener("click",
    () => context.goTo("operate", { state: "unconfirmed", severity: String(severity) }));
  return { severity, tile, word, said, waiting, also, standing };
});

/**
 * What is below the lowest priority counts with it.
 * @param {number[]} bySeverity
 * @param {number} severity
 */
const countOf = (bySeverity, severity) =>
  bySeverity[severity] + (severity === 1 ? bySeverity[0] : 0);

/** @param {import("../types.js").Counts} known */
function showCounts({ unconfirmed, active, oldestUnconfirmed }) {
  for (const { severity, tile, waiting, standing } of tiles) {
    const count = countOf(unconfirmed, severity);
    setText(waiting, number(count));
    const still = countOf(active, severity);
    setText(standing, number(still));
    tile.title = [label(`severity${severity}`), label("countUnconfirmed", number(count)),
      label("countActive", number(still))].join(", ");
    tile.classList.toggle("some", count > 0);
  }
  const all = unconfirmed.reduce((sum, count) => sum + count, 0);
  document.title = all > 0 ? `(${number(all)}) ${label("title")}` : label("title");
  setText(byId("oldest"), oldestUnconfirmed
    ? label("oldest", duration(Date.now() - Date.parse(oldestUnconfirmed))) : label("noneWaits"));
}

export function show() {
  for (const { severity, word, said, also } of tiles) {
    setText(word, label(`severity${severity}`));
    setText(said, label("countUnconfirmed"));
    setText(also, label("countActive"));
  }
  const known = counts();
  if (known)
    showCounts(known);
}

/** @param {import("../types.js").Context} given */
export function start(given) {
  context = given;
  byId("strip").prepend(...tiles.map(({ tile }) => tile));
  show();
  onCounts(show);
  setInterval(show, 5000);  // the oldest grows older
}
