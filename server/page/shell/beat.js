// The second that everything blinks by, on all screens at the same moment.

const half = 500;  // ms

function beat() {
  const now = Date.now();
  document.documentElement.dataset.beat = Math.floor(now / half) % 2 === 0 ? "on" : "off";
  setTimeout(beat, half - now % half);
}

export const start = beat;
