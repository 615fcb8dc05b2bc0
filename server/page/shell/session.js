// Signing in and out, where users are configured.
import { post, request } from "./api.js";
import { byId, element, foreign } from "./dom.js";
import { addWords, label } from "./words.js";

/** @typedef {{user: string | null, role: import("../types.js").User["role"]}} Session */

/** @type {Promise<Session> | null} */
let asking = null;

/** @param {string} name @param {string} type @param {AutoFill} autocomplete */
const field = (name, type, autocomplete) =>
  element("input", { name, type, autocomplete, required: true, maxLength: 200 });

/** @returns {Promise<Session>} */
async function ask() {
  await addWords("session");
  const user = field("user", "text", "username");
  const password = field("password", "password", "current-password");
  const said = element("p", { className: "trouble", role: "alert" });
  const go = element("button", { type: "submit", textContent: label("signIn") });
  const title = element("h2", { id: "signInTitle", textContent: label("signInTitle") });
  const form = element("form", {}, title, element("label", {}, label("userName"), user),
    element("label", {}, label("password"), password), said, go);
  const dialog = element("dialog", { className: "signIn", "aria-labelledby": title.id }, form);
  // Without a sign-in there is nothing to go back to.
  dialog.addEventListener("cancel", (event) => event.preventDefault());
  document.body.append(dialog);
  dialog.showModal();
  user.focus();
  return new Promise((done) => {
    form.addEventListener("submit", async (event) => {
      event.preventDefault();
      go.disabled = true;
      said.textContent = "";
      try {
        const session = await post("/api/session", { user: user.value, password: password.value });
        dialog.remove();
        done(session);
      } catch (error) {
        const { status, message } = /** @type {import("./api.js").RequestError} */ (error);
        said.textContent = status === 401 ? label("wrongPassword")
          : status === 429 ? label("tooManyAttempts") : label("signInFailed", message);
        password.value = "";
        password.focus();
      }
      go.disabled = false;
    });
  });
}

/** Asks until somebody has signed in; once, however many need it at the same time. */
export function askForSignIn() {
  asking ??= ask().finally(() => { asking = null; });
  return asking;
}

/**
 * Says who has signed in, and lets them leave.
 * @param {import("../types.js").User | null} user
 * @param {() => void} onSignedOut
 */
export async function showUser(user, onSignedOut) {
  if (!user)
    return byId("user").replaceChildren();
  await addWords("session");
  const leave = element("button", { type: "button", textContent: label("signOut") });
  leave.addEventListener("click", async () => {
    await request("/api/session", { method: "DELETE" }).catch(() => {});
    onSignedOut();
  });
  byId("user").replaceChildren(
    element("span", {}, foreign(label("signedIn", user.name, label(`role_${user.role}`)))), leave);
}
