import * as api from "./api.js";
import * as details from "./details.js";
import { label, locales, useLanguage } from "./labels.js";
import * as list from "./list.js";
import { clock } from "./event.js";
import * as targets from "./targets.js";
import { throttled } from "./throttled.js";

const pageSize = 100;
const reloadInterval = 400;      // ms; however fast changes come
const targetsInterval = 10000;

const byId = (id) => document.getElementById(id);
const filters = byId("filters");
const state = { locale: "", offset: 0, total: 0, selected: null, events: [], atOnce: true };

function notify(text) {
  byId("notice").textContent = text;
  clearTimeout(notify.timer);
  notify.timer = setTimeout(() => { byId("notice").textContent = ""; }, 6000);
}

// ---- the list

let loading = new AbortController();

async function loadList() {
  loading.abort();
  loading = new AbortController();
  const { signal } = loading;
  const parameters = { ...Object.fromEntries(new FormData(filters)), locale: state.locale };
  try {
    const page = await api.events(
      { ...parameters, offset: state.offset, limit: pageSize, lastKnown: 1, gaps: 1 }, signal);
    state.events = page.events;
    state.total = page.total;
    if (state.offset > 0 && state.offset >= page.total) {
      state.offset = Math.max(0, Math.floor((page.total - 1) / pageSize) * pageSize);
      return await loadList();
    }
    showList();
    await showSelected();
  } catch (error) {
    if (!signal.aborted)
      notify(`${label("loadFailed")}: ${error.message}`);
  }
}

function showList() {
  list.show(state.events, state.selected, { open: select, confirm }, state.atOnce);
  state.atOnce = false;
  byId("empty").hidden = state.total > 0;
  const last = state.offset + state.events.length;
  const number = (count) => count.toLocaleString(state.locale || undefined);
  byId("range").textContent = state.total === 0 ? ""
    : label("range", number(state.offset + 1), number(last), number(state.total));
  byId("newer").disabled = state.offset === 0;
  byId("older").disabled = last >= state.total;
}

async function loadCounts() {
  for (const tile of byId("tiles").children) {
    const count = await api.count({ state: tile.dataset.state });
    tile.firstElementChild.textContent = count.toLocaleString(state.locale || undefined);
    tile.classList.toggle("some", count > 0);
    tile.setAttribute("aria-pressed", String(filters.elements.state.value === tile.dataset.state));
  }
}

const reload = throttled(async () => {
  await loadList();
  await loadCounts().catch(() => {});
}, reloadInterval);

function reloadFromStart() {
  state.offset = 0;
  state.atOnce = true;
  reload();
}

// ---- one event

async function showSelected() {
  if (state.selected === null)
    return details.hide();
  const id = state.selected;
  const shown = state.events.find((event) => event.id === id);
  try {
    const event = shown ?? await api.localized(id, state.locale);
    if (state.selected === id)
      details.show(event);
  } catch {
    state.selected = null;
    details.hide();
  }
}

async function select(event) {
  state.selected = event ? event.id : null;
  showList();
  await showSelected();
  if (event)
    details.focus();
}

async function confirm(event) {
  try {
    await api.confirm(event);
  } catch (error) {
    notify(error.status === 409 && !error.current?.lastKnownSince ? label("raisedAgain")
      : `${label("confirmFailed")}: ${error.message}`);
  }
  reload();
}

// ---- target systems

/** A target that is gone stays a choice while it is chosen. */
function offerTargets() {
  const choice = filters.elements.target;
  const wanted = new Set([...targets.names(), choice.value].filter(Boolean));
  for (const option of [...choice.options].slice(1)) {
    if (!wanted.delete(option.value))
      option.remove();
  }
  choice.append(...[...wanted].map((name) => new Option(name, name)));
}

const loadTargets = throttled(async () => {
  await targets.load();
  offerTargets();
}, 500);

// ---- the page

function useLocale(locale) {
  state.locale = locale;
  try {
    localStorage.setItem("locale", locale);
  } catch {
    // It is asked for again next time.
  }
  useLanguage(locale || "en");
  byId("locale").options[0].textContent = label("none");
  showLink(byId("link").dataset.state ?? "connecting", lastSign);
  targets.show();
  reloadFromStart();
}

function keptLocale() {
  try {
    return localStorage.getItem("locale");
  } catch {
    return null;
  }
}

function offerLocales() {
  const choice = byId("locale");
  choice.append(new Option("", ""), ...locales.map(([name, text]) => new Option(text, name)));
  const wanted = keptLocale() ?? locales.find(
    ([name]) => name.slice(0, 2) === navigator.language.slice(0, 2))?.[0] ?? locales[0][0];
  choice.value = wanted;
  choice.addEventListener("change", () => useLocale(choice.value));
  useLocale(choice.value);
}

let lastSign = new Date();

function showLink(connection, heard) {
  const link = byId("link");
  lastSign = heard;
  link.dataset.state = connection;
  link.textContent = label(connection);
  const isDown = ["reconnecting", "silent"].includes(connection);
  link.className = `link ${isDown ? "down" : connection === "connected" ? "up" : ""}`;
  document.body.classList.toggle("stale", isDown);
  byId("silence").hidden = connection !== "silent";
  byId("silence").textContent = connection === "silent" ? label("silence", clock(heard)) : "";
}

function onChange(change) {
  if (change.type === "target")
    targets.update(change.target);
  if (change.type === "reset" && !change.target)
    loadTargets();
  if (change.event)
    list.update(change.event);
  if (change.type !== "log" && change.type !== "target")
    reload();
}

filters.addEventListener("submit", (event) => event.preventDefault());
filters.addEventListener("input", reloadFromStart);
filters.addEventListener("reset", () => setTimeout(reloadFromStart));
byId("tiles").addEventListener("click", (event) => {
  const tile = event.target.closest("button");
  if (!tile)
    return;
  filters.elements.state.value = tile.dataset.state;
  reloadFromStart();
});
byId("newer").addEventListener("click", () => {
  state.offset = Math.max(0, state.offset - pageSize);
  state.atOnce = true;
  reload();
});
byId("older").addEventListener("click", () => {
  state.offset += pageSize;
  state.atOnce = true;
  reload();
});
byId("closeDetails").addEventListener("click", () => select(null));
document.addEventListener("keydown", (press) => {
  if (press.key === "Escape" && state.selected !== null)
    select(null);
});

offerLocales();
loadTargets();
setInterval(loadTargets, targetsInterval);
api.follow(onChange, (connection, heard) => {
  showLink(connection, heard);
  if (connection === "connected") {
    reload();
    loadTargets();
  }
});
