// Entries of the history as rows, and an event's life as a list.
import { element, foreign, icon } from "../shell/dom.js";
import { pictureOf, title } from "../shell/event.js";
import { dateTime, number } from "../shell/format.js";
import { label } from "../shell/words.js";

/**
 * @typedef {{seq: number, at: string, station?: string, change: string, occurrence?: number | null,
 *   event: any, text?: string, by?: string, comment?: string}} Entry
 */

/** What it was about, in words. @param {Entry} entry */
export function subject({ change, event, text }) {
  if (change === "audit")
    return text ?? event?.text ?? JSON.stringify(event ?? {});
  return title({ ...event, text: text ?? event.text });
}

/** @param {Entry} entry */
const place = ({ station, event }) =>
  [station, event?.target ?? event?.parameters?.targetName].filter(Boolean).join(" · ");

/** @param {Entry} entry */
function remark({ event, by, comment }) {
  const confirmation = event?.confirmation;
  const state = confirmation && label(`past_${confirmation.state}`);
  return [state, confirmation?.text, by ?? confirmation?.by, comment ?? confirmation?.comment]
    .filter(Boolean).join(" · ");
}

/** @param {Entry} entry */
const picture = ({ change, event }) => change === "audit" ? "" : element("span", {
  className: event.kind === "alarm" ? `severity${Math.min(event.severity, 4)}` : "",
}, icon(pictureOf(event)));

/**
 * @param {Entry} entry
 * @param {((entry: Entry) => void) | null} open nothing when it has no life
 */
export function rowOf(entry, open) {
  const text = foreign(subject(entry));
  const button = element("button", { type: "button", className: "named" }, text);
  button.addEventListener("click", () => open?.(entry));
  return element("tr", { className: entry.change },
    element("td", { className: "time", textContent: dateTime(entry.at) }),
    element("td", { className: "what" }, picture(entry), label(`pastChange_${entry.change}`)),
    element("td", {}, foreign(place(entry))),
    element("th", { scope: "row" }, open ? button : text),
    element("td", {}, foreign(remark(entry))));
}

/** @param {Entry[]} entries in order of time */
export const lifeOf = (entries) => element("ol", { className: "life" },
  ...entries.map((entry) => element("li", {},
    element("span", { className: "time", textContent: dateTime(entry.at) }), " ",
    element("strong", { textContent: label(`pastChange_${entry.change}`) }), " ",
    foreign(remark(entry)))));

/** @param {any} event what is known of it besides */
export const factsOf = (event) => element("dl", {}, ...Object.entries(event.parameters ?? {})
  .filter(([name]) => !["types", "data"].includes(name))
  .flatMap(([name, value]) => [element("dt", { textContent: name }), element("dd", {},
    foreign(typeof value === "number" ? number(value) : String(value)))]));
