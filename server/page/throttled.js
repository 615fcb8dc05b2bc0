/** Calls `work` soon, at most once per interval, and never twice at the same time. */
export function throttled(work, interval) {
  let running = false;
  let wanted = false;
  const run = async () => {
    if (running) {
      wanted = true;
      return;
    }
    running = true;
    wanted = false;
    try {
      await work();
    } finally {
      setTimeout(() => {
        running = false;
        if (wanted)
          run();
      }, interval);
    }
  };
  return run;
}
