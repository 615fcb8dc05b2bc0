// The server's requests.

async function request(path, options) {
  const response = await fetch(path, options);
  const body = await response.json();
  if (!response.ok)
    throw Object.assign(new Error(body.error), { status: response.status, current: body.current });
  return body;
}

const post = (path, body) => request(path, { method: "POST", body: JSON.stringify(body) });

/** A query without the parameters that are empty. */
function query(parameters) {
  const set = Object.entries(parameters).filter(([, value]) => value !== "");
  return new URLSearchParams(set).toString();
}

export const events = (parameters, signal) =>
  request(`/api/events?${query(parameters)}`, { signal });

export const count = async (parameters) =>
  (await events({ ...parameters, lastKnown: 1, limit: 0 })).total;

/** Confirms the occurrence that was seen, and no other; 409 when there is another one now. */
export const confirm = ({ id, timeRaised }) =>
  post(`/api/events/${encodeURIComponent(id)}/confirm`, { timeRaised });

/** What is known of each target system, in order of name. */
export const targets = () => request("/api/targets");

export const localized = (id, locale) =>
  request(`/api/events/${encodeURIComponent(id)}?${query({ locale })}`);

/** The server says something at least every 10 s. */
const patience = 12000;

/**
 * Follows the changes for as long as the page lives. `onState` hears "connected", "reconnecting",
 * and "silent" with the time of the last sign of life; after each "connected" everything may have
 * changed.
 */
export function follow(onChange, onState) {
  let delay = 500;
  let lastSign = Date.now();
  let isOpen = false;
  let told = "";
  const tell = () => {
    const isSilent = Date.now() - lastSign > patience;
    const state = isSilent ? "silent" : isOpen ? "connected" : "reconnecting";
    if (state !== told)
      onState(state, new Date(lastSign));
    told = state;
  };
  const hear = () => {
    lastSign = Date.now();
    tell();
  };
  const open = () => {
    const scheme = location.protocol === "https:" ? "wss:" : "ws:";
    const socket = new WebSocket(`${scheme}//${location.host}/api/stream`);
    socket.onopen = () => {
      delay = 500;
      isOpen = true;
      hear();
    };
    socket.onmessage = (message) => {
      hear();
      const change = JSON.parse(message.data);
      if (change.type !== "alive")
        onChange(change);
    };
    socket.onclose = () => {
      isOpen = false;
      tell();
      setTimeout(open, delay);
      delay = Math.min(2 * delay, 8000);
    };
  };
  open();
  setInterval(tell, 1000);
}
