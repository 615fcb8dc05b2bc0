// Lines that break: a target system lost and back, the server frozen, killed and back.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { assertAccessible, assertQuiet, closeBrowser, openPage } from "../support/browser.js";
import { rowsWhen } from "../support/list.js";
import { config, filler, packer, plant, raise } from "../support/plant.js";
import { Server, eventually } from "../support/server.js";

let server;

before(async () => {
  server = await Server.start({ config, plant });
  await server.ready();
});
after(async () => {
  await closeBrowser();
  await server?.stop();
});

const textOf = (page, place) => page.locator(place).first().innerText();

test("a target system is lost and comes back", async () => {
  const page = await openPage(server);
  await server.sim(filler, raise("level", 1), raise("stop", 2));
  await server.sim(packer, raise("valve", 4));
  const known = await rowsWhen(page, (shown) => shown.length === 3, "three alarms");
  const place = await page.locator("main tbody").boundingBox();
  await server.sim(filler, { do: "refuse", hresult: "0x98110745" }, { do: "drop" });
  await rowsWhen(page, (shown) =>
    shown.filter(({ confirmable }) => confirmable).length === 1, "nobody can confirm what is not known");
  const shown = await page.locator("main tbody").innerText();
  assert.match(shown, /last known/i);
  for (const { title } of known)
    assert.ok(shown.includes(title), `${title} stays`);
  await eventually(async () => /1 lost/.test(await textOf(page, "#targetsLine")), "the strip says so");
  assert.equal((await page.locator("main tbody").boundingBox()).y, place.y, "the list stays where it is");
  await page.locator("#targets summary").click();
  assert.match(await textOf(page, "#targetsAll"), /Filler.*lost/is);
  await assertAccessible(page, "a target system is lost");
  await page.locator("#targets summary").click();

  await server.sim(filler, { do: "accept" });
  await page.mouse.move(5, 5);
  await rowsWhen(page, (list) => list.filter(({ confirmable }) => confirmable).length === 3,
    "all three can be confirmed again", 20000);
  await eventually(async () => /2 connected/.test(await textOf(page, "#targetsLine")), "both are back");
  assert.match(await page.locator("main tbody").innerText(), /may be missing/, "the gap is told");
  assertQuiet(page);
});

test("the server is frozen, killed, and back", async () => {
  const page = await openPage(server);
  await rowsWhen(page, (shown) => shown.length > 0, "a list");
  await eventually(async () => await textOf(page, "#linkText") === "live", "live");
  server.freeze();
  await eventually(async () => /No sign of life/.test(await textOf(page, "#silence")),
    "the page says that it hears nothing", 20000);
  assert.notEqual(await textOf(page, "#linkText"), "live");
  await assertAccessible(page, "no sign of life");
  server.thaw();
  await eventually(async () => await textOf(page, "#linkText") === "live", "live again", 20000);

  await server.kill();
  await eventually(async () => /lost/.test(await textOf(page, "#silence")), "the connection is lost");
  await server.restart();
  await server.sim(packer, raise("afterwards", 2, { arguments: ["West"] }));
  await rowsWhen(page, (shown) => shown.some(({ title }) => /West/.test(title)),
    "what was raised after the start", 20000);
  assert.equal(await textOf(page, "#linkText"), "live");
  assertQuiet(page);
});
