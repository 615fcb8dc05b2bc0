// One row of the list. It stays the same element for as long as its event is shown; then it may be
// another's.
import { element, icon, setText } from "../shell/dom.js";
import { dateTime, number, otherDay, shortTime, timeOfDay } from "../shell/format.js";
import {
  confirmationText, hasFailed, isConfirming, isGap, needsConfirmation, pictureOf, severityText,
  stateText, subtitle, targetOf, title,
} from "../shell/event.js";
import { label, language } from "../shell/words.js";
import { Seen } from "./seen.js";

/** @typedef {import("../types.js").HmiEvent} HmiEvent */
/** @typedef {import("../types.js").Group} Group */
/** @typedef {{key: string, event: HmiEvent, group?: Group}} Item */
/** @typedef {"isSelected" | "isOpen" | "isActive" | "mayConfirm"} Flag */
/** @typedef {Record<Flag, boolean>} Flags */

/** @param {string} className @param {...Node} children */
const cell = (className, ...children) =>
  element("td", { className, role: "gridcell" }, ...children);

/** @param {Group} group */
const groupText = ({ count, active, unconfirmed }) =>
  label("groupCounts", number(count), number(active), number(unconfirmed));

export class Row {
  #picture = icon("message");
  #use = /** @type {Element} */ (this.#picture.firstElementChild);
  #state = element("span", { className: "word" });
  #severity = element("small");
  #raised = element("time");
  #day = element("small");
  #target = element("bdi");
  #title = element("bdi", { className: "title" });
  #subtitle = element("bdi", { className: "subtitle" });
  #cleared = element("span");
  #life = element("bdi", { className: "life" });
  #filled = "";

  check = element("input", { type: "checkbox", tabIndex: -1 });
  button = element("button", { type: "button", className: "confirm", tabIndex: -1 });
  /** The occurrence in its place. */
  seen = new Seen();
  /** How many rows stand above it. */
  at = 0;
  /** It is known to be in the list no more. */
  hasLeft = false;
  /** Whether it is still in the list has to be asked. */
  isDoubtful = false;

  /** @param {Item} item */
  constructor(item) {
    this.key = item.key;
    this.event = item.event;
    this.group = item.group;
    this.element = element("tr", { role: "row", tabIndex: -1 },
      cell("select", element("label", {}, this.check)),
      cell("state", this.#picture, element("span", {}, this.#state, this.#severity)),
      cell("raised", this.#raised, this.#day),
      cell("target", this.#target),
      cell("event", this.#title, this.#subtitle),
      cell("course", this.#cleared, this.#life),
      cell("action", this.button));
    this.element.dataset.key = item.key;
  }

  /** It is another event's row from now on. @param {Item} item */
  take(item) {
    this.key = item.key;
    this.element.dataset.key = item.key;
    this.hasLeft = this.isDoubtful = false;
  }

  /** @param {Item} item @param {Flags} flags */
  fill(item, flags) {
    this.event = item.event;
    this.group = item.group;
    this.seen.stands(`${this.at} ${item.key} ${item.event.timeRaised}`);
    const now = JSON.stringify([item, flags, this.hasLeft, language()]);
    if (now === this.#filled)
      return;
    this.#filled = now;
    this.#fillRow(flags);
    this.#fillTexts();
    this.#fillAction(flags.mayConfirm);
    this.#fillChoices(flags);
  }

  /** @param {Flags} flags */
  #fillRow({ isSelected, isOpen }) {
    const { event, element: row } = this;
    row.className = isGap(event) ? "gap" : `severity${Math.min(event.severity, 4)} ${event.kind}`;
    const { classList } = row;
    classList.toggle("group", Boolean(this.group));
    classList.toggle("active", this.group ? this.group.active > 0 : Boolean(event.active));
    classList.toggle("unconfirmed",
      this.group ? this.group.unconfirmed > 0 : needsConfirmation(event));
    classList.toggle("selected", isSelected);
    classList.toggle("open", isOpen);
    classList.toggle("lastKnown", Boolean(event.lastKnownSince));
    classList.toggle("left", this.hasLeft);
    row.setAttribute("aria-selected", String(isSelected));
  }

  #fillTexts() {
    const { event, group } = this;
    this.#use.setAttribute("href", `#${pictureOf(event)}`);
    setText(this.#state, group ? label("groupOf", number(group.count)) : stateText(event));
    setText(this.#severity, isGap(event) ? "" : severityText(event));
    const raised = isGap(event) ? event.from : event.timeRaised;
    setText(this.#raised, timeOfDay(raised));
    setText(this.#day, otherDay(raised));
    this.#raised.dateTime = raised ?? "";
    this.#raised.title = raised ?? "";
    setText(this.#target, targetOf(event));
    setText(this.#title, title(event));
    this.#title.lang = event.text || isGap(event) ? language() : "";
    setText(this.#subtitle, subtitle(event));
    setText(this.#cleared, group ? groupText(group)
      : event.timeCleared ? label("clearedAtTime", shortTime(event.timeCleared)) : "");
    this.#cleared.title = dateTime(event.timeCleared);
    const life = this.hasLeft ? label("hasLeft") : group ? "" : confirmationText(event);
    setText(this.#life, life);
    this.#life.title = life;
    this.#life.className = `life ${event.confirmation?.state ?? ""}`;
  }

  /** A button that only says that it is busy keeps the focus. @param {boolean} mayConfirm */
  #fillAction(mayConfirm) {
    const { event, button, group } = this;
    const name = label(group ? "showGroup" : hasFailed(event) ? "tryAgain" : "confirm");
    setText(button, name);
    button.setAttribute("aria-label", `${name}: ${title(event)}`);
    button.setAttribute("aria-disabled", String(!group && isConfirming(event)));
    const canConfirm = mayConfirm && needsConfirmation(event) && !event.lastKnownSince;
    const isHidden = this.hasLeft || (!group && !canConfirm);
    if (isHidden && button === document.activeElement)
      this.element.focus();
    button.hidden = isHidden;
  }

  /** @param {Flags} flags */
  #fillChoices({ isSelected, isActive }) {
    const { event, check } = this;
    check.checked = isSelected;
    check.hidden = isGap(event) || Boolean(this.group);
    check.setAttribute("aria-label", label("selectRow", title(event)));
    this.element.tabIndex = isActive ? 0 : -1;
    this.button.tabIndex = isActive ? 0 : -1;
  }
}
