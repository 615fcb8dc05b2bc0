// What an event looks like in words.
import { clock, number, shortTime } from "./format.js";
import { isolated, label } from "./words.js";

/** @typedef {import("../types.js").HmiEvent} HmiEvent */

const pending = 2;
const invalid = 4;

/** Those that have a priority, the most severe first; 0 counts with 1. */
export const severities = [4, 3, 2, 1];

/** 1 is the most urgent, 4 the least; what says no severity is among the least. */
export const priorityOf = (/** @type {{severity: number}} */ { severity }) =>
  severity <= 4 ? 5 - Math.max(1, severity) : 4;

export const needsConfirmation = (/** @type {HmiEvent} */ event) =>
  event.kind === "alarm" && event.confirmationState === pending;

/** It can be confirmed now: a target system that is lost takes no confirmation. */
export const isConfirmable = (/** @type {HmiEvent} */ event) =>
  needsConfirmation(event) && !event.lastKnownSince && !isConfirming(event);

/** A stretch of time of which events may be missing. */
export const isGap = (/** @type {HmiEvent} */ event) => event.kind === "gap";

/** How a row is told from another. */
export const keyOf = (/** @type {HmiEvent} */ event) =>
  isGap(event) ? `gap ${event.target} ${event.from} ${event.reason}` : String(event.id);

/** The picture of index.html that stands for it. */
export const pictureOf = (/** @type {HmiEvent} */ event) =>
  isGap(event) ? "gap" : event.kind === "message" ? "message" : `priority${priorityOf(event)}`;

/** @param {HmiEvent} event */
export function stateText(event) {
  if (isGap(event))
    return label("gap");
  if (event.kind === "message")
    return label("message");
  if (event.active)
    return label(needsConfirmation(event) ? "activeUnconfirmed" : "isActive");
  if (needsConfirmation(event))
    return label("clearedUnconfirmed");
  if (event.timeCleared)
    return label("isCleared");
  return label(event.alarmState === invalid ? "unknown" : "ended");
}

export const severityText = (/** @type {HmiEvent} */ event) =>
  event.severity <= 4 ? label(`severity${event.severity}`) : label("severityNone");

/** It has been asked for, and nobody has said yet what becomes of it. */
export const isConfirming = (/** @type {HmiEvent} */ event) =>
  ["requested", "accepted"].includes(event.confirmation?.state ?? "");

export const hasFailed = (/** @type {HmiEvent} */ event) =>
  ["failed", "unanswered"].includes(event.confirmation?.state ?? "");

/**
 * What became of the confirmation that somebody asked for; without one, when it was confirmed.
 * @param {HmiEvent} event
 */
export function confirmationText(event) {
  const { confirmation, timeConfirmed } = event;
  if (!confirmation)
    return timeConfirmed ? label("confirmedAtTime", clock(timeConfirmed)) : "";
  const { state, by, at, text, comment } = confirmation;
  return [label(`confirmation_${state}`, by, clock(at)), state === "failed" ? text : "",
    comment ? `“${comment}”` : ""].filter((part) => !!part)
    .map((part) => isolated(String(part))).join(": ");
}

/** @param {HmiEvent} gap */
function gapTitle({ from, to, reason, lost }) {
  const until = to ? shortTime(to) : label("gapLasts");
  return label("gapTitle", shortTime(from), until, label(`gap_${reason}`)) +
    (lost ? ` (${label("gapLost", number(lost))})` : "");
}

/**
 * Without a translation the event shows by what its class and number are.
 * @param {HmiEvent} event
 */
export function title(event) {
  if (isGap(event))
    return gapTitle(event);
  const { eventClass, eventId } = event.parameters;
  return event.text || [event.name, eventClass, eventId].filter((part) => part != null).join(" ");
}

export const targetOf = (/** @type {HmiEvent} */ event) =>
  event.target ?? event.parameters?.targetName ?? "";

export const sourceOf = (/** @type {HmiEvent} */ event) =>
  event.localizedSourceName ?? event.parameters?.sourceName ?? "";

/** @param {HmiEvent} event */
export const subtitle = (event) => isGap(event) ? "" :
  [event.lastKnownSince ? label("lastKnown", clock(event.lastKnownSince)) : "",
    event.eventClassName, sourceOf(event)].filter((part) => !!part)
    .map((part) => isolated(String(part))).join(" · ");
