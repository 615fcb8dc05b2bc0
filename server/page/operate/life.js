// What happened to an event, from the history of the server that keeps one.
import { dateTime } from "../shell/format.js";
import { targetOf } from "../shell/event.js";
import { label } from "../shell/words.js";

const most = 500;  // entries that are looked through

/** @typedef {import("../types.js").HmiEvent} HmiEvent */

/** @param {any} entry */
const stepOf = ({ at, change, by, comment }) =>
  [dateTime(at), label(`change_${change}`), by, comment && `“${comment}”`].filter(Boolean).join("  ");

/**
 * The oldest first; null where there is no history, or the event is not in it.
 * @param {typeof import("../shell/api.js")} api
 * @param {HmiEvent} event
 * @param {AbortSignal} signal
 * @returns {Promise<string[] | null>}
 */
export async function lifeFrom(api, event, signal) {
  const ask = (/** @type {Record<string, any>} */ asked) =>
    api.request(`/api/history?${api.query({ ...asked, limit: most })}`, { signal });
  const since = [event.timeRaised, event.timeReceived].filter((time) => !!time).sort()[0];
  try {
    const { entries } = await ask({ target: targetOf(event), from: since });
    const own = entries.find((/** @type {any} */ entry) =>
      entry.event?.id === event.id && entry.event.timeRaised === event.timeRaised);
    if (own?.occurrence === undefined)
      return null;
    const life = await ask({ occurrence: own.occurrence });
    return life.entries.toReversed().map(stepOf);
  } catch {
    return null;
  }
}
