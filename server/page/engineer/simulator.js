// The simulated runtimes: tells them what to do, and shows how they are.
import { element, foreign } from "../shell/dom.js";
import { number } from "../shell/format.js";
import { label } from "../shell/words.js";
import { actions, actionText, fieldsOf, readAction } from "./actions.js";
import { openSteps } from "./steps.js";

const interval = 2000;  // ms

const operations = [
  "*", "CreateInstance", "SetTimeout", "Advise", "ConnectWithSettings", "Connect", "Disconnect",
  "IsConnected", "GetLoggedEvents", "GetActiveAlarms", "ClearLoggedEvents", "GetItem",
  "GetEventText", "GetEventClassName", "GetSourceName", "GetCauseRemedy", "GetDetails", "Confirm",
  "Notification",
];

/** @param {string} name @param {Iterable<string | number>} values */
const suggestions = (name, values) => element("datalist", { id: `simulator-${name}` },
  ...[...new Set(values)].map((value) => new Option("", String(value))));

/** @param {any} status */
function statusText({ connected, alarms, logged, queued, liveObjects }) {
  return label("runtimeStatus", label(connected ? "runtimeConnected" : "runtimeAlone"),
    number(Object.keys(alarms).length), number(logged), number(queued ?? 0), number(liveObjects));
}

/** @param {any} status */
const alarmList = ({ alarms }) => element("ul", { className: "alarms" },
  ...Object.entries(alarms).slice(0, 100).map(([name, { active, confirmed }]) => element("li", {},
    foreign(name), ` – ${label(active ? "isActive" : "isCleared")}, ` +
      label(confirmed ? "isConfirmed" : "isUnconfirmed"))));

/** @type {import("./engineer.js").Part} */
export function openSimulator(root, { api, targets }) {
  const runtime = element("select");
  const choice = element("select", { name: "do" },
    ...Object.keys(actions).map((name) => new Option(label(`do_${name}`), name)));
  const after = element("input", { type: "number", min: "0", step: "any", value: "0" });
  const fields = element("fieldset", { className: "fields" });
  const add = element("button", { type: "submit", value: "add", textContent: label("addStep") });
  const form = element("form", { className: "action" },
    element("label", {}, label("runtime"), runtime), element("label", {}, label("action"), choice),
    fields, element("div", { className: "buttons" },
      element("button", { type: "submit", value: "do", textContent: label("doIt") }),
      element("label", {}, label("after"), after), add));
  const said = element("p", { className: "said", role: "status" });
  const status = element("p");
  const alarms = element("div");
  const lists = element("div", { hidden: true });
  const stepPlace = element("section", { className: "panel" });
  /** @type {Record<string, any>} */
  let latest = { alarms: {} };

  const path = (/** @type {string} */ netId) => `/sim/${encodeURIComponent(netId)}`;
  const steps = openSteps(stepPlace, async ({ runtime: netId, after: _, ...action }) => {
    await api.post(path(netId), action);
  });

  for (const { name, address } of targets())
    runtime.append(new Option(`${name} (${address})`, address));

  function drawFields() {
    fields.replaceChildren(element("legend", { textContent: label(`do_${choice.value}`) }),
      ...fieldsOf(choice.value));
    fields.hidden = actions[choice.value].length === 0;
  }

  async function loadStatus() {
    try {
      latest = await api.request(path(runtime.value));
      status.textContent = statusText(latest);
      alarms.replaceChildren(alarmList(latest));
      lists.querySelector("#simulator-alarms")?.replaceWith(
        suggestions("alarms", Object.keys(latest.alarms)));
    } catch (error) {
      status.textContent = label("noRuntime", /** @type {Error} */ (error).message);
      alarms.replaceChildren();
    }
  }

  /** Classes and numbers that have been seen of this runtime. */
  async function loadSuggestions() {
    const target = targets().find(({ address }) => address === runtime.value)?.name ?? "";
    const { events } = await api.events({ target, limit: 200 }).catch(() => ({ events: [] }));
    lists.replaceChildren(suggestions("operations", operations),
      suggestions("alarms", Object.keys(latest.alarms)),
      suggestions("classes", events.map(({ parameters }) => parameters.eventClass)),
      suggestions("events", events.map(({ parameters }) => parameters.eventId)));
  }

  form.addEventListener("submit", async (event) => {
    event.preventDefault();
    try {
      const action = readAction(form);
      if (event.submitter === add) {
        steps.add({ ...action, runtime: runtime.value, after: Number(after.value) });
        said.textContent = label("stepAdded");
        return;
      }
      await api.post(path(runtime.value), action);
      said.textContent = label("actionDone", actionText(action));
      loadStatus();
    } catch (error) {
      said.textContent = label("actionFailed", /** @type {Error} */ (error).message);
    }
  });
  choice.addEventListener("change", drawFields);
  runtime.addEventListener("change", () => {
    loadStatus();
    loadSuggestions();
  });
  root.append(element("div", { className: "panels" },
      element("section", { className: "panel" },
        element("h2", { textContent: label("tellRuntime") }), form, said),
      stepPlace,
      element("section", { className: "panel" },
        element("h2", { textContent: label("runtimeNow") }), status, alarms)), lists);
  drawFields();
  loadStatus();
  loadSuggestions();
  const timer = setInterval(loadStatus, interval);
  return () => {
    clearInterval(timer);
    steps.close();
  };
}
