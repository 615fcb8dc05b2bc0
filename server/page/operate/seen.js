// Whether somebody can have seen what stands in a place. What comes there a moment before the press
// is not what was aimed at.

const reaction = 300;  // ms; nobody sees, decides and presses sooner

export class Seen {
  #what = "";
  #since = 0;

  /** This stands there now. @param {string} what */
  stands(what) {
    if (what === this.#what)
      return;
    this.#what = what;
    this.#since = performance.now();
  }

  /** @param {Event} press */
  isBefore({ timeStamp }) {
    return timeStamp - this.#since >= reaction;
  }
}
