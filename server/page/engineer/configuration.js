// The configuration as a form. Each change is shown with its consequences before it is applied.
import { element } from "../shell/dom.js";
import { label } from "../shell/words.js";
import { review } from "./review.js";

/** @typedef {{ADDRESS: string, ENABLED: boolean}} Entry of a target system */

const known = ["TIMEOUT", "LIMIT_EVENT_COUNT", "PRELOAD_TRANSLATIONS"];
const targetSystems = "TARGET_SYSTEMS";

/** @param {string} key @param {any} value */
function control(key, value) {
  if (key === "PRELOAD_TRANSLATIONS" && (value === undefined || typeof value === "boolean")) {
    const created = element("input", { type: "checkbox", checked: Boolean(value) });
    return { input: created, read: () => created.checked };
  }
  if (key === "LIMIT_EVENT_COUNT" && (value === undefined || Number.isFinite(value))) {
    const created = element("input", { type: "number", min: "0", step: "1", required: true,
      value: value === undefined ? "" : String(value) });
    return { input: created, read: () => Number(created.value) };
  }
  const isText = key === "TIMEOUT" && typeof value === "string";
  const created = element("input", { type: "text", required: true, spellcheck: false,
    autocomplete: "off", value: isText ? value : JSON.stringify(value ?? "") });
  return { input: created, read: () => isText ? created.value : JSON.parse(created.value) };
}

/** @type {import("./engineer.js").Part} */
export function openConfiguration(root, { api }) {
  const said = element("p", { className: "said", role: "status" });
  const general = element("div", { className: "settings" });
  const targets = element("ul", { className: "entries" });
  const addition = element("div");
  let isOpen = true;

  /** @param {import("./review.js").ConfigurationChange} change */
  async function propose(change) {
    const { isDone, text } = await review(api, change);
    said.textContent = text;
    if (isDone && isOpen)
      await load();
  }

  /** @param {string} key @param {any} value */
  function setting(key, value) {
    const { input, read } = control(key, value);
    const form = element("form", { className: "setting" },
      element("label", { className: input.type === "checkbox" ? "check" : "" },
        element("span", {}, known.includes(key) ? label(`config_${key}`) : key), input),
      element("button", { type: "submit", textContent: label("checkChange"),
        "aria-label": label("checkSetting", key) }));
    form.addEventListener("submit", (event) => {
      event.preventDefault();
      try {
        propose({ path: key, value: read() });
      } catch {
        said.textContent = label("notJson", key);
      }
    });
    return form;
  }

  /** @param {string} name @param {Entry} entry */
  function entryControls(name, entry) {
    const address = element("input", { type: "text", value: entry.ADDRESS ?? "", spellcheck: false,
      autocomplete: "off" });
    const isEnabled = element("input", { type: "checkbox", checked: entry.ENABLED !== false });
    return {
      parts: [element("label", {}, label("address"), address),
        element("label", { className: "check" }, isEnabled, label("enabled"))],
      propose: (/** @type {string} */ chosen = name) => propose({
        path: `${targetSystems}::${chosen}`,
        value: { ...entry, ADDRESS: address.value, ENABLED: isEnabled.checked },
      }),
    };
  }

  /** @param {[string, Entry]} named */
  function targetEntry([name, entry]) {
    const controls = entryControls(name, entry);
    const remove = element("button", { type: "button", textContent: label("removeEntry"),
      "aria-label": label("removeTarget", name) });
    remove.addEventListener("click", () => propose({ path: `${targetSystems}::${name}` }));
    const form = element("form", { className: "entry", role: "group", "aria-label": name },
      element("strong", {}, element("bdi", { textContent: name })), ...controls.parts,
      element("button", { type: "submit", textContent: label("checkChange"),
        "aria-label": label("checkSetting", name) }), remove);
    form.addEventListener("submit", (event) => {
      event.preventDefault();
      controls.propose();
    });
    return element("li", {}, form);
  }

  function newEntry() {
    const name = element("input", { type: "text", required: true, maxLength: 200,
      autocomplete: "off", spellcheck: false });
    const controls = entryControls("", { ADDRESS: "", ENABLED: true });
    const form = element("form", { className: "entry", role: "group",
      "aria-label": label("newTarget") }, element("label", {}, label("newTarget"), name),
    ...controls.parts, element("button", { type: "submit", textContent: label("addTarget") }));
    form.addEventListener("submit", (event) => {
      event.preventDefault();
      controls.propose(name.value);
    });
    return form;
  }

  async function load() {
    try {
      const configuration = await api.request("/api/config");
      const { [targetSystems]: entries = {}, ...values } = configuration;
      general.replaceChildren(...[...new Set([...known, ...Object.keys(values)])]
        .map((key) => setting(key, values[key])));
      targets.replaceChildren(...Object.entries(entries).map(targetEntry));
      addition.replaceChildren(newEntry());
    } catch (error) {
      said.textContent = label("configFailed", /** @type {Error} */ (error).message);
    }
  }

  root.append(said,
    element("section", { className: "panel" },
      element("h2", { textContent: label("settings") }), general),
    element("section", { className: "panel" },
      element("h2", { textContent: label("targetSystems") }), targets, addition));
  load();
  return () => {
    isOpen = false;
  };
}
