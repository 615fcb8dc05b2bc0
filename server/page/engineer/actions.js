// What a simulated runtime can be told to do, and the form that says it.
import { element } from "../shell/dom.js";
import { label } from "../shell/words.js";

/**
 * @typedef {Record<string, any> & {do: string}} Action
 * @typedef {{name: string, type: "text" | "number" | "json" | "choice" | "source",
 *   needed?: boolean, options?: string[], list?: string, preset?: string}} Field
 */

/** @type {Field} */
const alarm = { name: "alarm", type: "text", needed: true, list: "alarms" };
/** @type {Field} */
const eventClass = { name: "class", type: "text", needed: true, list: "classes" };
/** @type {Field} */
const event = { name: "event", type: "number", needed: true, list: "events" };
/** @type {Field} */
const call = { name: "call", type: "text", needed: true, list: "operations", preset: "Confirm" };
/** @type {Field} */
const hresult = { name: "hresult", type: "text", needed: true, preset: "0x80004005" };

/** @type {Field[]} */
const content = [
  { name: "severity", type: "choice", options: ["", "0", "1", "2", "3", "4"] },
  { name: "source", type: "source" },
  { name: "arguments", type: "json" },
  { name: "json", type: "text" },
  { name: "timeRaised", type: "text" },
  { name: "count", type: "number" },
];

/** @type {Record<string, Field[]>} */
export const actions = {
  raise: [alarm, eventClass, event,
    { name: "confirm", type: "choice", options: ["", "true", "false"] }, ...content],
  clear: [alarm, { name: "timeCleared", type: "text" }],
  confirm: [alarm],
  message: [eventClass, event, ...content],
  databaseChanged: [
    { name: "reason", type: "choice", needed: true, options: ["0", "1", "2", "3"] }],
  clearLoggedEvents: [],
  drop: [],
  refuse: [hresult, { name: "seconds", type: "number" }],
  accept: [],
  fail: [call, hresult, { name: "skip", type: "number" }, { name: "times", type: "number" }],
  delay: [call, { name: "ms", type: "number", needed: true, preset: "1000" }],
  pause: [call],
  resume: [],
  hold: [],
  release: [],
};

/**
 * What one field says; undefined for nothing. Throws for what is no JSON.
 * @param {Field} field
 * @param {string} text
 */
function valueOf({ name, type }, text) {
  if (text === "")
    return undefined;
  if (type === "number" || name === "severity" || name === "reason")
    return Number(text);
  if (name === "confirm")
    return text === "true";
  if (type === "source")
    return { name: text };
  return type === "json" ? JSON.parse(text) : text;
}

/** @param {Field} field */
function control({ name, type, needed = false, options, list, preset = "" }) {
  if (type === "choice") {
    return element("select", { name, required: needed }, ...(options ?? []).map((value) =>
      new Option(value === "" ? label("asDefined") : label(`${name}_${value}`), value)));
  }
  const created = element("input", { name, required: needed, value: preset, autocomplete: "off",
    spellcheck: false, type: type === "number" ? "number" : "text" });
  if (type === "number")
    Object.assign(created, { min: "0", step: name === "seconds" ? "any" : "1" });
  if (list)
    created.setAttribute("list", `simulator-${list}`);
  return created;
}

/** The fields of an action, as labels with their controls. @param {string} name */
export const fieldsOf = (name) => actions[name].map((field) =>
  element("label", {}, label(`field_${field.name}`), control(field)));

/**
 * The action that the form tells. Throws an Error that says which field is wrong.
 * @param {HTMLFormElement} form
 * @returns {Action}
 */
export function readAction(form) {
  const said = new FormData(form);
  /** @type {Action} */
  const action = { do: String(said.get("do")) };
  for (const field of actions[action.do]) {
    try {
      const value = valueOf(field, String(said.get(field.name) ?? "").trim());
      if (value !== undefined)
        action[field.name] = value;
    } catch {
      throw new Error(label("notJson", label(`field_${field.name}`)));
    }
  }
  return action;
}

/** An action in one line. @param {Action} action */
export function actionText({ do: name, ...fields }) {
  const said = Object.entries(fields).map(([key, value]) =>
    `${label(`field_${key}`)} ${typeof value === "object" ? JSON.stringify(value) : value}`);
  return [label(`do_${name}`), said.join(", ")].filter(Boolean).join(": ");
}
