// How the plant stands as a whole: alarms by priority, target systems, flood.
import * as api from "./api.js";
import { link, onChange } from "./stream.js";
import { throttled } from "./throttled.js";

const countPause = 500;        // ms
const targetsPause = 500;
const floodInterval = 10000;

/** @type {Map<string, import("../types.js").Target>} */
let known = new Map();
/** @type {import("../types.js").Counts | null} */
let counted = null;
let countedAt = 0;
let flooded = { flood: false, rate: 0 };
/** @type {Set<() => void>} */
const targetListeners = new Set();
/** @type {Set<() => void>} */
const countListeners = new Set();

export const targets = () => [...known.values()];
export const counts = () => counted;
/** What has happened since then they may not know yet; as performance.now(). */
export const countsAskedAt = () => countedAt;
/** `rate`: alarms within the last ten minutes. */
export const flood = () => flooded;

/** @param {() => void} listener */
export function onTargets(listener) {
  targetListeners.add(listener);
  return () => targetListeners.delete(listener);
}

/** Of counts and flood. @param {() => void} listener */
export function onCounts(listener) {
  countListeners.add(listener);
  return () => countListeners.delete(listener);
}

/** @template Answer @param {Promise<Answer>} asked @returns {Promise<Answer | null>} */
const orNothing = (asked) => asked.catch(() => null);

const loadCounts = throttled(async () => {
  const askedAt = performance.now();
  const answer = await orNothing(api.events({ counts: 1, limit: 0, lastKnown: 1 }));
  if (answer?.counts)
    [counted, countedAt] = [answer.counts, askedAt];
  countListeners.forEach((listener) => listener());
}, () => countPause);

/** Those that cannot be asked for stay as they were: the page says that it hears nothing. */
const loadTargets = throttled(async () => {
  const all = await orNothing(api.targets());
  if (!all)
    return;
  known = new Map(all.map((target) => [target.name, target]));
  targetListeners.forEach((listener) => listener());
}, () => targetsPause);

const loadFlood = throttled(async () => {
  const answer = await orNothing(api.statistics(10));
  if (!answer)
    return;
  const { all } = answer;
  flooded = { flood: all.flood, rate: all.rate.at(-1)?.alarms ?? 0 };
  countListeners.forEach((listener) => listener());
}, () => floodInterval);

/** @param {import("../types.js").Change} change */
function hear({ type, target }) {
  if (type === "target") {
    known.set(target.name, target);
    targetListeners.forEach((listener) => listener());
  }
  if (type === "missed" || (type === "reset" && !target))
    loadTargets();
  if (!["log", "target", "texts"].includes(type))
    loadCounts();
  if (type === "raised")
    loadFlood();
}

function loadAll() {
  loadTargets();
  loadCounts();
  loadFlood();
}

export function start() {
  onChange(hear);
  link.onChange(({ state }) => state === "connected" && loadAll());
  setInterval(loadFlood, floodInterval);
  loadAll();
}
