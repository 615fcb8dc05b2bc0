// Times and numbers in the way of the client; durations in the page's language.
import { language } from "./words.js";

const day = { year: "numeric", month: "2-digit", day: "2-digit" };
const time = { hour: "2-digit", minute: "2-digit", second: "2-digit", hourCycle: "h23" };

/** @param {any} options */
const format = (options) => new Intl.DateTimeFormat(undefined, options);
const asClock = format(time);
const asTime = format({ ...time, fractionalSecondDigits: 3 });
const asMoment = format({ ...day, ...time, fractionalSecondDigits: 3 });
const asDay = format(day);
const asNumber = new Intl.NumberFormat();
const withZone = format({ hour: "2-digit", timeZoneName: "shortOffset" });

/** Time of day. @param {string | Date} moment */
export const clock = (moment) => asClock.format(new Date(moment));

/** Day and time to the millisecond. @param {string | null | undefined} moment */
export const dateTime = (moment) => moment ? asMoment.format(new Date(moment)) : "";

/** Time of day to the millisecond. @param {string | null | undefined} moment */
export const timeOfDay = (moment) => moment ? asTime.format(new Date(moment)) : "";

/** The day unless it is today. @param {string | null | undefined} moment */
export function otherDay(moment) {
  const said = moment ? asDay.format(new Date(moment)) : "";
  return said === asDay.format(new Date()) ? "" : said;
}

/**
 * Time to the second, with the day unless it is today.
 * @param {string | null | undefined} moment
 */
export const shortTime = (moment) =>
  moment ? [otherDay(moment), clock(moment)].filter(Boolean).join(", ") : "";

/** @param {number} value */
export const number = (value) => asNumber.format(value);

/** The zone of all times on the page, as "Europe/Berlin (UTC+1)". */
export function zone() {
  const { timeZone } = withZone.resolvedOptions();
  const offset = withZone.formatToParts(new Date()).find(({ type }) => type === "timeZoneName");
  const said = offset?.value.replace("GMT", "UTC") ?? "";
  return said.startsWith(`${timeZone}+0`) ? timeZone : `${timeZone} (${said})`;
}

/** The two largest units of a span. @param {number} milliseconds */
export function duration(milliseconds) {
  let rest = Math.max(0, Math.floor(milliseconds / 1000));
  /** @type {[string, number][]} */
  const units = [["day", 86400], ["hour", 3600], ["minute", 60], ["second", 1]];
  const parts = [];
  for (const [unit, seconds] of units) {
    const count = Math.floor(rest / seconds);
    rest -= count * seconds;
    if (count > 0 || (unit === "second" && parts.length === 0))
      parts.push(new Intl.NumberFormat(language(), { style: "unit", unit, unitDisplay: "short" })
        .format(count));
    else if (parts.length > 0)
      break;
  }
  return parts.slice(0, 2).join(" ");
}
