// The view that a plant is run with: the list of alarms and messages, and all about one of them.
import { applyWords } from "../shell/words.js";
import { byId } from "../shell/dom.js";
import { isConfirmable, keyOf } from "../shell/event.js";
import * as horn from "../shell/horn.js";
import { lazyView } from "../shell/lazyview.js";
import { flood, onCounts } from "../shell/situation.js";
import { Bar } from "./bar.js";
import { choicesOf, exportPath, filterNames, pageSize } from "./choices.js";
import { Confirmations } from "./confirmations.js";
import { Filters } from "./filters.js";
import { Keys, showHelp } from "./keys.js";
import { List } from "./list.js";
import { Listing } from "./listing.js";
import { NamedViews } from "./namedviews.js";
import { Order } from "./order.js";
import { Pane } from "./pane.js";

/** @typedef {import("../types.js").HmiEvent} HmiEvent */
/** @typedef {import("./row.js").Row} Row */

const typingPause = 250;  // ms

class Operate {
  #context;
  #part;
  #ending = new AbortController();
  #ends = /** @type {(() => void)[]} */ ([]);
  /** @type {ReturnType<typeof setTimeout> | undefined} */
  #typing;

  /** @param {HTMLElement} root @param {import("../types.js").Context} context */
  constructor(root, context) {
    this.#context = context;
    root.append(/** @type {HTMLTemplateElement} */ (byId("operateView")).content.cloneNode(true));
    applyWords(root);
    this.#part = (/** @type {string} */ name) =>
      /** @type {HTMLElement} */ (root.querySelector(name));
    const { signal } = this.#ending;
    this.confirmations = new Confirmations(context, () => this.listing.show());
    this.list = new List(/** @type {any} */ (this.#part("tbody")), this.#handlers(), signal);
    this.pane = new Pane(this.#part(".details"), context, this.confirmations,
      () => this.#close());
    this.filters = new Filters(/** @type {any} */ (this.#part("form")), context,
      (choices) => this.#use(choices));
    this.order = new Order(this.#part("thead"), /** @type {any} */ (this.#part(".ordering")),
      context.address, (order) => this.#use({ order }));
    this.views = new NamedViews(this.#part("form"), context.address,
      (choices) => this.#use(choices));
    this.bar = new Bar(this.#part(".bar"), this.#barActions());
    this.keys = new Keys(this.list, this.#keyActions(), signal);
    this.listing = new Listing(root, context, {
      list: this.list, pane: this.pane, confirmations: this.confirmations,
      choices: () => this.#choices, isGrouped: () => this.#isGrouped(),
      use: (choices) => this.#use(choices),
    });
    this.#listen();
    this.#showChoices();
    this.#showBar();
    this.listing.load();
  }

  #listen() {
    const { link, onChange, onTargets, address } = this.#context;
    this.#ends = [
      onChange((change) => this.#hear(change)),
      link.onChange(({ state }) => state === "connected" ? this.#startAgain() : this.#showBar()),
      onTargets(() => this.filters.offerTargets()),
      onCounts(() => this.#showBar()),
      address.onChange(() => this.#use({})),
    ];
    this.#part(".newer").addEventListener("click", () => this.#page(-1));
    this.#part(".older").addEventListener("click", () => this.#page(1));
    this.#part(".export").addEventListener("click", () => this.#export());
    this.#part(".help").addEventListener("click", showHelp);
  }

  /** @returns {import("./list.js").Handlers} */
  #handlers() {
    return {
      open: (row) => this.#open(row),
      close: () => this.pane.hide(),
      confirm: (event) => this.confirmations.confirm([event]),
      unseen: () => this.confirmations.sayUnseen(),
      showGroup: ({ group }) => group && this.#use(
        { group: "0", target: group.target, text: group.sourceName || group.eventClass }),
      doubt: (rows) => this.listing.lookFor(rows),
      isBusy: () => this.confirmations.isAsking,
      mayConfirm: () => this.#context.may("confirm"),
      changed: () => this.#showBar(),
    };
  }

  /** @returns {Record<string, (press: Event) => void>} */
  #barActions() {
    return {
      freeze: () => this.#freeze(),
      waiting: () => { this.list.place(); this.list.move(0); },
      grouping: () => this.#use({ group: this.#isGrouped() ? "0" : "1" }),
      showAll: () => this.#use(Object.fromEntries(filterNames.map((name) => [name, ""]))),
      confirmChosen: (press) => this.confirmations.confirmSelected(this.list, press),
      confirmShown: () => this.confirmations.confirmMany(this.list.events),
    };
  }

  /** @returns {import("./keys.js").Actions} */
  #keyActions() {
    return {
      a: (press) => this.confirmations.confirmSelected(this.list, press),
      A: () => this.confirmations.confirmMany(this.list.events),
      "/": () => this.#part("[name=text]").focus(), s: horn.silence,
      e: () => this.#export(), p: () => this.#freeze(), "?": () => { showHelp(); },
      open: () => this.list.active && this.#open(this.list.active, true),
      leave: () => this.#leave(),
    };
  }

  // ---- the list

  get #choices() {
    return choicesOf(this.#context.address);
  }

  #showChoices() {
    this.filters.show();
    this.order.show();
    this.views.show();
  }

  /** Chosen, or because of the flood. */
  #isGrouped() {
    const { group } = this.#choices;
    return group ? group === "1" : flood().flood;
  }

  #showBar() {
    this.bar?.show({
      list: this.list, hidden: this.listing.hidden, isGrouped: this.#isGrouped(),
      confirmable: this.list.events.filter(isConfirmable).length,
      mayConfirm: this.#context.may("confirm"),
    });
  }

  /** @param {Record<string, string | number>} changes another view is asked for */
  #use(changes) {
    this.#context.address.replace({ offset: "", ...changes });
    this.#showChoices();
    clearTimeout(this.#typing);
    this.#typing = setTimeout(() => this.listing.loadAnew(), "text" in changes ? typingPause : 0);
  }

  /** @param {number} step */
  #page(step) {
    this.#use({ offset: Math.max(0, Number(this.#choices.offset) + step * pageSize) || "" });
  }

  /** @param {import("../types.js").Change} change */
  #hear(change) {
    const { type, event, target } = change;
    if (type === "log" || type === "target")
      return;
    this.listing.pace.count();
    if (type === "missed" || type === "reset")
      this.list.doubt((row) => !target || row.event.parameters?.targetName === target);
    else if (type === "forgotten" && event)
      this.list.doubt(({ key }) => key === keyOf(event));
    else if (event)
      this.list.update(this.confirmations.applyTo(event));
    if (event)
      this.pane.hear(event);
    this.listing.load();
  }

  #startAgain() {
    this.list.doubt(() => true);
    this.listing.load();
  }

  // ---- one event, or several

  /** @param {Row} row @param {boolean} [isAgain] by key: the second time it goes inside */
  #open(row, isAgain = false) {
    if (row.event.kind === "gap")
      return;
    if (isAgain && this.list.openKey === row.key)
      return this.pane.focus();
    this.list.setOpen(row.key);
    this.pane.show(row.event);
  }

  #close() {
    const row = this.list.get(this.list.openKey) ?? this.list.active;
    const wasInside = this.#part(".details").contains(document.activeElement);
    this.pane.hide();
    this.list.setOpen("");
    if (wasInside)
      row?.element.focus();
  }

  /** What was opened or chosen last goes first. */
  #leave() {
    if (this.list.openKey)
      this.#close();
    else if (this.list.selected.size > 0)
      this.list.clearSelection();
    else
      /** @type {HTMLElement | null} */ (document.activeElement)?.blur();
  }

  #freeze() {
    this.list.hold.toggle();
    this.#showBar();
  }

  #export() {
    const link = document.createElement("a");
    link.href = exportPath(this.#choices, this.#context.locale());
    link.download = "events.csv";
    link.click();
  }

  languageChanged() {
    this.#showChoices();
    this.list.refill();
    this.pane.languageChanged();
    this.#showBar();
    this.listing.loadAnew();
  }

  close() {
    this.#ending.abort();
    this.listing.close();
    this.#ends.forEach((end) => end());
  }
}

export const { open, close, languageChanged } =
  lazyView("operate", (root, context) => new Operate(root, context));
