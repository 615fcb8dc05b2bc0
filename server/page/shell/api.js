// The server's requests.

/** An answer that is late counts as none, so that whoever waits can go on. */
const patience = 20000;  // ms

/** A request that was refused, or not answered (status 0). */
export class RequestError extends Error {
  /**
   * @param {string} reason
   * @param {number} status
   * @param {any} body
   */
  constructor(reason, status, body = {}) {
    super(reason);
    this.status = status;
    this.result = body.result;
    /** @type {import("../types.js").HmiEvent | undefined} */
    this.current = body.current;
  }
}

/** @type {() => void} */
let askWhoIsThere = () => {};

/**
 * Hears of an answer that says that nobody has signed in (any more).
 * @param {() => void} listener
 */
export function onSignedOut(listener) {
  askWhoIsThere = listener;
}

/** @param {Response} response */
async function refusal(response) {
  const body = await response.json().catch(() => ({}));
  return new RequestError(body.error ?? response.statusText, response.status, body);
}

/**
 * The text of the answer.
 * @param {string} path
 * @param {RequestInit} options
 */
export async function text(path, options = {}) {
  const timeOut = AbortSignal.timeout(patience);
  const signal = options.signal ? AbortSignal.any([options.signal, timeOut]) : timeOut;
  const response = await fetch(path, { ...options, signal }).catch((error) => {
    throw new RequestError(error.message, 0);
  });
  if (response.status === 401 && !path.startsWith("/api/session"))
    askWhoIsThere();
  if (!response.ok)
    throw await refusal(response);
  return response.text();
}

/**
 * @param {string} path
 * @param {RequestInit} [options]
 * @returns {Promise<any>}
 */
export const request = async (path, options) => JSON.parse(await text(path, options));

/**
 * @param {string} path
 * @param {any} body
 */
export const post = (path, body) => request(path, { method: "POST", body: JSON.stringify(body) });

/**
 * A query without the parameters that are empty.
 * @param {Record<string, any>} parameters
 */
export function query(parameters) {
  const set = Object.entries(parameters)
    .filter(([, value]) => value !== "" && value !== null && value !== undefined);
  return new URLSearchParams(set).toString();
}

/**
 * @param {Record<string, any>} parameters
 * @param {AbortSignal} [signal]
 * @returns {Promise<import("../types.js").EventPage>}
 */
export const events = (parameters, signal) =>
  request(`/api/events?${query(parameters)}`, { signal });

/**
 * Confirms the occurrences that were seen, and no others; status 409 for one that was raised again.
 * @param {{id: number | string, timeRaised: string | null}[]} occurrences at most 1,000
 * @param {string} comment
 * @returns {Promise<{id: number | string, status: number, text?: string}[]>}
 */
export const confirm = (occurrences, comment = "") =>
  post("/api/confirmations", {
    events: occurrences.map(({ id, timeRaised }) => ({ id, timeRaised })),
    ...(comment && { comment }),
  });

/**
 * What is known of each target system, in order of name.
 * @returns {Promise<import("../types.js").Target[]>}
 */
export const targets = () => request("/api/targets");

/** @returns {Promise<{user: string | null, role: import("../types.js").User["role"]}>} */
export const session = () => request("/api/session");

/** @param {number} minutes */
export const statistics = (minutes) => request(`/api/statistics?${query({ minutes })}`);
