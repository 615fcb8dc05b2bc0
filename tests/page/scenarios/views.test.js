// What the views beside the list show and do: statistics, history, and the engineer's work.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { after, before, test } from "node:test";
import { assertQuiet, closeBrowser, openPage } from "../support/browser.js";
import { config, filler, machine, packer, plant, raise } from "../support/plant.js";
import { Server, eventually, sleep } from "../support/server.js";

let server;

before(async () => {
  server = await Server.start({ config, plant, options: ["--history", "FILES/history.db"] });
  await server.ready();
  await server.sim(filler, raise("level", 1));
  for (let count = 0; count < 4; ++count) {
    await server.sim(filler, raise("chatter", 4, { source: { name: "Filler.Carousel" } }));
    await server.sim(filler, { do: "clear", alarm: "chatter" });
    await sleep(50);
  }
  await server.sim(packer, raise("stop", 2));
});
after(async () => {
  await closeBrowser();
  await server?.stop();
});

test("the statistics, as a picture and as numbers", async () => {
  const page = await openPage(server, "/?view=understand");
  await page.locator(".rate svg").waitFor();
  assert.match(await page.locator(".rate").getAttribute("aria-label"), /^6 alarms in all/);
  await page.locator(".numbers summary").click();
  const numbers = await page.locator(".numbers tbody td").allInnerTexts();
  assert.equal(numbers.reduce((sum, text) => sum + Number(text), 0), 6);
  const panel = (title) => page.locator(".panel", { hasText: title });
  assert.match(await panel("Ten most frequent").innerText(), /Filler.Carousel\s+4/);
  assert.match(await panel("Chattering").innerText(), /Filler.Carousel/);
  await page.locator("main select").nth(1).selectOption("Packer");
  await eventually(async () =>
    /^1 alarms/.test(await page.locator(".rate").getAttribute("aria-label")), "those of the Packer");
  assert.match(page.url(), /target=Packer/);
  assertQuiet(page);
});

/** Of each row of the past: what has happened, and to what. */
const pastRows = (page) => page.locator("main tbody tr").evaluateAll((all) => all.map((row) =>
  [row.querySelector(".what").textContent, row.querySelector("th").textContent]));
const told = (entries) => entries.map(({ change, text }) => [
  { raised: "raised", raised_again: "raised again", cleared: "cleared", removed: "ended",
    updated: "changed" }[change], text]);

test("the past as the server tells it, and the life of one alarm", async () => {
  const valve = "Filling valve 12 does not close";
  const history = (query) => server.request(`/api/history?${query}`);
  const found = await eventually(async () => {
    const { entries } = await history("text=valve");
    return entries.length >= 8 && entries.every(({ text }) => text === valve) && entries;
  }, "each rise and end of the valve's alarms, with texts");
  const page = await openPage(server, "/?view=past");
  await page.locator("main input[name=text]").fill("valve");
  await eventually(async () => (await pastRows(page)).length === found.length, "what was searched for");
  assert.deepEqual(await pastRows(page), told(found));

  await page.locator("main select[name=change]").selectOption("cleared");
  const { entries: cleared } = await history("text=valve&change=cleared");
  await eventually(async () => (await pastRows(page)).length === cleared.length, "those that ended");
  assert.equal(cleared.length, 4);
  await page.locator("main tbody button.named").first().click();
  const { entries: life } = await history(`occurrence=${cleared[0].occurrence}`);
  const steps = page.locator("aside.life ol strong");
  await eventually(async () => await steps.count() === life.length, "its life");
  assert.deepEqual(await steps.allInnerTexts(), told(life.reverse()).map(([change]) => change));
  assertQuiet(page);
});

test("older and newer pages of the past", async () => {
  await server.sim(packer,
    { do: "message", class: machine, event: 10, arguments: ["7"], count: 230 });
  const messages = "/api/history?kind=message&limit=100";
  await eventually(async () => {
    const { next } = await server.request(messages);
    return next && (await server.request(`${messages}&after=${next}`)).next;
  }, "three pages");
  const page = await openPage(server, "/?view=past&kind=message");
  const shown = () => page.locator("main tbody tr").count();
  const [newer, older] = ["Newer", "Older"].map((name) => page.getByText(name, { exact: true }));
  await eventually(async () => await shown() === 100, "the first page");
  assert.equal(await newer.isDisabled(), true);
  await older.click();
  await eventually(async () => await newer.isEnabled(), "the second page");
  await older.click();
  await eventually(async () => await shown() === 30, "the last page");
  assert.equal(await older.isDisabled(), true);
  await newer.click();
  await eventually(async () => await shown() === 100, "the second page again");
  const csv = await page.getByText("Export (CSV)").getAttribute("href");
  const table = await (await fetch(server.address + csv)).text();
  assert.equal(table.trim().split(/\r?\n/).length, 231, "all of them, and the heads");
  assertQuiet(page);
});

test("an engineer's work", async () => {
  const page = await openPage(server, "/?view=engineer");
  const card = page.locator(".card", { hasText: "Packer" });
  await card.getByText(/number 1,/).waitFor();
  await card.locator("button").click();
  await card.getByText("number 2,").waitFor();

  await page.locator(".parts button", { hasText: "Log" }).click();
  await page.locator(".log tbody tr").first().waitFor();
  await page.locator("main input[type=search]").fill("imported");
  await eventually(async () => (await page.locator(".log tbody tr").allInnerTexts())
    .every((text) => /LOGGED_EVENTS_IMPORTED/.test(text)), "only what was searched for");
  const lines = await page.locator(".log tbody tr").count();
  await server.request("/api/commands", "POST", [{ command: "ForceReconnect", writeValue: "Filler" }]);
  await eventually(async () => await page.locator(".log tbody tr").count() > lines,
    "the log goes on");
  assertQuiet(page);
});

test("a change of the configuration shows what it would do before it is made", async () => {
  const page = await openPage(server, "/?view=engineer&part=configuration");
  const dialog = page.locator("dialog.review");
  const filler_ = page.locator("form.entry", { hasText: "Filler" });
  await filler_.getByText("Remove").click();
  await dialog.getByText(/is removed.*\d events leave/s).waitFor();
  await dialog.getByText("Give up").click();
  assert.ok("Filler" in await server.request("/api/config/TARGET_SYSTEMS"), "nothing has happened");
  const addition = page.locator("form.entry").last();
  await addition.locator("input").first().fill("Palletizer");
  await addition.locator("input").nth(1).fill("5.10.20.32.1.1");
  await addition.locator("button").click();
  await dialog.getByText("is added").waitFor();
  await dialog.getByText("Apply").click();
  await page.getByText("In force: TARGET_SYSTEMS::Palletizer").waitFor();
  await page.locator("form.entry", { hasText: "Palletizer" }).waitFor();
  const timeout = page.locator("form.setting").first();
  await timeout.locator("input").fill("5 seconds");
  await timeout.locator("button").click();
  await dialog.getByText("It would be refused").waitFor();
  assert.equal(await dialog.getByText("Apply").isDisabled(), true);
  await page.keyboard.press("Escape");
  assertQuiet(page);
});

test("a simulated runtime is told what to do, by hand and by a file of steps", async () => {
  const page = await openPage(server, "/?view=engineer&part=simulator");
  const form = page.locator("form.action");
  await form.locator("input[name=alarm]").fill("by hand");
  await form.locator("input[name=class]").fill(machine);
  await form.locator("input[name=event]").fill("1");
  await form.locator("input[name=arguments]").fill("not JSON");
  await form.locator("button[value=do]").click();
  await page.getByText("this is no JSON").waitFor();
  await form.locator("input[name=arguments]").fill("[33]");
  await form.locator("button[value=do]").click();
  await eventually(async () => "by hand" in (await server.request(`/sim/${filler}`)).alarms, "the alarm");

  await form.locator("button[value=add]").click();
  await form.locator("select[name=do]").selectOption("clear");
  await form.locator("input[name=alarm]").fill("by hand");
  await form.locator("button[value=add]").click();
  const download = page.waitForEvent("download");
  await page.getByText("Save as a file").click();
  const file = await (await download).path();
  const saved = JSON.parse(await readFile(file, "utf8"));
  assert.deepEqual(saved.map(({ do: name, runtime }) => [name, runtime]),
    [["raise", filler], ["clear", filler]]);
  await page.getByText("Remove all").click();
  assert.equal(await page.locator(".steps li").count(), 0);
  await page.locator("input[type=file]").setInputFiles(
    { name: "steps.json", mimeType: "application/json", buffer: await readFile(file) });
  await page.getByText("Run", { exact: true }).click();
  await page.getByText("2 steps done.").waitFor();
  assert.equal((await server.request(`/sim/${filler}`)).alarms["by hand"].active, false);
  assertQuiet(page);
});
