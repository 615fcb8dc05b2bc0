// Alarms are heard until somebody silences or confirms them.
import { byId, setText } from "./dom.js";
import { needsConfirmation } from "./event.js";
import { keep, kept } from "./storage.js";
import { counts, countsAskedAt, onCounts } from "./situation.js";
import { link, onChange } from "./stream.js";
import { label } from "./words.js";

/** By severity: pitches in Hz of the beeps, and ms from one call to the next. */
const calls = [
  null,
  { beeps: [440], every: 8000 },
  { beeps: [523], every: 5000 },
  { beeps: [659, 523], every: 2500 },
  { beeps: [880, 659, 880], every: 1200 },
];
const beepLength = 0.16;  // s
const mostRinging = 1000;
const catchUp = 10000;    // ms, after a time in which we may have missed something

/** Alarms that ring. @type {Map<number | string, {severity: number, since: number}>} */
const ringing = new Map();
/** Of how many unconfirmed ones we know, by severity. @type {number[] | null} */
let known = null;
let knownAt = 0;
let missedAt = -Infinity;
/** @type {AudioContext | null} */
let sound = null;
/** @type {ReturnType<typeof setTimeout> | undefined} */
let next;

const isWanted = () => kept("sound") !== "off";
const isHeard = () => isWanted() && sound?.state === "running";
/** How many ring, by severity. */
const many = [0, 0, 0, 0, 0];
const loudest = () => many.findLastIndex((count) => count > 0);

/** @param {number[]} pitches */
function beep(pitches) {
  if (!sound)
    return;
  pitches.forEach((pitch, index) => {
    const at = /** @type {AudioContext} */ (sound).currentTime + index * beepLength * 1.25;
    const tone = new OscillatorNode(/** @type {AudioContext} */ (sound),
      { type: "triangle", frequency: pitch });
    const volume = new GainNode(/** @type {AudioContext} */ (sound), { gain: 0 });
    volume.gain.setTargetAtTime(0.3, at, 0.01);
    volume.gain.setTargetAtTime(0, at + beepLength - 0.04, 0.01);
    tone.connect(volume).connect(/** @type {AudioContext} */ (sound).destination);
    tone.start(at);
    tone.stop(at + beepLength + 0.1);
  });
}

function ring() {
  clearTimeout(next);
  next = undefined;
  const call = calls[loudest()];
  if (!call || !isHeard())
    return;
  beep(call.beeps);
  next = setTimeout(ring, call.every);
}

export function show() {
  byId("silenceHorn").hidden = ringing.size === 0;
  byId("silenceHorn").classList.toggle("rings", Boolean(isHeard()));
  setText(byId("sound"), label(isHeard() ? "soundOff" : "soundOn"));
}

export function silence() {
  ringing.clear();
  many.fill(0);
  clearTimeout(next);
  next = undefined;
  show();
}

/** @param {number | string} id */
function forget(id) {
  const { severity } = ringing.get(id) ?? { severity: 0 };
  many[severity] -= ringing.has(id) ? 1 : 0;
  ringing.delete(id);
}

/** @param {{id: number | string, severity: number}} event @param {boolean} rings */
function note({ id, severity }, rings) {
  forget(id);
  if (!rings || (ringing.size >= mostRinging && severity <= loudest()))
    return;
  if (ringing.size >= mostRinging)
    forget(/** @type {number} */ (ringing.keys().next().value));
  ringing.set(id, { severity, since: performance.now() });
  many[severity] += 1;
}

/** @param {number} before the loudest, before something changed */
function changed(before) {
  if (loudest() > before || (loudest() > 0 && next === undefined))
    ring();
  if (loudest() !== before)
    show();
}

/** @param {import("../types.js").Change} change */
function hear({ type, event }) {
  if (type === "missed" || type === "reset")
    missedAt = performance.now();
  if (!event || event.kind !== "alarm")
    return;
  const before = loudest();
  const rings = needsConfirmation(event) && event.severity >= 1 && event.severity <= 4;
  if (!rings || type === "removed" || type === "forgotten")
    note(event, false);
  else if (type === "raised") {
    note(event, true);
    if (known)
      known[event.severity] += 1;
  }
  changed(before);
}

/** What rang may have been confirmed while we heard nothing, and others raised. */
function checkCounts() {
  if (knownAt === countsAskedAt())
    return;
  knownAt = countsAskedAt();
  const before = loudest();
  const now = counts()?.unconfirmed ?? [];
  for (const [id, { severity, since }] of ringing) {
    if (now[severity] === 0 && since < knownAt)
      forget(id);
  }
  const isCatchingUp = performance.now() - missedAt < catchUp;
  for (let severity = 1; severity < now.length; ++severity) {
    if (isCatchingUp && known && now[severity] > known[severity])
      note({ id: `missed ${severity}`, severity }, true);
  }
  known = [...now];
  changed(before);
}

/** The browser lets a page be heard after somebody has pressed something. */
async function turnOn() {
  keep("sound", "on");
  sound ??= new AudioContext();
  await sound.resume();
  beep([659]);
  ring();
  show();
}

export function start() {
  byId("sound").addEventListener("click", () => {
    if (!isHeard())
      return turnOn();
    keep("sound", "off");
    clearTimeout(next);
    show();
  });
  byId("silenceHorn").addEventListener("click", silence);
  onChange(hear);
  onCounts(checkCounts);
  link.onChange(({ state }) => { missedAt = state === "connected" ? performance.now() : missedAt; });
  if (!isWanted() || !("AudioContext" in window))
    return show();
  sound = new AudioContext();
  sound.addEventListener("statechange", () => { show(); ring(); });
  show();
}
