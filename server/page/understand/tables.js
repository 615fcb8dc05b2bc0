// What the statistics say beside the rate, as tables.
import { element, foreign, icon } from "../shell/dom.js";
import { priorityOf } from "../shell/event.js";
import { duration, number } from "../shell/format.js";
import { label } from "../shell/words.js";
import { moment } from "./rate.js";

/**
 * @typedef {{id: number, name: string, eventClass: string, eventId: number | null, target: string,
 *   sourceName: string, text?: string, localizedSourceName?: string}} Named an alarm
 * @typedef {Named & {count: number, perMinute?: number}} Frequent
 * @typedef {Named & {timeRaised: string, severity: number}} Standing
 * @typedef {{target: string, from: string, to: string | null, reason: string,
 *   lost: number | null}} Gap
 * @typedef {{active: number[], unconfirmed: number[]}} Counts by severity
 * @typedef {{name?: string, rate: import("./rate.js").Interval[],
 *   peak: import("./rate.js").Interval, frequent: Frequent[], chattering: Frequent[],
 *   standing: Standing[], counts: Counts, oldestUnconfirmed: string | null, flood: boolean,
 *   gaps: Gap[]}} Summary of one target system or of all
 */

/** @typedef {string | Node} Cell */

/**
 * A table in a place of its own, or a sentence where it would be empty.
 * @param {string} title
 * @param {string[]} heads
 * @param {Cell[][]} rows the first cell names the row
 * @param {string} nothing
 */
export function panel(title, heads, rows, nothing = label("nothingYet")) {
  const head = element("h2", { textContent: title });
  if (rows.length === 0)
    return element("section", { className: "panel" }, head,
      element("p", { className: "nothing", textContent: nothing }));
  const table = element("table", {},
    element("thead", {}, element("tr", {},
      ...heads.map((text) => element("th", { scope: "col", textContent: text })))),
    element("tbody", {}, ...rows.map(([first, ...others]) => element("tr", {},
      element("th", { scope: "row" }, first),
      ...others.map((cell) => element("td", {}, cell))))));
  const scroller = element("div", { className: "scroller", tabIndex: 0, role: "region",
    "aria-label": title }, table);
  return element("section", { className: "panel" }, head, scroller);
}

/** @param {Named} alarm */
function nameOf({ name, text, eventClass, eventId, target, sourceName, localizedSourceName }) {
  const title = text || [name, eventClass, eventId].filter((part) => part !== null).join(" ");
  const place = [target, localizedSourceName || sourceName].filter(Boolean).join(" · ");
  return [foreign(title), element("small", {}, foreign(place))];
}

/** @param {Named} alarm */
const named = (alarm) => element("span", { className: "named" }, ...nameOf(alarm));

/** A bar beside a number. @param {number} value @param {number} most */
function bar(value, most) {
  const meter = element("meter", { max: most, value, "aria-hidden": "true" });
  return element("span", { className: "measured" }, number(value), meter);
}

/** The word with its shape. @param {number} severity */
const priority = (severity) => element("span", { className: `priority severity${severity}` },
  icon(`priority${priorityOf({ severity })}`), label(`severity${severity}`));

/** @param {Frequent[]} events */
export const frequent = (events) => panel(
  label("frequent"), [label("statisticsEvent"), label("alarmCount")],
  events.map((event) => [named(event), bar(event.count, events[0].count)]));

/** @param {Frequent[]} events */
export const chattering = (events) => panel(
  label("chattering"), [label("statisticsEvent"), label("perMinute"), label("alarmCount")],
  events.map((event) => [named(event), number(event.perMinute ?? 0), number(event.count)]),
  label("noChattering"));

/** @param {Standing[]} alarms @param {(alarm: Standing) => void} show */
export const standing = (alarms, show) => panel(
  label("standing"),
  ["statisticsEvent", "priority", "standingSince", "age"].map((key) => label(key)),
  alarms.map((alarm) => {
    const name = element("button", { type: "button", className: "named" }, ...nameOf(alarm));
    name.addEventListener("click", () => show(alarm));
    return [name, priority(alarm.severity), moment(alarm.timeRaised),
      duration(Date.now() - Date.parse(alarm.timeRaised))];
  }), label("noStanding"));

/** @param {Gap[]} known */
export const gaps = (known) => panel(
  label("gaps"),
  ["statisticsTarget", "gapFrom", "gapUntil", "gapReason", "gapLostCount"].map((key) => label(key)),
  known.map((gap) => [foreign(gap.target), moment(gap.from),
    gap.to ? moment(gap.to) : label("gapLasts"), label(`gap_${gap.reason}`),
    gap.lost === null ? label("notKnown") : number(gap.lost)]), label("noGaps"));

/** @param {Counts} counts */
export const priorities = ({ active, unconfirmed }) => panel(
  label("priorities"), [label("priority"), label("countedUnconfirmed"), label("countedActive")],
  [4, 3, 2, 1, 0].map((severity) => [priority(severity),
    number(unconfirmed[severity] ?? 0), number(active[severity] ?? 0)]));

/** @param {number[]} counts */
const sum = (counts) => counts.reduce((total, count) => total + count, 0);

/** @param {Summary[]} targets @param {(name: string) => void} choose */
export function perTarget(targets, choose) {
  const heads = [
    "statisticsTarget", "alarmCount", "peak", "countedUnconfirmed", "countedActive", "rateState"];
  const rows = targets.map((target) => {
    const name = element("button", { type: "button" }, foreign(target.name ?? ""));
    name.addEventListener("click", () => choose(target.name ?? ""));
    return [name, number(sum(target.rate.map(({ alarms }) => alarms))),
      number(target.peak.alarms), number(sum(target.counts.unconfirmed)),
      number(sum(target.counts.active)), label(target.flood ? "inFlood" : "noFlood")];
  });
  const all = panel(label("perTarget"), heads.map((key) => label(key)), rows);
  all.classList.add("wide");
  return all;
}
