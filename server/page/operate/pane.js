// All about one event, beside the list.
import { element, icon, setText } from "../shell/dom.js";
import {
  confirmationText, hasFailed, isConfirming, keyOf, needsConfirmation, pictureOf, targetOf,
} from "../shell/event.js";
import { label, language } from "../shell/words.js";
import * as facts from "./facts.js";
import { member, parse } from "./jsontext.js";
import { lifeFrom } from "./life.js";
import { Seen } from "./seen.js";
import { Terms } from "./terms.js";

/** @typedef {import("../types.js").HmiEvent} HmiEvent */
/** @typedef {import("../types.js").Context} Context */

const sections = ["", "causes", "times", "detailsHeading", "life", "parameters"];

export class Pane {
  #root;
  #content;
  #context;
  #confirmations;
  #event = /** @type {HmiEvent | null} */ (null);
  #parameters = /** @type {import("./jsontext.js").Node | undefined} */ (undefined);
  #history = /** @type {string[] | null} */ (null);
  #loading = new AbortController();
  #picture = icon("message");
  #title = element("bdi");
  #life = element("p", { className: "life", role: "status" });
  #comment = element("input", { maxLength: 500, autocomplete: "off", name: "comment" });
  #commentLabel = element("label", {}, " ", this.#comment);
  #button = element("button", { type: "button", className: "main" });
  #headings = sections.map(() => element("h3"));
  #terms = sections.map(() => new Terms());
  #causes = element("div", { className: "causes" });
  #steps = element("ol", { className: "steps" });
  #shownCauses = "";
  #shownSteps = "";
  #seen = new Seen();
  #pressed = /** @type {HmiEvent | null | undefined} */ (undefined);

  /**
   * @param {HTMLElement} root
   * @param {Context} context
   * @param {import("./confirmations.js").Confirmations} confirmations
   * @param {() => void} close
   */
  constructor(root, context, confirmations, close) {
    this.#root = root;
    this.#context = context;
    this.#confirmations = confirmations;
    this.#content = /** @type {HTMLElement} */ (root.querySelector(".content"));
    root.querySelector(".close")?.addEventListener("click", close);
    this.#button.addEventListener("pointerdown", (press) => this.#aim(press));
    this.#button.addEventListener("keydown", (press) => press.repeat || this.#aim(press));
    this.#button.addEventListener("click", () => this.#confirm());
    this.#content.append(
      element("h2", {}, this.#picture, this.#title), this.#life,
      element("div", { className: "confirming" }, this.#commentLabel, this.#button),
      ...sections.flatMap((name, at) => [this.#headings[at],
        name === "causes" ? this.#causes : name === "life" ? this.#steps : this.#terms[at].element]));
    this.languageChanged();
  }

  /** What the button was pressed for; null for what nobody can have seen. @param {Event} press */
  #aim(press) {
    this.#pressed = this.#seen.isBefore(press) ? this.#event : null;
  }

  #confirm() {
    const meant = this.#pressed === undefined ? this.#event : this.#pressed;
    this.#pressed = undefined;
    if (meant === null)
      return this.#confirmations.sayUnseen();
    if (isConfirming(meant))
      return;
    this.#confirmations.confirm([meant], this.#comment.value.trim());
    this.#comment.value = "";
  }

  get #key() {
    return this.#event ? keyOf(this.#event) : "";
  }

  /** @param {HmiEvent} event */
  async show(event) {
    const isOther = this.#key !== keyOf(event);
    if (isOther)
      this.#forget();
    this.#event = isOther ? event : { ...this.#event, ...event };
    this.#root.hidden = false;
    this.#root.parentElement?.classList.add("split");
    this.#fill();
    await this.#load();
  }

  #forget() {
    this.#loading.abort();
    this.#parameters = undefined;
    this.#history = null;
    this.#comment.value = "";
    this.#root.scrollTop = 0;
  }

  hide() {
    this.#forget();
    this.#event = null;
    this.#root.hidden = true;
    this.#root.parentElement?.classList.remove("split");
  }

  focus() {
    this.#root.focus();
  }

  async #load() {
    this.#loading.abort();
    this.#loading = new AbortController();
    const { signal } = this.#loading;
    const { api, locale } = this.#context;
    const path = `/api/events/${encodeURIComponent(this.#key)}`;
    const key = this.#key;
    const get = (/** @type {string} */ query) => api.text(path + query, { signal });
    const text = await get(`?${api.query({ locale: locale() })}`)
      .catch(() => signal.aborted ? "" : get("").catch(() => ""));
    if (signal.aborted || !text || this.#key !== key)
      return;
    this.#parameters = member(parse(text), "parameters");
    this.#event = this.#confirmations.applyTo({ ...this.#event, ...JSON.parse(text) });
    this.#fill();
    await this.#loadHistory(signal);
  }

  /** @param {AbortSignal} signal */
  async #loadHistory(signal) {
    const key = this.#key;
    const steps = this.#event && await lifeFrom(this.#context.api, this.#event, signal);
    if (!steps || this.#key !== key)
      return;
    this.#history = steps;
    this.#fill();
  }

  /** A change of some event. @param {HmiEvent} event */
  hear(event) {
    if (!this.#event || keyOf(event) !== this.#key)
      return;
    const { lastKnownSince, confirmation, ...known } = this.#event;
    const isAgain = known.timeRaised !== event.timeRaised;
    this.#event = this.#confirmations.applyTo({ ...known, ...event });
    this.#fill();
    if (isAgain || this.#history)
      this.#load();
  }

  /** As the list knows it by now. @param {import("./list.js").List} list */
  async follow(list) {
    const row = list.get(list.openKey);
    if (!row || !this.#event || keyOf(row.event) !== this.#key)
      return;
    const isAgain = row.event.timeRaised !== this.#event.timeRaised;
    const { lastKnownSince, confirmation, ...known } = this.#event;
    this.#event = { ...known, ...row.event };
    this.#fill();
    if (isAgain)
      await this.#load();
  }

  #fill() {
    const event = this.#event;
    if (!event)
      return;
    this.#seen.stands(`${keyOf(event)} ${event.timeRaised}`);
    this.#picture.firstElementChild?.setAttribute("href", `#${pictureOf(event)}`);
    this.#root.className = `details severity${Math.min(event.severity, 4)}` +
      (event.active ? " active" : "") + (event.lastKnownSince ? " lastKnown" : "");
    setText(this.#title, facts.heading(event));
    this.#title.lang = event.text ? language() : "";
    const life = confirmationText(event);
    setText(this.#life, life);
    this.#life.className = `life ${event.confirmation?.state ?? ""}`;
    this.#fillAction(event);
    const target = this.#context.targets().find(({ name }) => name === targetOf(event));
    this.#showTerms(0, facts.mainFacts(event));
    this.#showCauses(event);
    this.#showTerms(2, facts.times(event, target?.clockSkewMilliseconds));
    this.#showTerms(3, facts.details(event));
    this.#showSteps(this.#history ?? facts.lifeOf(event));
    this.#showTerms(5, facts.parameters(this.#parameters));
  }

  /** @param {HmiEvent} event */
  #fillAction(event) {
    const canConfirm = this.#context.may("confirm") && needsConfirmation(event) &&
      !event.lastKnownSince;
    /** @type {HTMLElement} */ (this.#button.parentElement).hidden = !canConfirm;
    setText(this.#button, label(hasFailed(event) ? "tryAgain" : "confirm"));
    this.#button.setAttribute("aria-disabled", String(isConfirming(event)));
  }

  /** @param {number} at @param {import("./terms.js").Term[]} terms */
  #showTerms(at, terms) {
    this.#terms[at].show(terms);
    this.#headings[at].hidden = at === 0 || terms.length === 0;
  }

  /** @param {HmiEvent} event */
  #showCauses({ causeRemedy = [] }) {
    const now = JSON.stringify(causeRemedy);
    this.#headings[1].hidden = causeRemedy.length === 0;
    if (now === this.#shownCauses)
      return;
    this.#shownCauses = now;
    this.#causes.replaceChildren(...causeRemedy.map(({ cause, remedy }) =>
      element("div", { className: "remedy", lang: language() },
        element("p", { dir: "auto", textContent: cause }),
        element("p", { dir: "auto", textContent: `→ ${remedy}` }))));
  }

  /** @param {string[]} steps */
  #showSteps(steps) {
    const now = steps.join("\n");
    if (now === this.#shownSteps)
      return;
    this.#shownSteps = now;
    this.#steps.replaceChildren(...steps.map((step) =>
      element("li", { dir: "auto", textContent: step })));
  }

  languageChanged() {
    sections.forEach((name, at) => setText(this.#headings[at], name && label(name)));
    /** @type {Text} */ (this.#commentLabel.firstChild).data = label("comment");
    if (!this.#event)
      return;
    this.#terms.forEach((terms) => terms.show([]));
    this.#fill();
    this.#load();
  }
}
