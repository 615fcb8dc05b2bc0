// Every target system: how it is, since when, what its last import brought; connect again.
import { element, foreign } from "../shell/dom.js";
import { dateTime, duration, number } from "../shell/format.js";
import { throttled } from "../shell/throttled.js";
import { label } from "../shell/words.js";

/** @typedef {import("../types.js").Target} Target */

const interval = 10000;  // ms without a change
const order = ["lost", "connecting", "importing", "good", "disabled"];

/** @param {[string, string | Node | undefined][]} pairs */
function terms(pairs) {
  const list = element("dl");
  for (const [name, value] of pairs) {
    if (value !== undefined)
      list.append(element("dt", { textContent: name }), element("dd", {}, value));
  }
  return list;
}

/** @param {number | undefined} milliseconds */
function skewText(milliseconds) {
  if (milliseconds === undefined)
    return undefined;
  const key = milliseconds > 0 ? "clockAhead" : milliseconds < 0 ? "clockBehind" : "clockEqual";
  return label(key, number(Math.abs(milliseconds)));
}

/** @param {Record<string, any> | undefined} report of an import */
const importText = (report) => report && label("importReport", number(report.number),
  dateTime(report.at), number(Math.round(report.milliseconds)), number(report.logged),
  number(report.active), number(report.keptIds), number(report.recorded), number(report.rejected));

/** @param {Record<string, number>} counters */
function counterTable(counters) {
  const rows = Object.entries(counters).map(([name, value]) => element("tr", {},
    element("th", { scope: "row", textContent: label(`counter_${name}`) }),
    element("td", { textContent: number(value) })));
  return element("details", {}, element("summary", { textContent: label("counters") }),
    element("table", {}, element("tbody", {}, ...rows)));
}

/** @param {Target} target */
function pairsOf(target) {
  const { error, progress } = target;
  return /** @type {[string, string | Node | undefined][]} */ ([
    [label("address"), foreign(target.address || label("localAddress"))],
    [label("targetError"), error && foreign(`${error.text} (${error.hresult})`)],
    [label("importProgress"),
      progress && label("progressOf", number(progress.done), number(progress.of))],
    [label("lastNotification"), target.lastNotification && dateTime(target.lastNotification)],
    [label("lastImport"), importText(target.import)],
    [label("forgotten"), number(target.forgotten)],
    [label("rejected"), number(target.rejected)],
    [label("clock"), skewText(target.clockSkewMilliseconds)],
  ]);
}

/**
 * One target system's card. What is pressed stays where it is while the rest is renewed.
 * @param {import("../types.js").Context} context
 */
function createCard({ api }) {
  const name = element("h2");
  const state = element("p", { className: "state" });
  const content = element("div");
  const reconnect = element("button", { type: "button" });
  const said = element("p", { className: "said", role: "status" });
  const card = element("li", {}, name, state, content, reconnect, said);
  let told = "";

  /** @param {Target} target */
  function show(target) {
    const text = JSON.stringify(target);
    state.textContent = label("stateSince", label(`target_${target.state}`), dateTime(target.since),
      duration(Date.now() - Date.parse(target.since)));
    if (text === told)
      return;
    told = text;
    card.className = `card ${target.state}`;
    name.replaceChildren(foreign(target.name));
    const wasOpen = content.querySelector("details")?.open ?? false;
    const counters = counterTable(target.counters);
    counters.open = wasOpen;
    const hadFocus = content.contains(document.activeElement);
    content.replaceChildren(terms(pairsOf(target)), counters);
    if (hadFocus)
      counters.querySelector("summary")?.focus();
    reconnect.textContent = label("reconnect");
    reconnect.setAttribute("aria-label", label("reconnectTarget", target.name));
  }

  reconnect.addEventListener("click", async () => {
    said.textContent = label("reconnectAsking");
    try {
      const [answer] = await api.post("/api/commands",
        [{ command: "ForceReconnect", writeValue: name.textContent }]);
      const { extensionResult: result, resultString } = answer;
      said.textContent = result === 0 ? label("reconnectAsked")
        : label("commandFailed", resultString || number(result));
    } catch (error) {
      said.textContent = label("commandFailed", /** @type {Error} */ (error).message);
    }
  });
  return { card, show };
}

/** @type {import("./engineer.js").Part} */
export function openTargets(root, context) {
  /** @type {Map<string, ReturnType<typeof createCard>>} */
  const cards = new Map();
  const list = element("ul", { className: "cards" });
  const trouble = element("p", { className: "trouble", role: "status" });
  root.append(trouble, list);

  /** @param {Target[]} targets */
  function show(targets) {
    const sorted = [...targets].sort((a, b) =>
      order.indexOf(a.state) - order.indexOf(b.state) || a.name.localeCompare(b.name));
    for (const [name, { card }] of cards) {
      if (!targets.some((target) => target.name === name)) {
        card.remove();
        cards.delete(name);
      }
    }
    for (const target of sorted) {
      const known = cards.get(target.name) ?? createCard(context);
      cards.set(target.name, known);
      known.show(target);
    }
    // A card is not moved away from under the pointer or the focus.
    if (!list.matches(":hover, :focus-within") || list.children.length !== sorted.length)
      list.append(...sorted.map(({ name }) => cards.get(name)?.card ?? ""));
  }

  async function load() {
    try {
      show(await context.api.targets());
      trouble.textContent = "";
    } catch (error) {
      trouble.textContent = label("targetsFailed", /** @type {Error} */ (error).message);
    }
  }
  const reload = throttled(load, () => 500);
  const timer = setInterval(reload, interval);
  const ends = [
    context.onChange(({ type }) => ["target", "reset", "missed"].includes(type) && reload()),
    () => clearInterval(timer),
  ];
  reload();
  return () => ends.forEach((end) => end());
}
