// The panel that tells all about one event.
import { label } from "./labels.js";
import { confirmationText, severityText, stateText, time, title } from "./event.js";

const panel = document.getElementById("details");
const content = document.getElementById("detailsContent");
const work = document.getElementById("work");

function element(name, text, className = "") {
  const created = document.createElement(name);
  created.textContent = text;
  created.className = className;
  return created;
}

function terms(pairs) {
  const list = document.createElement("dl");
  for (const [name, value] of pairs) {
    if (value == null || value === "")
      continue;
    const isBlock = typeof value === "object";
    const text = isBlock ? JSON.stringify(value, null, 2) : String(value);
    list.append(element("dt", name), element("dd", text, isBlock ? "block" : ""));
  }
  return list;
}

function section(name, ...parts) {
  return [element("h3", label(name)), ...parts];
}

/** The engineers' attribute is shown by its structure if it has one. */
function parameterValue(name, value) {
  if (name !== "jsonAttribute")
    return value;
  try {
    return JSON.parse(value);
  } catch {
    return value;
  }
}

function remedy({ cause, remedy: cure }) {
  const block = element("div", "", "remedy");
  block.append(element("p", cause), element("p", `→ ${cure}`));
  return block;
}

export function show(event) {
  const parts = [element("h2", title(event)), terms([
    [label("state"), stateText(event)],
    [label("severityName"), severityText(event)],
    [label("target"), event.parameters.targetName],
    [label("class"), event.eventClassName],
    [label("source"), event.localizedSourceName ?? event.parameters.sourceName],
    [label("raised"), time(event.timeRaised)],
    [label("clearedAt"), time(event.timeCleared)],
    [label("confirmedAt"), time(event.timeConfirmed)],
    [label("received"), time(event.timeReceived)],
    [label("confirmation"), confirmationText(event)],
    [label("name"), event.name],
    [label("id"), event.id],
  ])];
  if (event.causeRemedy)
    parts.push(...section("causes", ...event.causeRemedy.map(remedy)));
  if (event.details)
    parts.push(...section("details", terms(Object.entries(event.details).map(
      ([, detail]) => [detail.text, detail.comment || "–"]))));
  parts.push(...section("parameters", terms(Object.entries(event.parameters).map(
    ([name, value]) => [name, parameterValue(name, value)]))));
  content.replaceChildren(...parts);
  panel.hidden = false;
  work.classList.add("split");
}

export function hide() {
  panel.hidden = true;
  work.classList.remove("split");
}

export const focus = () => panel.focus();
