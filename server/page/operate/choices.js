// What the operator has chosen to see, as it stands in the address, and what the server is asked.
import { query } from "../shell/api.js";

export const pageSize = 100;

/** The choices that narrow the list. */
export const filterNames = ["target", "kind", "state", "severity", "text"];
const names = [...filterNames, "order", "group", "offset"];

/** @typedef {Record<string, string>} Choices */

/** @param {import("../types.js").Address} address @returns {Choices} */
export const choicesOf = (address) =>
  Object.fromEntries(names.map((name) => [name, address.get(name)]));

/** @param {Choices} choices */
export const isFiltered = (choices) => filterNames.some((name) => choices[name]);

/** @param {Choices} choices */
export const filtersOf = (choices) =>
  Object.fromEntries(filterNames.map((name) => [name, choices[name]]));

export const orderOf = (/** @type {Choices} */ { order }) => order || "priority";

/**
 * What asks for the list. A list shows no attributes: they stay where they are.
 * @param {Choices} choices
 * @param {string} locale
 * @param {boolean} isGrouped
 */
export const listQuery = (choices, locale, isGrouped) => ({
  ...filtersOf(choices), locale, order: orderOf(choices), lastKnown: 1, brief: 1,
  ...(isGrouped ? { group: 1 } : { gaps: 1 }),
  offset: choices.offset, limit: pageSize,
});

/** A table of all that is chosen. @param {Choices} choices @param {string} locale */
export const exportPath = (choices, locale) => `/api/events.csv?${query(
  { ...filtersOf(choices), lastKnown: 1, order: orderOf(choices), locale, bom: 1 })}`;
