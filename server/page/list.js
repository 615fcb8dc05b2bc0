// The table of one page of events. Rows are kept from one load to the next, so that focus and
// selection stay where they are.
import { label } from "./labels.js";
import { needsConfirmation, severityText, stateText, subtitle, time, title } from "./event.js";

const body = document.getElementById("events");
const template = document.getElementById("eventRow");
let rows = new Map();

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
  };
  parts.open.addEventListener("click", () => handlers.open(parts.event));
  parts.confirm.addEventListener("click", async () => {
    parts.confirm.disabled = true;
    await handlers.confirm(parts.event);
    parts.confirm.disabled = false;
  });
  return parts;
}

function setTime(cell, iso) {
  cell.textContent = time(iso);
  cell.title = iso ?? "";
}

function fillRow(parts, event, selected) {
  parts.event = event;
  const unconfirmed = needsConfirmation(event);
  parts.row.className = `severity${Math.min(event.severity, 4)} ${event.kind}`;
  parts.row.classList.toggle("active", event.active);
  parts.row.classList.toggle("unconfirmed", unconfirmed);
  parts.row.classList.toggle("selected", selected);
  parts.badge.textContent = stateText(event);
  parts.severity.textContent = severityText(event);
  setTime(parts.raised, event.timeRaised);
  setTime(parts.cleared, event.timeCleared);
  setTime(parts.confirmed, event.timeConfirmed);
  parts.target.textContent = event.parameters.targetName ?? "";
  parts.open.textContent = title(event);
  parts.subtitle.textContent = subtitle(event);
  parts.confirm.textContent = label("confirm");
  parts.confirm.setAttribute("aria-label", `${label("confirm")}: ${title(event)}`);
  parts.confirm.hidden = !unconfirmed;
}

/** Shows these events in this order. `handlers`: open(event), confirm(event). */
export function show(events, selectedId, handlers) {
  const kept = new Map();
  events.forEach((event, index) => {
    const parts = rows.get(event.id) ?? createRow(handlers);
    fillRow(parts, event, event.id === selectedId);
    kept.set(event.id, parts);
    if (body.rows[index] !== parts.row)
      body.insertBefore(parts.row, body.rows[index] ?? null);
  });
  while (body.rows.length > events.length)
    body.lastElementChild.remove();
  rows = kept;
}

/** Up and down move between the rows. */
body.addEventListener("keydown", (press) => {
  const step = { ArrowUp: -1, ArrowDown: 1 }[press.key];
  const row = press.target.closest("tr");
  if (!step || !row)
    return;
  body.rows[row.rowIndex - 1 + step]?.querySelector("button.open").focus();
  press.preventDefault();
});
