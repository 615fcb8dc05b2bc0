// The server's requests.

async function request(path, options) {
  const response = await fetch(path, options);
  const body = await response.json();
  if (!response.ok)
    throw new Error(body.error);
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
  (await events({ ...parameters, limit: 0 })).total;

export const confirm = (id) => post(`/api/events/${encodeURIComponent(id)}/confirm`, null);

/** The target systems by name, each with "connectionState" and perhaps "connectError". */
export async function diagnostics() {
  const [answer] = await post("/api/commands", [{ command: "Diagnostics" }]);
  return answer.readValue?.TARGET_SYSTEMS ?? {};
}

export const localized = (id, locale) =>
  request(`/api/events/${encodeURIComponent(id)}?${query({ locale })}`);

/**
 * Follows the changes for as long as the page lives. `onState` hears "connected" and
 * "reconnecting"; after each "connected" everything may have changed.
 */
export function follow(onChange, onState) {
  let delay = 500;
  const open = () => {
    const scheme = location.protocol === "https:" ? "wss:" : "ws:";
    const socket = new WebSocket(`${scheme}//${location.host}/api/stream`);
    socket.onopen = () => {
      delay = 500;
      onState("connected");
    };
    socket.onmessage = (message) => onChange(JSON.parse(message.data));
    socket.onclose = () => {
      onState("reconnecting");
      setTimeout(open, delay);
      delay = Math.min(2 * delay, 8000);
    };
  };
  open();
}
