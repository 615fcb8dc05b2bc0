// Rows stand still while somebody may be about to press something.

const afterTouch = 3000;   // ms, in which a finger may come back
const afterPress = 10000;  // ms; the focus that a press has left behind means nothing after that

export class Hold {
  isFrozen = false;
  #isPressed = false;
  #touched = 0;
  #pressed = 0;
  #isFocusOfPress = false;
  #area;
  #isChosen;
  #onRelease;

  /**
   * @param {HTMLElement} area the rows
   * @param {() => boolean} isChosen something is selected, open, or asked about
   * @param {() => void} onRelease rows may move again
   * @param {AbortSignal} signal ends it
   */
  constructor(area, isChosen, onRelease, signal) {
    this.#area = area;
    this.#isChosen = isChosen;
    this.#onRelease = onRelease;
    const options = { signal };
    area.addEventListener("pointerdown", ({ pointerType }) => {
      this.#isPressed = this.#isFocusOfPress = true;
      this.#pressed = Date.now();
      setTimeout(() => this.check(), afterPress + 50);
      if (pointerType === "touch")
        this.#touch();
    }, options);
    // The click comes after the pointer is up.
    const up = () => setTimeout(() => { this.#isPressed = false; this.check(); });
    addEventListener("pointerup", up, options);
    addEventListener("pointercancel", up, options);
    area.addEventListener("pointerleave", () => this.checkSoon(), options);
    area.addEventListener("focusout", () => this.checkSoon(), options);
    const focus = () => { this.#isFocusOfPress &&= this.#isPressed; };
    area.addEventListener("focusin", focus, options);
    area.addEventListener("keydown", () => { this.#isFocusOfPress = false; }, options);
  }

  #touch() {
    this.#touched = Date.now();
    setTimeout(() => this.check(), afterTouch + 50);
  }

  #isPointedAt() {
    return matchMedia("(hover: hover)").matches && this.#area.matches(":hover");
  }

  #isFocused() {
    return this.#area.contains(document.activeElement) &&
      (!this.#isFocusOfPress || Date.now() - this.#pressed < afterPress);
  }

  get isHeld() {
    return this.isFrozen || this.#isPressed || Date.now() - this.#touched < afterTouch ||
      this.#isPointedAt() || this.#isFocused() || this.#isChosen();
  }

  check() {
    if (!this.isHeld)
      this.#onRelease();
  }

  /** When the focus has arrived where it goes. */
  checkSoon() {
    setTimeout(() => this.check());
  }

  toggle() {
    this.isFrozen = !this.isFrozen;
    this.check();
  }
}
