// What there is to say about one event.
import { dateTime, duration } from "../shell/format.js";
import {
  confirmationText, severityText, sourceOf, stateText, targetOf, title,
} from "../shell/event.js";
import { label, language } from "../shell/words.js";
import { parse, pretty } from "./jsontext.js";

/** @typedef {import("../types.js").HmiEvent} HmiEvent */
/** @typedef {import("./terms.js").Term} Term */

const longestHeading = 300;  // characters

/** @param {HmiEvent} event */
export function heading(event) {
  const text = title(event);
  return text.length > longestHeading ? `${text.slice(0, longestHeading)} …` : text;
}

/** @param {HmiEvent} event @returns {Term[]} */
export const mainFacts = (event) => [
  { name: label("event"), value: title(event).length > longestHeading ? title(event) : "" },
  { name: label("state"), value: stateText(event) },
  { name: label("priority"), value: severityText(event) },
  { name: label("lastKnownName"), value: event.lastKnownSince && dateTime(event.lastKnownSince) },
  { name: label("confirmation"), value: confirmationText(event) },
  { name: label("target"), value: targetOf(event) },
  { name: label("class"), value: event.eventClassName, lang: language() },
  { name: label("source"), value: sourceOf(event) },
  { name: label("name"), value: event.name },
  { name: label("id"), value: String(event.id) },
];

/**
 * The time here, and the time as it came.
 * @param {string} name
 * @param {string | null} time
 * @returns {Term}
 */
const moment = (name, time) =>
  ({ name: label(name), value: time && `${dateTime(time)}\n${time}`, isBlock: true });

/** @param {number | undefined} skew milliseconds that the target's clock is ahead */
function skewText(skew) {
  if (skew === undefined)
    return "";
  if (Math.abs(skew) < 1000)
    return label("skewNone");
  return label(skew > 0 ? "skewAhead" : "skewBehind", duration(Math.abs(skew)));
}

/** @param {HmiEvent} event @param {number | undefined} skew @returns {Term[]} */
export const times = (event, skew) => [
  moment("raised", event.timeRaised), moment("clearedAt", event.timeCleared),
  moment("confirmedAt", event.timeConfirmed), moment("received", event.timeReceived),
  { name: label("skew"), value: skewText(skew) },
];

/** @param {HmiEvent} event @returns {Term[]} */
export const details = (event) => Object.values(event.details ?? {}).map(
  ({ text, comment }) => ({ name: text, value: comment || "–", lang: language() }));

/** A text that is JSON itself is shown by its structure. @param {string} text */
function attributeText(text) {
  try {
    return pretty(parse(text));
  } catch {
    return text;
  }
}

/**
 * The parameters as they came.
 * @param {import("./jsontext.js").Node | undefined} node
 * @returns {Term[]}
 */
export function parameters(node) {
  if (node?.kind !== "object")
    return [];
  return node.entries.map(([name, value]) => {
    const isText = value.kind === "string";
    const text = name === "jsonAttribute" && isText ? attributeText(value.text)
      : isText ? value.text : pretty(value);
    return { name, value: text, isBlock: text.includes("\n") || name === "jsonAttribute" };
  });
}

/** What is known of the event's life without a history. @param {HmiEvent} event */
export function lifeOf(event) {
  const { confirmation, timeRaised, timeCleared, timeConfirmed } = event;
  /** @type {[string | null | undefined, string][]} */
  const steps = [
    [timeRaised, label("raised")], [timeCleared, label("clearedAt")],
    [timeConfirmed, label("confirmedAt")],
    [confirmation?.at, confirmationText(event)],
    [event.lastKnownSince, label("targetLost")],
  ];
  return steps.filter(([at]) => at).sort(([a], [b]) => String(a) < String(b) ? -1 : 1)
    .map(([at, text]) => `${dateTime(at)}  ${text}`);
}
