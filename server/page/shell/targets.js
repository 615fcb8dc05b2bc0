// How the target systems are: a line, and behind it each of them.
import { byId, element, foreign, setText } from "./dom.js";
import { clock, number } from "./format.js";
import { onTargets, targets } from "./situation.js";
import { label } from "./words.js";

const order = ["lost", "connecting", "importing", "disabled", "good"];
let shown = "";

/** @param {import("../types.js").Target} target */
function reason({ state, since, error, progress }) {
  const done = progress ? label("progress", number(progress.done), number(progress.of)) : "";
  return [label("since", clock(since)), state === "good" ? "" : error?.text, done]
    .filter(Boolean).join(": ");
}

/** The good ones are a number; of the others the one that is longest so says why. */
function summary() {
  return order.toReversed().map((state) => {
    const all = targets().filter((target) => target.state === state);
    if (all.length === 0)
      return state === "good" ? label("targets_good", 0) : "";
    const said = label(`targets_${state}`, number(all.length));
    const longest = all.reduce((a, b) => a.since <= b.since ? a : b);
    return state === "good" ? said : `${said} (${reason(longest)})`;
  }).filter(Boolean).join(", ");
}

/** @param {import("../types.js").Target} target */
function item(target) {
  const name = element("strong", { className: "name" }, foreign(target.name));
  const said = element("span", {}, `${label(`target_${target.state}`)}, `);
  const why = element("bdi", { textContent: reason(target), title: target.error?.hresult ?? "" });
  said.append(why);
  return element("li", { className: target.state }, name, said);
}

export function show() {
  const all = targets().toSorted(
    (a, b) => order.indexOf(a.state) - order.indexOf(b.state) || a.name.localeCompare(b.name));
  const fold = byId("targets");
  fold.classList.toggle("lost", all.some(({ state }) => state === "lost"));
  setText(byId("targetsLine"), summary());
  const news = JSON.stringify([label("since"), all.map(
    ({ name, state, since, error, progress }) => [name, state, since, error, progress])]);
  if (news !== shown)
    byId("targetsAll").replaceChildren(...all.map(item));
  shown = news;
}

export function start() {
  const fold = /** @type {HTMLDetailsElement} */ (byId("targets"));
  onTargets(show);
  show();
  document.addEventListener("pointerdown", ({ target }) => {
    if (!fold.contains(/** @type {Node} */ (target)))
      fold.open = false;
  });
  fold.addEventListener("keydown", ({ key }) => {
    if (key === "Escape")
      fold.open = false;
  });
}
