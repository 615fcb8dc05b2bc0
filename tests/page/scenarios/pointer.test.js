// Alarms arrive, clear and rise again between aiming and pressing: only what was aimed at, and can
// have been seen when it was pressed, is confirmed.
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

  #action = (name) => raise(name, 1 + this.#random(2), { arguments: [name] });

  raise(netId) {
    return this.tell(netId, this.#action(`alarm ${++this.#count}`));
  }

  async refill() {
    while (this.#live.size < standing)
      await this.raise(filler);
  }

  /** Something happens, to the alarm that somebody aims at as often as to any other. */
  happen(aimed) {
    const all = [...this.#live.keys()];
    const alarm = this.#random(2) && this.#live.has(aimed) ? aimed : all[this.#random(all.length)];
    const netId = this.#live.get(alarm);
    switch (alarm ? this.#random(4) : 0) {
      case 0:
        return this.raise(packer);
      case 1:  // a new occurrence of the same alarm
        return this.tell(netId, { do: "clear", alarm }, this.#action(alarm));
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

/**
 * Notes the occurrences that the pointer is pressed on, except those that came under it less than
 * 100 ms before.
 */
const watchPresses = (page) => page.evaluate(() => {
  window.pressed_ = new Set();
  let [x, y, seen, since] = [0, 0, "", 0];
  const look = () => {
    const row = document.elementFromPoint(x, y)?.closest("tbody tr");
    const now = row ? `${row.dataset.key} ${row.querySelector("time").dateTime}` : "";
    const isOther = now !== seen;
    seen = now;
    return isOther;
  };
  const follow = ({ clientX, clientY }) => {
    if (clientX === x && clientY === y)
      return;
    [x, y, since] = [clientX, clientY, -Infinity];
    look();
  };
  new MutationObserver(() => { since = look() ? performance.now() : since; }).observe(
    document.querySelector("main tbody"), { subtree: true, childList: true, attributes: true });
  addEventListener("pointermove", follow, true);
  addEventListener("pointerdown", (press) => {
    follow(press);
    if (press.timeStamp - since >= 100)
      window.pressed_.add(seen);
  }, true);
});
const pressedOn = (page) => page.evaluate(() => [...window.pressed_]);

/** The alarm that stands under this point: "alarm 12". */
const under = (page, point) => page.evaluate(({ x, y }) => document.elementFromPoint(x, y)
  ?.closest("tbody tr")?.querySelector(".title").textContent.match(/alarm \d+/)?.[0], point);

/** One operator's tries; gives how many alarms were confirmed. */
async function work(page, world, random, count) {
  const asked = watchConfirmations(page);
  let confirmed = 0;
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
    const arriving = world.happen(aimed);
    if (random(2))
      await arriving;
    // The page may have heard of it by now, or not; and who presses may have seen it, or not.
    await page.waitForTimeout(random(2) ? 350 : random(3) * 10);
    assert.equal(await under(page, point), aimed, "a row has moved under the pointer");
    await page.mouse.down();
    if (random(3) === 0) {
      await world.happen(aimed);
      await page.waitForTimeout(random(2) * 100);
    }
    await page.mouse.up();
    if (random(8) === 0)
      await page.mouse.dblclick(point.x, point.y, { delay: random(20) });
    await arriving;
    const pressed = await pressedOn(page);
    for (const { id, timeRaised } of asked.splice(0)) {
      assert.ok(pressed.includes(`${id} ${timeRaised}`),
        `try ${attempt}: aimed at ${aimed}, confirmed ${id} ${timeRaised}`);
      ++confirmed;
    }
    if (random(10) === 0)
      await page.mouse.move(5, 5);
  }
  return confirmed;
}

test(`only what was aimed at is confirmed, in ${tries} tries`, async () => {
  console.log(`PAGE_SEED=${seed}`);
  const random = randomNumbers(seed);
  const world = new Plant(random);
  await world.refill();
  const pages = await Promise.all(Array.from({ length: operators },
    () => openPage(server, "/?state=unconfirmed&group=0")));
  for (const page of pages) {
    await rowsWhen(page, (shown) => shown.length >= standing, "the first alarms");
    await watchPresses(page);
  }
  const done = await Promise.all(pages.map(
    (page) => work(page, world, random, Math.ceil(tries / operators))));
  const pressed = new Set((await Promise.all(pages.map(pressedOn))).flat());
  for (const { id, timeRaised, confirmation } of await server.events("kind=alarm&limit=100000")) {
    assert.ok(!confirmation || pressed.has(`${id} ${timeRaised}`),
      `nobody pressed on ${id} of ${timeRaised}: ${JSON.stringify(confirmation)}`);
  }
  const confirmed = done.reduce((sum, one) => sum + one, 0);
  console.log(`${tries} tries of ${operators} operators, ${confirmed} confirmations asked for`);
  assert.ok(confirmed > tries / 10, "hardly anything was confirmed");
  pages.forEach(assertQuiet);
});
