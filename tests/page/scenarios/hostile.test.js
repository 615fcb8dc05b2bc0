// Every text is hostile: markup, other directions, 10,000 characters, not a space in them.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import {
  assertAccessible, assertFits, assertQuiet, closeBrowser, openPage,
} from "../support/browser.js";
import { rowOf, rowsWhen } from "../support/list.js";
import { config, filler, machine, plant, raise } from "../support/plant.js";
import { Server } from "../support/server.js";

const texts = {
  markup: `<img src=x onerror="window.hacked=1"><script>window.hacked=1</script>"'>&amp;{{0}}`,
  reversed: "\u202Ereversed\u2067inside\u2066 \u061Cتنبيه ضغط الخزان 12 bar",
  hebrew: "\u05d0\u05d6\u05e2\u05e7\u05d4: \u05dc\u05d7\u05e5 (3)",
  long: "x".repeat(10000),
  noSpace: "Überdruckventilansteuerungsbaugruppe".repeat(40),
  control: "zero\u200Bwidth\u0007bell\u0001line\nbreak\ttab",
  empty: " ",
};
let server;

before(async () => {
  const name = texts.markup;
  const hostile = structuredClone(plant);
  const { eventClasses } = hostile.runtimes[filler];
  eventClasses[machine].name = { 1033: name };
  eventClasses[machine].events[1].causeRemedy[0] =
    { id: "1", cause: { 1033: texts.long }, remedy: { 1033: texts.markup } };
  server = await Server.start({ config: { ...config, TARGET_SYSTEMS: {
    "<b>Füller\u202E</b>": config.TARGET_SYSTEMS.Filler, Packer: config.TARGET_SYSTEMS.Packer } },
  plant: hostile, options: ["--history", "FILES/history.db"] });
  await server.ready();
  for (const [key, text] of Object.entries(texts)) {
    const json = JSON.stringify({ [text.slice(0, 200)]: text, number: 1 });
    await server.sim(filler,
      raise(key, 4, { arguments: [text], source: { name: text.slice(0, 500) }, json }));
  }
});
after(async () => {
  await closeBrowser();
  await server?.stop();
});

for (const viewport of [{ width: 1366, height: 768 }, { width: 390, height: 844 }]) {
  test(`hostile texts at ${viewport.width} px`, async () => {
    const page = await openPage(server, "/", { viewport });
    const count = Object.keys(texts).length;
    const list = await rowsWhen(page, (shown) => shown.length === count, "all alarms");
    assert.ok(list.some(({ title }) => title.includes(texts.markup)), "markup is shown as it is");
    await assertFits(page, `the list at ${viewport.width}`);
    await assertAccessible(page, `hostile texts at ${viewport.width}`);
    const heights = await page.locator("main tbody tr").evaluateAll(
      (rows) => rows.map((row) => row.getBoundingClientRect().height));
    assert.ok(Math.max(...heights) < 400, `one text takes ${Math.max(...heights)} px of the list`);
    for (const { id } of list) {
      await rowOf(page, id).locator(".title").click();
      await page.locator("main section.details:not([hidden])").waitFor();
      await assertFits(page, `details of ${id}`);
      await page.keyboard.press("Escape");
    }
    const target = encodeURIComponent("<b>Füller\u202E</b>");
    await page.goto(`${server.address}/?target=${target}`);
    await rowsWhen(page, (shown) => shown.length === count, "those of the hostile target system");
    for (const view of ["understand", "past", "engineer", "engineer&part=log", "engineer&part=configuration",
      "engineer&part=simulator"]) {
      await page.goto(`${server.address}/?view=${view}`);
      await page.locator("main :is(h2, th):visible").first().waitFor();
      await assertFits(page, `${view} at ${viewport.width}`);
    }
    const found = await page.evaluate(() =>
      ({ hacked: "hacked" in window, foreign: document.querySelectorAll("main img, main script, main b").length }));
    assert.deepEqual(found, { hacked: false, foreign: 0 });
    assertQuiet(page);
  });
}
