// The diagnostic log: the newest lines, followed as they come, and filtered.
import { element, foreign } from "../shell/dom.js";
import { dateTime, number } from "../shell/format.js";
import { label } from "../shell/words.js";

/**
 * @typedef {{seq: number, name: string, severity: number, timeRaised: string, domain: string,
 *   parameters: Record<string, any>}} Entry
 */

const loaded = 500;    // lines at the start
const longest = 2000;  // lines that are kept
const shown = 500;     // lines that stand on the page
const levels = [0, 1, 2, 3, 4];

/** @param {Entry} entry */
const parametersText = ({ parameters }) => Object.values(parameters).map((value) =>
  typeof value === "string" ? value : JSON.stringify(value)).join(" · ");

/** Most entries have no severity of their own. @param {Entry} entry */
const severityText = ({ severity }) => severity <= 4 ? label(`severity${severity}`) : "";

/** @param {Entry} entry */
const rowOf = (entry) => element("tr", { className: `severity${Math.min(entry.severity, 5)}` },
  element("td", { className: "time", textContent: dateTime(entry.timeRaised) }),
  element("td", { textContent: severityText(entry) }),
  element("td", {}, element("code", { textContent: entry.name })),
  element("td", { className: "long" }, foreign(parametersText(entry))));

/** @param {Entry} entry @param {string} text in small letters @param {number} least */
function matches(entry, text, least) {
  if (least > 0 && (entry.severity > 4 || entry.severity < least))
    return false;
  return `${entry.name} ${parametersText(entry)}`.toLowerCase().includes(text);
}

/** @type {import("./engineer.js").Part} */
export function openLog(root, { api, onChange, link }) {
  /** @type {Entry[]} */
  let entries = [];
  let next = 0;
  let isOpen = true;
  let isDrawing = false;
  const text = element("input", { type: "search", maxLength: 200, autocomplete: "off" });
  const least = element("select", {}, ...levels.map((level) =>
    new Option(level === 0 ? label("anySeverity") : label(`severity${level}`), String(level))));
  const isFollowed = element("input", { type: "checkbox", checked: true });
  const count = element("output");
  const body = element("tbody");
  const scroller = element("div", { className: "scroller log", tabIndex: 0, role: "region",
    "aria-label": label("part_log") },
  element("table", {}, element("thead", {}, element("tr", {},
    ...["logTime", "logSeverity", "logName", "logParameters"].map((key) =>
      element("th", { scope: "col", textContent: label(key) })))), body));
  root.append(element("form", { className: "choices", role: "search" },
      element("label", {}, label("logText"), text),
      element("label", {}, label("logSeverityFrom"), least),
      element("label", { className: "check" }, isFollowed, label("logFollow")), count), scroller);

  function draw() {
    isDrawing = false;
    const wanted = text.value.toLowerCase();
    const found = entries.filter((entry) => matches(entry, wanted, Number(least.value)));
    const last = found.slice(-shown);
    body.replaceChildren(...last.map(rowOf));
    count.textContent = label("logCount", number(last.length), number(found.length));
    if (isFollowed.checked)
      scroller.scrollTop = scroller.scrollHeight;
  }

  function drawSoon() {
    if (isDrawing)
      return;
    isDrawing = true;
    setTimeout(() => isOpen && draw(), 200);
  }

  /** @param {Entry[]} more */
  function add(more) {
    const fresh = more.filter(({ seq }) => seq >= next);
    if (fresh.length === 0)
      return;
    next = fresh[fresh.length - 1].seq + 1;
    entries = [...entries, ...fresh].slice(-longest);
    if (isFollowed.checked)
      drawSoon();
  }

  /** What has come since; at the start the newest. */
  async function load() {
    try {
      if (entries.length === 0) {
        const end = (await api.request(`/api/log?since=${Number.MAX_SAFE_INTEGER}&limit=0`)).next;
        next = Math.max(0, end - loaded);
      }
      add((await api.request(`/api/log?since=${next}&limit=${longest}`)).entries);
      drawSoon();
    } catch (error) {
      count.textContent = label("logFailed", /** @type {Error} */ (error).message);
    }
  }

  text.addEventListener("input", draw);
  least.addEventListener("change", draw);
  isFollowed.addEventListener("change", draw);
  root.querySelector("form")?.addEventListener("submit", (event) => event.preventDefault());
  const ends = [
    onChange((change) => {
      if (change.type === "log")
        add([change.entry]);
      else if (change.type === "missed")
        load();
    }),
    link.onChange(({ state }) => {
      if (state === "connected") {
        entries = [];  // a server that has been started again counts from 0
        load();
      }
    }),
  ];
  load();
  return () => {
    isOpen = false;
    ends.forEach((end) => end());
  };
}
