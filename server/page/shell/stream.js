// Follows the server's changes for as long as the page lives.
import { request } from "./api.js";

/** The server says something at least every 10 s. */
const patience = 12000;     // ms
const shortestDelay = 500;  // ms, between two attempts
const longestDelay = 8000;

/** @type {Set<(change: import("../types.js").Change) => void>} */
const listeners = new Set();
/** @type {Set<(link: import("../types.js").Link) => void>} */
const linkListeners = new Set();
/** @type {WebSocket | null} */
let socket = null;
let isOpen = false;
let lastSign = Date.now();
let lastSequence = 0;
let delay = shortestDelay;
/** @type {import("../types.js").LinkState} */
let state = "connecting";

/** @type {import("../types.js").Link} */
export const link = {
  get state() {
    return state;
  },
  get heard() {
    return new Date(lastSign);
  },
  onChange(listener) {
    linkListeners.add(listener);
    return () => linkListeners.delete(listener);
  },
};

/**
 * Whenever the link has become "connected", and at a change of type "missed", everything may be
 * other than before.
 * @param {(change: import("../types.js").Change) => void} listener
 */
export function onChange(listener) {
  listeners.add(listener);
  return () => listeners.delete(listener);
}

function tell() {
  const isSilent = Date.now() - lastSign > patience;
  const now = isSilent ? "silent" : isOpen ? "connected" : "reconnecting";
  if (now === state)
    return;
  state = now;
  linkListeners.forEach((listener) => listener(link));
}

/** @param {import("../types.js").Change} change */
function hand(change) {
  const { seq } = change;
  if (seq && lastSequence && seq > lastSequence + 1)
    listeners.forEach((listener) => listener({ type: "missed" }));
  lastSequence = seq ?? lastSequence;
  if (change.type !== "alive")
    listeners.forEach((listener) => listener(change));
}

/** Who is not signed in any more gets no stream, and no reason: the answer of a request has it. */
function openAgain() {
  request("/api/version").catch(() => {});
  open();
}

function open() {
  if (socket)
    return;
  const mine = new WebSocket(`${location.origin.replace(/^http/, "ws")}/api/stream?brief=1`);
  const giveUp = setTimeout(() => mine.readyState === WebSocket.CONNECTING && end(), patience);
  const end = () => {
    if (socket !== mine)
      return;
    socket = null;
    isOpen = false;
    clearTimeout(giveUp);
    mine.close();
    tell();
    setTimeout(openAgain, delay);
    delay = Math.min(2 * delay, longestDelay);
  };
  socket = mine;
  lastSequence = 0;
  mine.onopen = () => {
    delay = shortestDelay;
    isOpen = true;
    lastSign = Date.now();
    tell();
  };
  mine.onmessage = (message) => {
    if (socket !== mine)
      return;
    lastSign = Date.now();
    tell();
    hand(JSON.parse(message.data));
  };
  mine.onclose = end;
}

/** A connection that nothing comes from any more is given up: it may never say that it is dead. */
function watch() {
  tell();
  if (state === "silent" && isOpen)
    socket?.onclose?.(new CloseEvent("close"));
}

/** Somebody else is signed in now: the stream is theirs. */
export function followAnew() {
  const before = socket;
  socket = null;
  isOpen = false;
  before?.close();
  delay = shortestDelay;
  tell();
  open();
}

export function follow() {
  open();
  setInterval(watch, 1000);
}
