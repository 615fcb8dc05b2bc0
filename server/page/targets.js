// The strip that says how the target systems are.
import * as api from "./api.js";
import { clock } from "./event.js";
import { label } from "./labels.js";

const strip = document.getElementById("targets");
let targets = new Map();

function item(text, className, title = "") {
  const created = document.createElement("li");
  created.textContent = text;
  created.className = className;
  created.title = title;
  return created;
}

/** The good ones are a number; each of the others is told of. */
export function show() {
  const all = [...targets.values()];
  const good = all.filter(({ state }) => state === "good");
  const others = all.filter(({ state }) => state !== "good").map(({ name, state, since, error }) => {
    const said = label("targetSince", name, label(`target_${state}`), clock(since));
    return item(error?.text ? `${said}: ${error.text}` : said, state, error?.hresult ?? "");
  });
  const names = good.map(({ name }) => name).join(", ");
  strip.replaceChildren(
    item(label("targetsGood", good.length), good.length > 0 ? "good" : "", names), ...others);
}

export const names = () => [...targets.keys()];

/** A change of one. */
export function update(target) {
  targets.set(target.name, target);
  show();
}

/** Those that cannot be asked for stay as they were: the page says that it hears nothing. */
export async function load() {
  const all = await api.targets().catch(() => null);
  if (all)
    targets = new Map(all.map((target) => [target.name, target]));
  show();
}
