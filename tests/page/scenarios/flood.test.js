// A flood: 5,000 alarms at once, then 200 a second. Figures are printed; the bounds are those
// beyond which nobody could work. PAGE_FULL=1: 30 seconds, and a list of 100,000 events.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { assertAccessible, assertQuiet, closeBrowser, openPage } from "../support/browser.js";
import { rowsWhen } from "../support/list.js";
import { config, filler, machine, packer, plant, raise } from "../support/plant.js";
import { Server, eventually, sleep } from "../support/server.js";

const isFull = process.env.PAGE_FULL === "1";
const seconds = isFull ? 30 : 6;
const perSecond = 200;
const perTick = 10;
let server;

before(async () => {
  const limit = isFull ? 100000 : 1000;
  server = await Server.start({ config: { ...config, LIMIT_EVENT_COUNT: limit }, plant });
  await server.ready();
});
after(async () => {
  await closeBrowser();
  await server?.stop();
});

async function heapOf(page) {
  const session = await page.context().newCDPSession(page);
  await session.send("HeapProfiler.collectGarbage");
  const { usedSize } = await session.send("Runtime.getHeapUsage");
  await session.detach();
  return usedSize / 2 ** 20;
}

/** Notes the time between two frames until it is asked for them. */
const watchFrames = (page) => page.evaluate(() => {
  window.frames_ = [];
  let last = performance.now();
  const note = (now) => {
    window.frames_.push(now - last);
    last = now;
    requestAnimationFrame(note);
  };
  requestAnimationFrame(note);
});
const framesOf = async (page) =>
  (await page.evaluate(() => window.frames_)).sort((a, b) => a - b);

const at = (sorted, share) =>
  sorted[Math.min(sorted.length - 1, Math.floor(sorted.length * share))];
const rounded = (value) => Math.round(value * 10) / 10;

test("how fast a change is shown", async () => {
  const page = await openPage(server, "/?order=time&group=0");
  await page.getByText("live", { exact: true }).waitFor();
  const delays = [];
  for (let number = 0; number < 20; ++number) {
    const name = `seen ${number} `;
    const begin = performance.now();
    await server.sim(packer, raise(name, 5, { arguments: [name] }));
    await page.locator("main tbody").getByText(name).first().waitFor();
    delays.push(performance.now() - begin);
  }
  delays.sort((a, b) => a - b);
  console.log(`a change is shown after p50 ${rounded(at(delays, 0.5))}, p95 ${rounded(at(delays, 0.95))} ms`);
  assert.ok(at(delays, 0.95) < 5000);
});

test("5,000 alarms at once, then 200 a second", async () => {
  const page = await openPage(server);
  await page.locator("main tbody").waitFor({ state: "attached" });
  const heapBefore = await heapOf(page);
  let begin = performance.now();
  await server.sim(filler, raise("first", 1, { count: 5000 }));
  await eventually(async () => /5[,.]?000/.test(await page.locator("body").innerText()),
    "all 5,000 are counted", 30000);
  console.log(`5,000 at once: counted after ${Math.round(performance.now() - begin)} ms`);
  await page.locator("main .flood").getByText(/./).waitFor();
  await assertAccessible(page, "in a flood");

  await watchFrames(page);
  begin = performance.now();
  for (let tick = 0; tick < seconds * perSecond / perTick; ++tick) {
    await server.sim(packer, raise(`tick ${tick}`, 4, { count: perTick }));
    await sleep(Math.max(0, begin + (tick + 1) * 1000 * perTick / perSecond - performance.now()));
  }
  const frames = await framesOf(page);
  const sent = performance.now() - begin;
  await rowsWhen(page, (shown) => shown.length > 0, "a list after it");
  const heapAfter = await heapOf(page);
  const [middle, slow, slowest] = [0.5, 0.99, 1].map((share) => rounded(at(frames, share)));
  console.log(`${perSecond} a second for ${rounded(sent / 1000)} s: frames p50 ${middle}, ` +
    `p99 ${slow}, longest ${slowest} ms; memory ${rounded(heapBefore)} to ` +
    `${rounded(heapAfter)} MiB`);
  assert.ok(at(frames, 0.99) < 1000, "the page stands still");
  assert.ok(heapAfter < heapBefore + 60, "the page keeps what it does not show");
  const count = await page.locator("main tbody tr").count();
  assert.ok(count <= 500, `${count} rows stand on the page`);
  assertQuiet(page);
});

test("a list of 100,000 events", { skip: !isFull && "with PAGE_FULL=1 only" }, async () => {
  await server.sim(packer, { do: "message", class: machine, event: 10, arguments: ["7"], count: 100000 });
  await eventually(async () =>
    (await server.request("/api/events?limit=0")).total > 100000, "100,000 events", 120000);
  const page = await openPage(server);
  const shown = await page.evaluate(async () => {
    const answered = () => performance.getEntriesByType("resource")
      .find(({ name }) => /events\?.*brief=1/.test(name))?.responseEnd;
    while (!answered() || document.querySelectorAll("main tbody tr").length === 0)
      await new Promise(requestAnimationFrame);
    return performance.now() - answered();
  });
  console.log(`100,000 events: the first view ${rounded(shown)} ms after the answer`);
  assertQuiet(page);
});
