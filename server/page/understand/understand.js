// What the alarms of the last hours say about the plant.
import { element } from "../shell/dom.js";
import { clock, duration } from "../shell/format.js";
import { throttled } from "../shell/throttled.js";
import { lazyView } from "../shell/lazyview.js";
import { label } from "../shell/words.js";
import { createPanels } from "./panels.js";
import { moment, ratePicture } from "./rate.js";
import * as tables from "./tables.js";

/** @typedef {import("./tables.js").Summary} Summary */

const periods = [60, 480, 1440, 10080];  // minutes
const pause = 5000;                      // ms between two loads
const interval = 30000;                  // ms without a change

/** @param {Summary} summary */
function nowPanel({ flood, oldestUnconfirmed }) {
  const oldest = oldestUnconfirmed
    ? label("oldestWaits", duration(Date.now() - Date.parse(oldestUnconfirmed)),
      moment(oldestUnconfirmed))
    : label("allConfirmed");
  return element("section", { className: "panel" },
    element("h2", { textContent: label("nowTitle") }),
    element("p", { className: flood ? "inFlood" : "calm",
      textContent: label(flood ? "floodNow" : "noFlood") }),
    element("p", { textContent: oldest }));
}

/**
 * @param {HTMLElement} root
 * @param {import("../types.js").Context} context
 */
function createView(root, context) {
  const body = element("div", { className: "panels" });
  const trouble = element("p", { className: "trouble", role: "status" });
  const asOf = element("p", { className: "asOf" });
  const period = element("select");
  const target = element("select");
  const panels = createPanels(body);
  let answer = /** @type {any} */ (null);
  let closePicture = () => {};
  let isOpen = true;

  const minutes = () => {
    const asked = Number(context.address.get("minutes"));
    return periods.includes(asked) ? asked : periods[0];
  };
  const chosen = () => context.address.get("target");

  /** @param {Summary[]} targets @param {Summary} summary */
  function showPanels(targets, summary) {
    panels.show("rate", [summary.rate, summary.peak], () => {
      closePicture();
      const picture = ratePicture(summary.rate, summary.peak);
      closePicture = picture.close;
      return element("section", { className: "panel wide" },
        element("h2", { textContent: label("rateTitle") }), ...picture.parts);
    });
    const minute = Math.floor(Date.now() / 60000);  // ages grow
    panels.show("now", [summary.flood, summary.oldestUnconfirmed, minute], () => nowPanel(summary));
    panels.show("priorities", summary.counts, () => tables.priorities(summary.counts));
    panels.show("frequent", summary.frequent, () => tables.frequent(summary.frequent));
    panels.show("chattering", summary.chattering, () => tables.chattering(summary.chattering));
    panels.show("standing", [summary.standing, minute], () => tables.standing(summary.standing,
      ({ target: name }) => context.goTo("operate", { target: name, state: "active" })));
    panels.show("gaps", summary.gaps, () => tables.gaps(summary.gaps));
    if (chosen())
      panels.remove("targets");
    else
      panels.show("targets", targets,
        () => tables.perTarget(targets, (name) => choose({ target: name })));
  }

  function show() {
    if (!answer)
      return;
    const summary = chosen()
      ? answer.targets.find((/** @type {Summary} */ { name }) => name === chosen()) : answer.all;
    asOf.textContent = answer.since > answer.from
      ? label("asOfSince", clock(answer.to), moment(answer.since)) : label("asOf", clock(answer.to));
    if (summary)
      showPanels(answer.targets, summary);
    else
      panels.clear();
    trouble.textContent = summary ? "" : label("noSuchTarget", chosen());
  }

  async function load() {
    try {
      const asked = context.api.query({ minutes: minutes(), locale: context.locale() });
      const loaded = await context.api.request(`/api/statistics?${asked}`);
      if (!isOpen)
        return;
      answer = loaded;
      show();
    } catch (error) {
      trouble.textContent = label("statisticsFailed", /** @type {Error} */ (error).message);
    }
  }
  const reload = throttled(() => isOpen && load(), () => pause);

  function offer() {
    const names = new Set(context.targets().map(({ name }) => name));
    if (chosen())
      names.add(chosen());
    target.replaceChildren(new Option(label("allTargets"), ""),
      ...[...names].map((name) => new Option(name, name)));
    target.value = chosen();
    period.replaceChildren(
      ...periods.map((count) => new Option(label(`period${count}`), String(count))));
    period.value = String(minutes());
  }

  /** @param {Record<string, string>} choice */
  function choose(choice) {
    context.address.replace(choice);
    offer();
    show();
    load();
  }

  function draw() {
    panels.clear();
    root.replaceChildren(element("form", { className: "choices" },
      element("label", {}, label("period"), period),
      element("label", {}, label("statisticsTarget"), target), asOf), trouble, body);
    offer();
    show();
  }

  period.addEventListener("change", () => choose({ minutes: period.value }));
  target.addEventListener("change", () => choose({ target: target.value }));
  const timer = setInterval(reload, interval);
  const ends = [
    context.onChange(({ type }) => type !== "log" && reload()),
    context.onTargets(offer),
    () => clearInterval(timer),
    () => closePicture(),
  ];
  draw();
  reload();
  return {
    languageChanged() {
      draw();
      load();
    },
    close() {
      isOpen = false;
      ends.forEach((end) => end());
    },
  };
}

export const { open, close, languageChanged } = lazyView("understand", createView);
