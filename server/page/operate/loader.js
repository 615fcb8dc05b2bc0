// Gets what the list shows from the server.
import * as api from "../shell/api.js";
import { isFiltered, listQuery, pageSize } from "./choices.js";

/** @typedef {import("./row.js").Item} Item */
/** @typedef {import("../types.js").HmiEvent} HmiEvent */
/** @typedef {import("../types.js").Group} Group */
/** @typedef {(event: HmiEvent) => string} KeyOf */

/** @param {Group} group @returns {Item} */
const itemOfGroup = (group) => ({
  key: `group ${JSON.stringify([group.target, group.name, group.eventClass, group.sourceName])}`,
  event: { ...group.newest, severity: group.severity },
  group,
});

/** An event that is alone stands for itself. @param {Group} group @param {KeyOf} keyOf */
const itemOfOneOrMore = (group, keyOf) =>
  group.count === 1 ? itemOf(group.newest, keyOf(group.newest)) : itemOfGroup(group);

/** @param {HmiEvent} event @param {string} key @returns {Item} */
const itemOf = (event, key) => ({ key, event });

/**
 * @param {import("./choices.js").Choices} choices
 * @param {string} locale
 * @param {boolean} isGrouped
 * @param {KeyOf} keyOf
 * @param {AbortSignal} signal
 * @returns {Promise<{items: Item[], total: number, hidden: number}>}
 */
export async function load(choices, locale, isGrouped, keyOf, signal) {
  const [page, all] = await Promise.all([
    api.request(`/api/events?${api.query(listQuery(choices, locale, isGrouped))}`, { signal }),
    isFiltered(choices) ? api.events({ limit: 0, lastKnown: 1, gaps: 1 }, signal) : null,
  ]);
  const items = page.groups?.map((/** @type {Group} */ group) => itemOfOneOrMore(group, keyOf)) ??
    page.events.map((/** @type {HmiEvent} */ event) => itemOf(event, keyOf(event)));
  const shown = page.groups ? page.events : page.total;
  return { items, total: page.total, hidden: all ? Math.max(0, all.total - shown) : 0 };
}

/** The first of the last page. @param {number} total */
export const lastOffset = (total) => Math.max(0, Math.floor((total - 1) / pageSize) * pageSize);
