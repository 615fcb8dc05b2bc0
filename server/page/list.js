// The table of one page of events. Rows are kept from one load to the next, so that focus and
// selection stay where they are. While somebody points at the list or is inside it no row moves.
import { label } from "./labels.js";
import {
  confirmationText, isConfirming, isGap, keyOf, needsConfirmation, severityText, stateText,
  subtitle, time, title,
} from "./event.js";

const body = document.getElementById("events");
const waiting = document.getElementById("waiting");
const template = document.getElementById("eventRow");
let rows = new Map();
let latest = { events: [], selectedId: null, handlers: null };

function createRow(handlers) {
  const row = template.content.firstElementChild.cloneNode(true);
  const [state, raised, target, event, cleared, confirmed, action] = row.cells;
  const parts = {
    row, raised, target, cleared, confirmed,
    badge: state.firstElementChild,
    severity: state.lastElementChild,
    open: event.querySelector("button"),
    subtitle: event.querySelector("small"),
    confirm: action.firstElementChild,
    life: action.lastElementChild,
  };
  parts.open.addEventListener("click", () => isGap(parts.event) || handlers.open(parts.event));
  // What is meant is what stood there when the button went down, not what stands there by now.
  parts.confirm.addEventListener("pointerdown", () => { parts.pressed = parts.event; });
  parts.confirm.addEventListener("click", async () => {
    const meant = parts.pressed ?? parts.event;
    parts.pressed = null;
    if (parts.confirming || isConfirming(meant))
      return;
    parts.confirming = true;
    fillAction(parts);
    await handlers.confirm(meant);
    parts.confirming = false;
    fillAction(parts);
  });
  return parts;
}

function setTime(cell, iso) {
  cell.textContent = time(iso);
  cell.title = iso ?? "";
}

/** A button that only says that it is busy keeps the focus. */
function fillAction(parts) {
  const { event, confirm } = parts;
  const isAgain = ["failed", "unanswered"].includes(event.confirmation?.state);
  const name = label(isAgain ? "tryAgain" : "confirm");
  confirm.textContent = name;
  confirm.setAttribute("aria-label", `${name}: ${title(event)}`);
  confirm.setAttribute("aria-disabled", String(Boolean(parts.confirming || isConfirming(event))));
  confirm.hidden = !needsConfirmation(event) || Boolean(event.lastKnownSince) || parts.hasLeft;
  parts.life.textContent = parts.hasLeft ? label("hasLeft") : confirmationText(event);
  parts.life.className = event.confirmation?.state ?? "";
}

function fillRow(parts, event, selected) {
  parts.event = event;
  parts.row.className = isGap(event) ? "gap"
    : `severity${Math.min(event.severity, 4)} ${event.kind}`;
  parts.row.classList.toggle("active", Boolean(event.active));
  parts.row.classList.toggle("unconfirmed", needsConfirmation(event));
  parts.row.classList.toggle("selected", selected);
  parts.row.classList.toggle("lastKnown", Boolean(event.lastKnownSince));
  parts.row.classList.toggle("left", Boolean(parts.hasLeft));
  parts.badge.textContent = stateText(event);
  parts.severity.textContent = isGap(event) ? "" : severityText(event);
  setTime(parts.raised, isGap(event) ? event.from : event.timeRaised);
  setTime(parts.cleared, event.timeCleared);
  setTime(parts.confirmed, event.timeConfirmed);
  parts.target.textContent = isGap(event) ? event.target : event.parameters.targetName ?? "";
  parts.open.textContent = title(event);
  parts.subtitle.textContent = subtitle(event);
  fillAction(parts);
}

/** Somebody may be about to press something. */
const isHeld = () => rows.size > 0 &&
  (body.matches(":hover") || body.contains(document.activeElement));

function place({ events, selectedId, handlers }) {
  const kept = new Map();
  events.forEach((event, index) => {
    const key = keyOf(event);
    const parts = rows.get(key) ?? createRow(handlers);
    parts.hasLeft = false;
    fillRow(parts, event, key === selectedId);
    kept.set(key, parts);
    if (body.rows[index] !== parts.row)
      body.insertBefore(parts.row, body.rows[index] ?? null);
  });
  while (body.rows.length > events.length)
    body.lastElementChild.remove();
  rows = kept;
  waiting.hidden = true;
}

/** What is shown is brought up to date where it stands; what is new waits. */
function refresh({ events, selectedId }) {
  const news = new Map(events.map((event) => [keyOf(event), event]));
  for (const [key, parts] of rows) {
    parts.hasLeft = !news.has(key);
    fillRow(parts, news.get(key) ?? parts.event, key === selectedId);
    news.delete(key);
  }
  const hasMoved = events.some((event, index) => rows.get(keyOf(event))?.row !== body.rows[index]);
  waiting.hidden = !hasMoved && events.length === rows.size;
  waiting.textContent = label(news.size > 0 ? "waiting" : "moved", news.size);
}

/**
 * Shows these events in this order. `handlers`: open(event), confirm(event). `atOnce`: the operator
 * has asked for another view.
 */
export function show(events, selectedId, handlers, atOnce) {
  latest = { events, selectedId, handlers };
  if (!atOnce && isHeld())
    refresh(latest);
  else
    place(latest);
}

/** Brings a row up to date where it stands; its texts stay. */
export function update(event) {
  const parts = rows.get(event.id);
  if (!parts)
    return;
  const { lastKnownSince, confirmation, ...known } = parts.event;
  fillRow(parts, { ...known, ...event }, parts.row.classList.contains("selected"));
}

const letGo = () => setTimeout(() => {
  if (!waiting.hidden && !isHeld())
    place(latest);
});
body.addEventListener("pointerleave", letGo);
body.addEventListener("focusout", letGo);
waiting.addEventListener("click", () => place(latest));

/** Up and down move between the rows. */
body.addEventListener("keydown", (press) => {
  const step = { ArrowUp: -1, ArrowDown: 1 }[press.key];
  const row = press.target.closest("tr");
  if (!step || !row)
    return;
  body.rows[row.rowIndex - 1 + step]?.querySelector("button.open").focus();
  press.preventDefault();
});
