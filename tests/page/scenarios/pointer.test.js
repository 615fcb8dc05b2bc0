// Alarms arrive, clear and rise again between aiming and pressing: only what was aimed at is
// confirmed.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { assertQuiet, closeBrowser, openPage } from "../support/browser.js";
import { rowsWhen, watchConfirmations } from "../support/list.js";
import { config, filler, packer, plant, raise } from "../support/plant.js";
import { Server, randomNumbers } from "../support/server.js";

const tries = Number(process.env.PAGE_TRIES ?? 200);
const operators = 4;  // at pages of their own
const seed = process.env.PAGE_SEED ?? String(Date.now());
const standing = 12;  // alarms that are there at a time
let server;

before(async () => {
  server = await Server.start({ config, plant });
  await server.ready();
});
after(async () => {
  await closeBrowser();
  await server?.stop();
});

/** What lives in the plant, and what happens in it. */
class Plant {
  #live = new Map();
  #count = 0;
  #random;

  constructor(random) {
    this.#random = random;
  }

  async tell(netId, ...actions) {
    for (const { do: name, alarm } of actions)
      name === "raise" ? this.#live.set(alarm, netId) : this.#live.delete(alarm);
    await server.sim(netId, ...actions);
  }

  raise(netId) {
    const name = `alarm ${++this.#count}`;
    return this.tell(netId, raise(name, 1 + this.#random(2)));
  }

  async refill() {
    while (this.#live.size < standing)
      await this.raise(filler);
  }

  happen() {
    const all = [...this.#live];
    const [alarm, netId] = all[this.#random(all.length)] ?? [];
    switch (alarm ? this.#random(4) : 0) {
      case 0:
        return this.raise(packer);
      case 1:  // a new occurrence of the same alarm
        return this.tell(netId, { do: "clear", alarm }, raise(alarm, 1));
      case 2:
        return this.tell(netId, { do: "clear", alarm });
      default:
        return this.tell(netId, { do: "confirm", alarm });
    }
  }
}

/** The places of all Confirms that can be pressed. */
const places = (page) => page.locator("main tbody button.confirm").evaluateAll((buttons) => buttons
  .filter((button) => !button.hidden && button.getAttribute("aria-disabled") !== "true")
  .map((button) => button.getBoundingClientRect())
  .filter(({ top, bottom }) => top > 0 && bottom < innerHeight)
  .map(({ left, top, width, height }) => ({ x: left + width / 2, y: top + height / 2 })));

/** The occurrence that stands under this point. */
const under = (page, point) => page.evaluate(({ x, y }) => {
  const row = document.elementFromPoint(x, y)?.closest("tbody tr");
  return row && `${row.dataset.key} ${row.querySelector("time").dateTime}`;
}, point);

/** One operator's tries; gives what was aimed at, and how much of it was confirmed. */
async function work(page, world, random, count) {
  const asked = watchConfirmations(page);
  const aimedAt = new Set();
  let pressed = 0;
  for (let attempt = 0; attempt < count; ++attempt) {
    await world.refill();
    const targets = await places(page);
    if (targets.length === 0) {  // all that is shown is done: on to what waits
      await page.mouse.move(5, 5);
      const waiting = page.locator("main .waiting");
      await (await waiting.isVisible() ? waiting.click() : page.waitForTimeout(100));
      continue;
    }
    const point = targets[random(targets.length)];
    await page.mouse.move(point.x, point.y);
    const aimed = await under(page, point);
    aimedAt.add(aimed);
    const arriving = world.happen();
    if (random(2))
      await arriving;
    await page.waitForTimeout(random(3) * 10);  // the page may have heard of it by now, or not
    await page.mouse.down();
    if (random(3) === 0)
      await world.raise(packer);
    await page.mouse.up();
    if (random(8) === 0)
      await page.mouse.dblclick(point.x, point.y, { delay: random(20) });
    await arriving;
    for (const { id, timeRaised } of asked.splice(0)) {
      assert.ok(aimedAt.has(`${id} ${timeRaised}`),
        `try ${attempt}: aimed at ${aimed}, confirmed ${id} ${timeRaised}`);
      ++pressed;
    }
    if (random(10) === 0)
      await page.mouse.move(5, 5);
  }
  return { aimedAt, pressed };
}

test(`only what was aimed at is confirmed, in ${tries} tries`, async () => {
  console.log(`PAGE_SEED=${seed}`);
  const random = randomNumbers(seed);
  const world = new Plant(random);
  await world.refill();
  const pages = await Promise.all(Array.from({ length: operators },
    () => openPage(server, "/?state=unconfirmed&group=0")));
  for (const page of pages)
    await rowsWhen(page, (shown) => shown.length >= standing, "the first alarms");
  const done = await Promise.all(pages.map(
    (page) => work(page, world, random, Math.ceil(tries / operators))));
  const aimedAt = new Set(done.flatMap((one) => [...one.aimedAt]));
  for (const { id, timeRaised, confirmation } of await server.events("kind=alarm&limit=100000")) {
    assert.ok(!confirmation || aimedAt.has(`${id} ${timeRaised}`),
      `nobody aimed at ${id} of ${timeRaised}: ${JSON.stringify(confirmation)}`);
  }
  const pressed = done.reduce((sum, one) => sum + one.pressed, 0);
  console.log(`${tries} tries of ${operators} operators, ${pressed} confirmations asked for`);
  assert.ok(pressed > tries / 4, "hardly anything was confirmed");
  pages.forEach(assertQuiet);
});
