// What an event looks like in words.
import { label } from "./labels.js";

const pending = 2;
const invalid = 4;

export const needsConfirmation = (event) =>
  event.kind === "alarm" && event.confirmationState === pending;

export function stateText(event) {
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

/** Without a translation the event shows by what its class and number are. */
export function title(event) {
  const { eventClass, eventId } = event.parameters;
  return event.text || [event.name, eventClass, eventId].filter((part) => part != null).join(" ");
}

export const subtitle = (event) =>
  [event.eventClassName, event.localizedSourceName ?? event.parameters.sourceName]
    .filter(Boolean).join(" · ");

/** Local time to the millisecond. */
export function time(iso) {
  if (!iso)
    return "";
  const date = new Date(iso);
  const two = (number) => String(number).padStart(2, "0");
  const day = `${date.getFullYear()}-${two(date.getMonth() + 1)}-${two(date.getDate())}`;
  const clock = [date.getHours(), date.getMinutes(), date.getSeconds()].map(two).join(":");
  return `${day} ${clock}.${String(date.getMilliseconds()).padStart(3, "0")}`;
}
