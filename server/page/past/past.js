// What has happened: the server's history, a page of it at a time, and the life of one event.
import { element, foreign } from "../shell/dom.js";
import { lazyView } from "../shell/lazyview.js";
import { label } from "../shell/words.js";
import { factsOf, lifeOf, rowOf, subject } from "./entries.js";
import { createFilters, parametersOf } from "./filters.js";

/** @typedef {import("./entries.js").Entry} Entry */

const pageSize = 100;
const longestLife = 500;
const lives = [
  "raised", "raised_again", "cleared", "confirmed", "removed", "updated", "confirmation"];

/**
 * @param {HTMLElement} root
 * @param {import("../types.js").Context} context
 */
function createView(root, context) {
  const { api, address } = context;
  const body = element("tbody");
  const said = element("p", { className: "nothing", role: "status" });
  const panel = element("aside", { className: "panel life", hidden: true, tabIndex: -1 });
  const newer = element("button", { type: "button" });
  const older = element("button", { type: "button" });
  const csv = element("a", { className: "button", download: "history.csv" });
  let loading = new AbortController();
  let next = /** @type {string | number | null} */ (null);
  /** The cursors of the pages that were shown; the first page has none. */
  let cursors = /** @type {(string | number | null)[]} */ ([null]);
  let timer = 0;

  const path = (/** @type {Record<string, any>} */ parameters) =>
    `/api/history?${api.query({ ...parametersOf(address), ...parameters })}`;

  /** @param {Entry} entry */
  const isOfAlarm = ({ change, event }) => lives.includes(change) && event?.kind === "alarm";

  async function load() {
    loading.abort();
    loading = new AbortController();
    const { signal } = loading;
    try {
      const page = await api.request(
        path({ limit: pageSize, after: cursors[cursors.length - 1] }), { signal });
      next = page.next;
      body.replaceChildren(...page.entries.map((/** @type {Entry} */ entry) =>
        rowOf(entry, isOfAlarm(entry) ? showLife : null)));
      said.textContent = page.entries.length > 0 ? "" : label("pastEmpty");
    } catch (error) {
      if (signal.aborted)
        return;
      body.replaceChildren();
      next = null;
      const { status, message } = /** @type {import("../shell/api.js").RequestError} */ (error);
      said.textContent = status === 404 ? label("noHistory") : label("pastFailed", message);
    }
    newer.disabled = cursors.length === 1;
    older.disabled = next === null;
    csv.href = path({}).replace("/api/history?", "/api/history.csv?");
  }

  function loadFromStart() {
    cursors = [null];
    load();
  }

  /** All that is known of the occurrence. @param {Entry} entry */
  async function lifeEntries({ occurrence, event, seq, station }) {
    const query = occurrence ? { occurrence }
      : { from: event.timeRaised, target: event.parameters?.targetName };
    const page = await api.request(
      `/api/history?${api.query({ ...query, station, limit: longestLife })}`);
    return /** @type {Entry[]} */ (page.entries).filter((each) => each.seq === seq || occurrence ||
      (each.event?.id === event.id && each.event?.timeRaised === event.timeRaised)).reverse();
  }

  /** @param {Entry} entry */
  async function showLife(entry) {
    const leave = element("button", { type: "button", textContent: label("closeLife") });
    const asked = /** @type {HTMLElement | null} */ (document.activeElement);
    leave.addEventListener("click", () => {
      panel.hidden = true;
      asked?.focus();
    });
    const place = element("div", { role: "status" }, label("lifeLoading"));
    panel.replaceChildren(leave, element("h2", {}, foreign(subject(entry))), place,
      factsOf(entry.event));
    panel.setAttribute("aria-label", label("life"));
    panel.hidden = false;
    panel.focus();
    try {
      place.replaceChildren(lifeOf(await lifeEntries(entry)));
    } catch (error) {
      place.textContent = label("pastFailed", /** @type {Error} */ (error).message);
    }
  }

  function draw() {
    newer.textContent = label("pastNewer");
    older.textContent = label("pastOlder");
    csv.textContent = label("pastCsv");
    const again = element("button", { type: "button", textContent: label("pastAgain") });
    again.addEventListener("click", loadFromStart);
    const heads = ["pastAt", "pastChange", "pastTarget", "pastEvent", "pastBy"].map((key) =>
      element("th", { scope: "col", textContent: label(key) }));
    panel.hidden = true;
    const scroller = element("div", { className: "scroller", tabIndex: 0, role: "region",
      "aria-label": label("pastTitle") },
    element("table", {}, element("thead", {}, element("tr", {}, ...heads)), body), said);
    const filters = createFilters(context, () => {
      clearTimeout(timer);
      timer = setTimeout(loadFromStart, 250);
    });
    root.replaceChildren(filters, element("div", { className: "entries" }, scroller, panel),
      element("div", { className: "pager buttons" }, newer, older, again, csv));
    load();
  }

  newer.addEventListener("click", () => {
    cursors.pop();
    load();
  });
  older.addEventListener("click", () => {
    cursors.push(next);
    load();
  });
  draw();
  return {
    languageChanged: draw,
    close() {
      clearTimeout(timer);
      loading.abort();
    },
  };
}

export const { open, close, languageChanged } = lazyView("past", createView);
