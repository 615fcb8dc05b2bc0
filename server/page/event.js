// What an event looks like in words.
import { label } from "./labels.js";

const pending = 2;
const invalid = 4;

export const needsConfirmation = (event) =>
  event.kind === "alarm" && event.confirmationState === pending;

/** A stretch of time of which events may be missing. */
export const isGap = (event) => event.kind === "gap";

/** How a row is told from another. */
export const keyOf = (event) =>
  isGap(event) ? `gap ${event.target} ${event.from} ${event.reason}` : event.id;

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

export const severityText = (event) =>
  event.severity <= 4 ? label(`severity${event.severity}`) : String(event.severity);

/** What became of the confirmation that somebody asked for; empty when nobody did. */
export function confirmationText(event) {
  const { confirmation } = event;
  if (!confirmation)
    return "";
  const { state, by, at, text, comment } = confirmation;
  const said = label(`confirmation_${state}`, by, clock(at));
  return [said, state === "failed" ? text : "", comment ? `“${comment}”` : ""]
    .filter(Boolean).join(": ");
}

/** It has been asked for, and nobody has said yet what becomes of it. */
export const isConfirming = (event) =>
  ["requested", "accepted"].includes(event.confirmation?.state);

function gapTitle({ from, to, reason, lost }) {
  const until = to ? time(to) : label("gapLasts");
  return label("gapTitle", time(from), until, label(`gap_${reason}`)) +
    (lost ? ` (${label("gapLost", lost)})` : "");
}

/** Without a translation the event shows by what its class and number are. */
export function title(event) {
  if (isGap(event))
    return gapTitle(event);
  const { eventClass, eventId } = event.parameters;
  return event.text || [event.name, eventClass, eventId].filter((part) => part != null).join(" ");
}

export const subtitle = (event) => isGap(event) ? "" :
  [event.lastKnownSince ? label("lastKnown", clock(event.lastKnownSince)) : "",
    event.eventClassName, event.localizedSourceName ?? event.parameters.sourceName]
    .filter(Boolean).join(" · ");

const two = (number) => String(number).padStart(2, "0");

/** Local time of day. */
export function clock(iso) {
  const date = new Date(iso);
  return [date.getHours(), date.getMinutes(), date.getSeconds()].map(two).join(":");
}

/** Local time to the millisecond. */
export function time(iso) {
  if (!iso)
    return "";
  const date = new Date(iso);
  const day = `${date.getFullYear()}-${two(date.getMonth() + 1)}-${two(date.getDate())}`;
  return `${day} ${clock(iso)}.${String(date.getMilliseconds()).padStart(3, "0")}`;
}
