// The page's shell: what stands around the views, and what all of them are given.
import { address } from "./shell/address.js";
import * as api from "./shell/api.js";
import { byId } from "./shell/dom.js";
import { label, locale, language, useLanguage, applyWords } from "./shell/words.js";
import { zone } from "./shell/format.js";
import { offerLanguages, startLanguage } from "./shell/languages.js";
import { notify } from "./shell/notices.js";
import { showLink } from "./shell/linkline.js";
import * as beat from "./shell/beat.js";
import * as horn from "./shell/horn.js";
import * as situation from "./shell/situation.js";
import * as strip from "./shell/strip.js";
import * as targetsFold from "./shell/targets.js";
import { askForSignIn, showUser } from "./shell/session.js";
import { follow, followAnew, link, onChange } from "./shell/stream.js";

/** @type {Record<string, () => Promise<import("./types.js").View>>} */
const views = {
  operate: () => import("./operate/operate.js"),
  understand: () => import("./understand/understand.js"),
  past: () => import("./past/past.js"),
  engineer: () => import("./engineer/engineer.js"),
};
const ranks = ["view", "confirm", "engineer"];

const root = byId("view");
/** @type {import("./types.js").View | null} */
let view = null;
let openName = "";
let hasHistory = false;
let isSigningIn = false;

/** @type {import("./types.js").Context} */
const context = {
  api, onChange, link, address, locale, notify,
  user: null,
  may: (role) => !context.user || ranks.indexOf(context.user.role) >= ranks.indexOf(role),
  targets: situation.targets,
  onTargets: situation.onTargets,
  counts: situation.counts,
  goTo(name, choices = {}) {
    const old = Object.fromEntries(Object.keys(address.all()).map((key) => [key, null]));
    address.go({ ...old, view: name === "operate" ? null : name, lang: language(), ...choices });
    showView(true);
  },
};

function wantedView() {
  const wanted = address.get("view");
  return wanted in views && (wanted !== "engineer" || context.may("engineer")) ? wanted : "operate";
}

function showNav() {
  for (const entry of /** @type {NodeListOf<HTMLAnchorElement>} */ (
    document.querySelectorAll("#nav a"))) {
    const name = entry.dataset.view ?? "";
    entry.hidden = (name === "engineer" && !context.may("engineer")) ||
      (name === "past" && !hasHistory);
    entry.toggleAttribute("aria-current", false);
    if (name === openName)
      entry.setAttribute("aria-current", "page");
    const choice = name === "operate" ? "" : `view=${name}&`;
    entry.href = `/?${choice}lang=${language()}`;
  }
}

/** @param {boolean} [isAnew] the view reads its choices again, also when it is open already */
async function showView(isAnew = false) {
  const name = wantedView();
  if (name === openName && !isAnew)
    return;
  openName = name;
  showNav();
  try {
    const module = await views[name]();
    if (openName !== name)
      return;
    view?.close();
    view = module;
    root.className = name;
    root.replaceChildren();
    await module.open(root, context);
  } catch (error) {
    openName = "";
    notify(`${label("viewFailed")}: ${/** @type {Error} */ (error).message}`, true);
  }
}

function languageChanged() {
  applyWords(document);
  byId("zone").textContent = label("zone", zone());
  document.title = label("title");
  showNav();
  showLink(link);
  strip.show();
  targetsFold.show();
  horn.show();
  showUser(context.user, signInAgain);
  view?.languageChanged?.();
}

/** Who has signed in; where nobody has, somebody is asked to. */
async function whoIsThere() {
  try {
    const { user, role } = await api.session().catch((error) => {
      if (error.status !== 401)
        throw error;
      return askForSignIn();
    });
    context.user = user === null ? null : { name: user, role };
    showUser(context.user, signInAgain);
  } catch (error) {
    notify(/** @type {Error} */ (error).message, true);
  }
}

async function lookForHistory() {
  hasHistory = await api.request("/api/history?limit=1").then(() => true, () => false);
  showNav();
}

/** Nobody is signed in any more: what is shown then is what the next one may see. */
async function signInAgain() {
  if (isSigningIn)
    return;
  isSigningIn = true;
  await whoIsThere();
  isSigningIn = false;
  followAnew();
  lookForHistory();
  await showView(true);
}

byId("nav").addEventListener("click", (click) => {
  const entry = /** @type {HTMLElement} */ (click.target).closest("a");
  if (!entry || click.ctrlKey || click.metaKey || click.shiftKey)
    return;
  click.preventDefault();
  context.goTo(entry.dataset.view ?? "operate");
});

await useLanguage(startLanguage());
offerLanguages(async (wanted) => {
  await useLanguage(wanted);
  languageChanged();
});
await whoIsThere();
api.onSignedOut(signInAgain);
lookForHistory();
languageChanged();
link.onChange(showLink);
situation.start();
strip.start(context);
targetsFold.start();
horn.start();
beat.start();
follow();
address.onChange(() => showView(true));
await showView();
