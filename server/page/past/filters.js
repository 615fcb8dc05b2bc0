// Which part of the history is shown. The choices are in the page's address.
import { element } from "../shell/dom.js";
import { label } from "../shell/words.js";

const periods = [60, 480, 1440, 10080, 43200];  // minutes
const changes = ["raised", "raised_again", "cleared", "confirmed", "removed", "message", "gap",
  "confirmation", "audit"];
const kinds = ["alarm", "message", "gap", "audit"];
const names = ["period", "from", "to", "target", "kind", "change", "severity", "text"];

/** A moment as the field of a form has it: local, to the minute. @param {string} iso */
function localOf(iso) {
  const date = new Date(iso);
  if (!iso || Number.isNaN(date.getTime()))
    return "";
  return new Date(date.getTime() - date.getTimezoneOffset() * 60000).toISOString().slice(0, 16);
}

/**
 * @param {string} name
 * @param {string} value
 * @param {[string, string][]} options
 */
function choice(name, value, options) {
  const select = element("select", { name },
    ...options.map(([key, text]) => new Option(text, key)));
  select.value = options.some(([key]) => key === value) ? value : options[0][0];
  return select;
}

/** @param {string} word @param {HTMLElement} control */
const named = (word, control) => element("label", {}, label(word), control);

/** A choice of everything, or of one of these. @param {string[]} keys @param {string} words */
const orAll = (keys, words) => /** @type {[string, string][]} */ (
  [["", label("pastAll")], ...keys.map((key) => [key, words ? label(words + key) : key])]);

/**
 * @param {import("../types.js").Context} context
 * @param {() => void} onChange
 */
export function createFilters({ address, targets }, onChange) {
  const value = (/** @type {string} */ name) => address.get(name);
  const known = new Set([...targets().map(({ name }) => name), value("target")].filter(Boolean));
  const period = choice("period", value("from") || value("to") ? "range" : value("period"), [
    ...periods.map((minutes) =>
      /** @type {[string, string]} */ ([String(minutes), label(`pastPeriod${minutes}`)])),
    ["range", label("pastRange")]]);
  const moment = (/** @type {string} */ name) => element("input", {
    type: "datetime-local", name, value: localOf(value(name)) });
  const range = element("span", { className: "range" },
    named("pastFrom", moment("from")), named("pastTo", moment("to")));
  const text = element("input", { type: "search", name: "text", maxLength: 200,
    autocomplete: "off", spellcheck: false, value: value("text") });
  const form = element("form", { className: "choices", role: "search" },
    named("pastPeriod", period), range,
    named("pastTarget", choice("target", value("target"), orAll([...known], ""))),
    named("pastKind", choice("kind", value("kind"), orAll(kinds, "kind_"))),
    named("pastChange", choice("change", value("change"), orAll(changes, "pastChange_"))),
    named("severityFrom",
      choice("severity", value("severity"), orAll(["4", "3", "2", "1"], "severity"))),
    named("pastText", text));
  range.hidden = period.value !== "range";

  /** What the form says; of the address only what differs from an empty form. */
  function read() {
    const said = Object.fromEntries(
      [...new FormData(form)].map(([name, entry]) => [name, String(entry)]));
    const isRange = said.period === "range";
    for (const name of ["from", "to"])
      said[name] = isRange && said[name] ? new Date(said[name]).toISOString() : "";
    return { ...said, period: isRange || said.period === String(periods[0]) ? "" : said.period };
  }

  form.addEventListener("submit", (event) => event.preventDefault());
  form.addEventListener("input", () => {
    range.hidden = period.value !== "range";
    address.replace(read());
    onChange();
  });
  return form;
}

/**
 * The server's parameters for what the address says.
 * @param {import("../types.js").Address} address
 */
export function parametersOf(address) {
  const { period, ...said } = Object.fromEntries(names.map((name) => [name, address.get(name)]));
  const minutes = Number(period) || periods[0];
  return said.from || said.to ? said
    : { ...said, from: new Date(Date.now() - minutes * 60000).toISOString() };
}
