// A list of steps for simulated runtimes: made here or read from a file, run one after another.
import { element } from "../shell/dom.js";
import { number } from "../shell/format.js";
import { label } from "../shell/words.js";
import { actions, actionText } from "./actions.js";

/**
 * @typedef {import("./actions.js").Action & {runtime: string, after: number}} Step
 *   `after`: seconds after the step before it
 */

const largestFile = 1 << 20;  // bytes
const mostSteps = 1000;

/** The list outlives its view: who looks at the alarms meanwhile finds it again. @type {Step[]} */
let steps = [];

/** @param {any} step @param {number} index */
function checkStep(step, index) {
  const isGood = step !== null && typeof step === "object" && typeof step.runtime === "string" &&
    Number.isFinite(step.after ?? 0) && (step.after ?? 0) >= 0 && Object.hasOwn(actions, step.do);
  if (!isGood)
    throw new Error(label("badStep", index + 1));
  return { ...step, after: step.after ?? 0 };
}

/** @param {File} file @returns {Promise<Step[]>} */
async function readFile(file) {
  if (file.size > largestFile)
    throw new Error(label("fileTooLarge"));
  const read = JSON.parse(await file.text());
  if (!Array.isArray(read) || read.length > mostSteps)
    throw new Error(label("noSteps"));
  return read.map(checkStep);
}

function save() {
  const file = new Blob([JSON.stringify(steps, null, 2)], { type: "application/json" });
  const link = element("a", { href: URL.createObjectURL(file), download: "steps.json" });
  link.click();
  setTimeout(() => URL.revokeObjectURL(link.href), 1000);
}

/**
 * @param {HTMLElement} root
 * @param {(step: Step) => Promise<void>} perform
 * @returns {{add: (step: Step) => void, close: () => void}}
 */
export function openSteps(root, perform) {
  const list = element("ol", { className: "steps" });
  const run = element("button", { type: "button" });
  const keep = element("button", { type: "button", textContent: label("saveSteps") });
  const empty = element("button", { type: "button", textContent: label("emptySteps") });
  const file = element("input", { type: "file", accept: ".json,application/json", hidden: true });
  const open = element("button", { type: "button", textContent: label("openSteps") });
  const said = element("p", { className: "said", role: "status" });
  /** @type {AbortController | null} */
  let running = null;

  function draw(current = -1) {
    list.replaceChildren(...steps.map((step, index) => {
      const { runtime, after, ...action } = step;
      const remove = element("button", { type: "button", textContent: label("removeStep"),
        "aria-label": label("removeStepNumber", index + 1), disabled: running !== null });
      remove.addEventListener("click", () => {
        steps.splice(index, 1);
        draw();
        const next = list.querySelectorAll("button")[Math.min(index, steps.length - 1)];
        (next ?? open).focus();
      });
      return element("li", { className: index === current ? "current" : "" },
        element("span", { textContent: label("stepText", number(after), runtime,
          actionText(/** @type {any} */ (action))) }), remove);
    }));
    run.textContent = label(running ? "stopSteps" : "runSteps");
    run.disabled = steps.length === 0;
    keep.disabled = empty.disabled = steps.length === 0 || running !== null;
    open.disabled = running !== null;
  }

  /** @param {AbortSignal} signal */
  async function runAll(signal) {
    for (const [index, step] of [...steps].entries()) {
      draw(index);
      await new Promise((done) => {
        const timer = setTimeout(done, step.after * 1000);
        signal.addEventListener("abort", () => {
          clearTimeout(timer);
          done(undefined);
        });
      });
      if (signal.aborted)
        return label("stepsStopped", index);
      await perform(step);
    }
    return label("stepsDone", steps.length);
  }

  run.addEventListener("click", async () => {
    if (running)
      return running.abort();
    running = new AbortController();
    said.textContent = "";
    said.textContent = await runAll(running.signal)
      .catch(({ message }) => label("stepFailed", message));
    running = null;
    draw();
  });
  keep.addEventListener("click", save);
  open.addEventListener("click", () => file.click());
  empty.addEventListener("click", () => {
    steps = [];
    draw();
    open.focus();
  });
  file.addEventListener("change", async () => {
    try {
      steps = file.files?.[0] ? await readFile(file.files[0]) : steps;
      said.textContent = label("stepsRead", steps.length);
    } catch (error) {
      said.textContent = label("stepsNotRead", /** @type {Error} */ (error).message);
    }
    file.value = "";
    draw();
  });
  root.append(element("h2", { textContent: label("steps") }), list,
    element("div", { className: "buttons" }, run, open, keep, empty), file, said);
  draw();
  return {
    add(step) {
      steps.push(step);
      draw();
    },
    close: () => running?.abort(),
  };
}
