// The life of a confirmation: held by the controller, failed and tried again, and who did it.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { assertAccessible, assertQuiet, closeBrowser, openPage } from "../support/browser.js";
import { confirmRow, rowOf, rowsWhen } from "../support/list.js";
import { config, filler, plant, raise } from "../support/plant.js";
import { Server, eventually } from "../support/server.js";

const users = {
  eva: { password: "correct horse", role: "confirm" },
  max: { password: "battery staple", role: "view" },
  ida: { password: "long enough", role: "engineer" },
};
let server;
let open;

before(async () => {
  [server, open] = await Promise.all([
    Server.start({ config, plant, users }), Server.start({ config, plant })]);
  server.headers = { authorization: `Basic ${btoa(`ida:${users.ida.password}`)}` };
  await Promise.all([server.ready(), open.ready()]);
});
after(async () => {
  await closeBrowser();
  await Promise.all([server.stop(), open.stop()]);
});

const lifeOf = (page, id) => rowOf(page, id).locator(".life").innerText();
const lifeIs = (page, id, text) => eventually(
  async () => text.test(await lifeOf(page, id)), `${text} in the row of ${id}`);

test("a held and a failed confirmation", async () => {
  const page = await openPage(open);
  await open.sim(filler, raise("held", 1), raise("failing", 4));
  const list = await rowsWhen(page, (shown) => shown.length === 2, "two alarms");
  const idOf = (part) => list.find(({ title }) => title.includes(part)).id;
  const [held, failing] = [idOf("tank level"), idOf("valve")];

  await open.sim(filler, { do: "hold" });
  await confirmRow(page, held);
  await lifeIs(page, held, /taken by the controller/);
  assert.equal(await rowOf(page, held).locator("button.confirm").getAttribute("aria-disabled"), "true");
  await open.sim(filler, { do: "release" });
  await lifeIs(page, held, /confirmed/);

  await open.sim(filler, { do: "fail", call: "Confirm", hresult: "0x80004005" });
  await confirmRow(page, failing);
  await lifeIs(page, failing, /failed.+\w/s);
  await assertAccessible(page, "a failed confirmation");
  await rowOf(page, failing).getByText("Try again").click();
  await lifeIs(page, failing, /confirmed/);
  assertQuiet(page);
});

async function signIn(page, name, password = users[name].password) {
  const dialog = page.locator("dialog.signIn");
  await dialog.locator("input[name=user]").fill(name);
  await dialog.locator("input[name=password]").fill(password);
  await dialog.locator("button[type=submit]").click();
}

test("two users, and one whose session ends", async () => {
  const [eva, max] = await Promise.all([openPage(server), openPage(server)]);
  await signIn(eva, "eva", "wrong");
  await eva.getByText("Name and password do not match.").waitFor();
  await assertAccessible(eva, "signing in");
  await signIn(eva, "eva");
  await signIn(max, "max");
  await server.sim(filler, raise("both", 1));
  const [{ id }] = await rowsWhen(eva, (shown) => shown.length === 1, "the alarm");
  const [seen] = await rowsWhen(max, (shown) => shown.length === 1, "the alarm at the other place");
  assert.equal(seen.confirmable, false, "who may only look confirms nothing");
  await confirmRow(eva, id);
  await lifeIs(max, id, /confirmed by eva/);
  for (const page of [eva, max])
    assert.equal(await page.locator("#nav a[data-view=engineer]").isVisible(), false);

  // The session ends behind the page's back: it asks again, and the stream follows.
  await max.evaluate(() => fetch("/api/session", { method: "DELETE" }));
  await server.sim(filler, raise("later", 1));
  await signIn(max, "max");
  await rowsWhen(max, (shown) => shown.length === 2, "what comes after signing in again");
  await eva.locator("#user button").click();
  await eva.locator("dialog.signIn").waitFor();
  assertQuiet(max);
});
