// How often the list is loaded: at once when little happens, seldom when much does.

const shortest = 60;    // ms
const whenMany = 400;   // ms
const many = 50;        // changes a second

export class Pace {
  #lasted = 0;
  #counted = 0;
  #since = Date.now();
  #rate = 0;

  /** A change has come. */
  count() {
    const now = Date.now();
    this.#counted += 1;
    if (now - this.#since < 1000)
      return;
    this.#rate = 1000 * this.#counted / (now - this.#since);
    this.#counted = 0;
    this.#since = now;
  }

  /** @template Result @param {() => Promise<Result>} work */
  async measure(work) {
    const begin = performance.now();
    try {
      return await work();
    } finally {
      this.#lasted = performance.now() - begin;
    }
  }

  /** Milliseconds; the server is to have as much time for itself as we take of it. */
  get pause() {
    return Math.max(this.#rate > many ? whenMany : shortest, Math.min(this.#lasted, 2000));
  }
}
