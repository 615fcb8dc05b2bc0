// A shift's work: see, filter, open, confirm one, some and all; with the keyboard alone.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { assertQuiet, closeBrowser, openPage } from "../support/browser.js";
import { confirmRow, rowOf, rowsWhen, watchConfirmations } from "../support/list.js";
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

const confirmed = ({ state }) => state === "confirmed";

/** Waits until the server says so of the alarms with these ids, and gives the confirmations. */
const confirmationsOf = (ids) => eventually(async () => {
  const events = (await server.events()).filter(({ id }) => ids.includes(String(id)));
  const all = events.map(({ confirmation }) => confirmation ?? {});
  return all.length === ids.length && all.every(confirmed) && all;
}, `confirmations of ${ids}`);

test("a shift", async () => {
  const page = await openPage(server);
  await server.sim(filler, raise("level", 1), raise("infeed", 3), raise("stop", 2, { arguments: ["East"] }));
  await server.sim(packer, raise("valve", 4), raise("hint", 5, { arguments: ["Straße offen"] }));
  const list = await rowsWhen(page, (shown) => shown.length === 5, "five alarms");
  assert.equal(list[0].title, "Emergency stop pressed at the East panel", "the most urgent is first");
  assert.deepEqual(list.map(({ confirmable }) => confirmable), [true, true, true, true, false],
    "what needs no confirmation is last");

  await page.locator("main input[name=text]").fill("STRASSE");
  await rowsWhen(page, (shown) => shown.length === 1, "one alarm found");
  assert.match(page.url(), /text=STRASSE/, "a view is a link");
  await page.locator("main button[type=reset]").click();
  await rowsWhen(page, (shown) => shown.length === 5, "all alarms again");

  await page.setViewportSize({ width: 390, height: 844 });
  await page.locator("main .ordering").selectOption("name");
  const byName = list.map(({ title }) => title).sort();
  await rowsWhen(page, (shown) => shown.every(({ title }, at) => title === byName[at]), "by name");
  await page.locator("main .ordering").selectOption("priority");
  await page.setViewportSize({ width: 1366, height: 768 });
  await rowsWhen(page, (shown) => shown[0].id === list[0].id, "the most urgent first again");

  const level = list.find(({ title }) => title === "Product tank level below 12 %");
  await rowOf(page, level.id).click();
  await page.getByText("Clean the sensor.").waitFor();
  await page.getByText("On top of the tank").waitFor();
  await page.keyboard.press("Escape");

  await confirmRow(page, level.id);
  await confirmationsOf([level.id]);
  await rowsWhen(page, (shown) => /confirmed/.test(shown.find(({ id }) => id === level.id)?.life ?? "confirmed"),
    "the row says who confirmed it");

  const [first, second] = list.filter(({ id, confirmable }) => id !== level.id && confirmable);
  for (const { id } of [first, second])
    await rowOf(page, id).locator("input[type=checkbox]").check();
  await page.locator("main .confirmChosen").click();
  await page.locator("dialog button[value=yes]").click();
  await confirmationsOf([first.id, second.id]);

  await page.mouse.move(5, 5);
  await page.locator("main .confirmShown").click();
  await page.locator("dialog input[name=comment]").fill("cleaned, running again");
  await page.locator("dialog button[value=yes]").click();
  await eventually(async () => (await server.events("state=unconfirmed")).length === 0,
    "nothing is unconfirmed");
  const comments = (await server.events()).map(({ confirmation }) => confirmation?.comment);
  assert.equal(comments.filter((comment) => comment === "cleaned, running again").length, 1);

  await page.locator("#language").selectOption("de");
  await page.getByText("Füllstand im Produkttank unter 12 %").first().waitFor();
  assert.equal(await page.evaluate(() => document.documentElement.lang), "de");
  assertQuiet(page);
});

test("the same by keys alone, without losing one's place", async () => {
  const page = await openPage(server, "/?state=unconfirmed");
  const asked = watchConfirmations(page);
  const press = async (...keys) => {
    for (const key of keys)
      await page.keyboard.press(key);
  };
  const place = () => page.evaluate(() => document.activeElement.closest("tr")?.dataset.key ?? "");
  await server.sim(filler, raise("a", 2), raise("b", 1), raise("c", 4), raise("d", 4));
  const list = await rowsWhen(page, (shown) => shown.length === 4, "four alarms");
  const ids = list.map(({ id }) => id);

  await press("Home", "ArrowDown", "ArrowDown");
  assert.equal(await place(), ids[2]);
  await press(" ", "ArrowDown", " ", "a");
  await page.locator("dialog").waitFor();
  await page.locator("dialog input[name=comment]").press("Enter");
  await confirmationsOf([ids[2], ids[3]]);
  await page.locator("dialog").waitFor({ state: "detached" });
  assert.deepEqual(asked.map(({ id }) => String(id)).sort(), [ids[2], ids[3]].sort());
  assert.notEqual(await place(), "", "the place in the list is kept");

  await press("Home", "Enter");
  await page.locator("main section.details:not([hidden])").waitFor();
  await press("Escape");
  assert.equal(await place(), ids[0], "and is where it was when the details are closed");

  await press("/");
  await page.keyboard.type("VALVE");
  assert.equal(await page.evaluate(() => document.activeElement.name), "text");
  await rowsWhen(page, (shown) => shown.some(({ id }) => id === ids[1]) &&
    !shown.some(({ id }) => id === ids[0]), "what was searched for");
  await press("a", "Escape");
  assert.equal(asked.length, 2, "a letter that is written confirms nothing");
  assertQuiet(page);
});
