/**
 * Calls `work` soon, never twice at the same time, and after it has ended not before `pause()`
 * milliseconds are over.
 * @param {() => unknown} work
 * @param {() => number} pause
 */
export function throttled(work, pause) {
  let isRunning = false;
  let isWanted = false;
  const run = async () => {
    isWanted = isRunning;
    if (isRunning)
      return;
    isRunning = true;
    try {
      await work();
    } finally {
      setTimeout(() => {
        isRunning = false;
        if (isWanted)
          run();
      }, pause());
    }
  };
  return run;
}
