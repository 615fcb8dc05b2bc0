// Alarms are heard until somebody silences or confirms them.
import { byId, setText } from "./dom.js";
import { needsConfirmation } from "./event.js";
import { keep, kept } from "./storage.js";
import { counts, onCounts } from "./situation.js";
import { onChange } from "./stream.js";
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

/** Alarms that ring, with their severities. @type {Map<number | string, number>} */
const ringing = new Map();
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
  many[ringing.get(id) ?? 0] -= ringing.has(id) ? 1 : 0;
  ringing.delete(id);
}

/** @param {import("../types.js").HmiEvent} event @param {boolean} rings */
function note({ id, severity }, rings) {
  forget(id);
  if (!rings || (ringing.size >= mostRinging && severity <= loudest()))
    return;
  if (ringing.size >= mostRinging)
    forget(/** @type {number} */ (ringing.keys().next().value));
  ringing.set(id, severity);
  many[severity] += 1;
}

/** @param {import("../types.js").Change} change */
function hear({ type, event }) {
  if (!event || event.kind !== "alarm")
    return;
  const before = loudest();
  const rings = needsConfirmation(event) && event.severity >= 1 && event.severity <= 4;
  if (!rings || type === "removed" || type === "forgotten")
    note(event, false);
  else if (type === "raised")
    note(event, true);
  if (loudest() > before || (loudest() > 0 && next === undefined))
    ring();
  if (loudest() !== before)
    show();
}

/** What rang may have been confirmed while we heard nothing. */
function checkCounts() {
  if (ringing.size > 0 && counts()?.unconfirmed.every((count) => count === 0))
    silence();
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
  if (!isWanted() || !("AudioContext" in window))
    return show();
  sound = new AudioContext();
  sound.addEventListener("statechange", () => { show(); ring(); });
  show();
}
