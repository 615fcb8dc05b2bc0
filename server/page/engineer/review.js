// What a change of the configuration would do, before it is done.
import { element, foreign } from "../shell/dom.js";
import { number } from "../shell/format.js";
import { label } from "../shell/words.js";

/**
 * @typedef {{path: string, value?: any}} ConfigurationChange without a value it is removed
 * @typedef {{name: string, change: "added" | "replaced" | "removed", eventsLeaving: number,
 *   unconfirmed: number}} Consequence for one target system
 */

/** @param {Consequence} consequence */
const consequenceText = ({ name, change, eventsLeaving, unconfirmed }) => element("li", {},
  foreign(name), ` – ${label(`consequence_${change}`)}. `, eventsLeaving > 0
    ? label("eventsLeaving", number(eventsLeaving), number(unconfirmed))
    : label("noEventsLeaving"));

/** @param {ConfigurationChange} change */
const changeText = ({ path, value }) => value === undefined
  ? label("removes", path) : label("sets", path, JSON.stringify(value));

/**
 * Asks the server what would happen. A server that cannot say so lets the change be tried.
 * @param {import("../types.js").Context["api"]} api
 * @param {ConfigurationChange} change
 */
async function check(api, change) {
  try {
    const answer = await api.post("/api/config/check", change);
    const parts = answer.targets?.length > 0
      ? [element("ul", {}, ...answer.targets.map(consequenceText))]
      : [element("p", { textContent: label("noTargetConcerned") })];
    return answer.accepted ? { isGood: true, parts }
      : { isGood: false, parts: [element("p", { className: "bad" }, label("wouldBeRefused"),
        " ", foreign(answer.error ?? ""))] };
  } catch (error) {
    const { status, message } = /** @type {import("../shell/api.js").RequestError} */ (error);
    const isUnknown = status === 404 || status === 405;
    const textContent = isUnknown ? label("cannotBeChecked") : label("checkFailed", message);
    return { isGood: isUnknown, parts: [element("p", { className: "bad", textContent })] };
  }
}

/** @param {import("../types.js").Context["api"]} api @param {ConfigurationChange} change */
async function apply(api, { path, value }) {
  const place = `/api/config/${encodeURIComponent(path)}`;
  const answer = await api.request(place, value === undefined
    ? { method: "DELETE" } : { method: "PUT", body: JSON.stringify(value) });
  return answer.warning ? label("appliedWithWarning", answer.warning) : label("applied", path);
}

/**
 * Shows what would happen and, if that is wanted, does it.
 * @param {import("../types.js").Context["api"]} api
 * @param {ConfigurationChange} change
 * @returns {Promise<{isDone: boolean, text: string}>} `text` tells of it; empty when given up
 */
export function review(api, change) {
  const go = element("button",
    { type: "button", className: "main", textContent: label("applyChange"), disabled: true });
  const no = element("button", { type: "button", textContent: label("giveUp") });
  const title = element("h2", { id: "reviewTitle", textContent: label("reviewTitle") });
  const found = element("div", { role: "status" }, label("checking"));
  const told = element("p", { className: "change" },
    element("code", {}, foreign(changeText(change))));
  const dialog = element("dialog", { className: "review", "aria-labelledby": title.id }, title,
    told, found, element("div", { className: "choices" }, no, go));
  document.body.append(dialog);
  dialog.showModal();
  check(api, change).then(({ isGood, parts }) => {
    found.replaceChildren(...parts);
    go.disabled = !isGood;
  });
  return new Promise((done) => {
    let outcome = { isDone: false, text: "" };
    go.addEventListener("click", async () => {
      go.disabled = no.disabled = true;
      try {
        outcome = { isDone: true, text: await apply(api, change) };
      } catch (error) {
        outcome = { isDone: false,
          text: label("notApplied", /** @type {Error} */ (error).message) };
      }
      dialog.close();
    });
    no.addEventListener("click", () => dialog.close());
    dialog.addEventListener("close", () => {
      dialog.remove();
      done(outcome);
    });
  });
}
