// Every view and state in every way to look at it: nothing for axe, nothing out of reach.
import { after, before, describe, test } from "node:test";
import {
  assertAccessible, assertFits, assertQuiet, closeBrowser, openPage,
} from "../support/browser.js";
import { rowsWhen } from "../support/list.js";
import { config, filler, packer, plant, raise } from "../support/plant.js";
import { Server, eventually } from "../support/server.js";

let server;

before(async () => {
  server = await Server.start({ config, plant, options: ["--history", "FILES/history.db"] });
  await server.ready();
  await server.sim(filler, raise("level", 1), raise("stop", 2), raise("infeed", 3),
    raise("gone", 4), { do: "clear", alarm: "gone" },
    ...[1, 2, 3].flatMap(() => [raise("chatter", 5), { do: "clear", alarm: "chatter" }]));
  await server.sim(packer, raise("valve", 4), raise("kept", 1));
  await eventually(async () => (await server.events("target=Packer")).length === 2, "its alarms");
  await server.sim(packer, { do: "refuse", hresult: "0x98110745" }, { do: "drop" });
});
after(async () => {
  await closeBrowser();
  await server?.stop();
});

const ready = (page) => rowsWhen(page, (shown) => shown.length >= 6, "the list");
const visible = (page, place) => page.locator(place).first().waitFor();
const away = (page) => page.keyboard.press("Escape");

/** Each leads to a state, and away from it to where it began. */
const states = {
  operate: { path: "/", show: ready },
  "operate, grouped": { path: "/", show: async (page) => {
    await ready(page);
    await page.locator("main .grouping").click();
    await visible(page, "main tbody tr.group");
  } },
  details: { path: "/", show: async (page) => {
    await ready(page);
    await page.locator("main tbody tr .title").first().click();
    await visible(page, "main section.details:not([hidden])");
  } },
  "confirm all": { path: "/", show: async (page) => {
    await ready(page);
    await page.locator("main .confirmShown").click();
    await visible(page, "dialog");
  }, leave: away },
  keys: { path: "/", show: async (page) => {
    await ready(page);
    await page.keyboard.press("?");
    await visible(page, "dialog");
  }, leave: away },
  understand: { path: "/?view=understand", show: async (page) => {
    await visible(page, ".rate svg");
    await page.locator(".numbers summary").click();
  } },
  past: { path: "/?view=past&period=1440", show: async (page) => {
    await page.locator("main tbody button.named").first().click();
    await visible(page, "ol.life");
  } },
  targets: { path: "/?view=engineer", show: (page) => visible(page, ".card.lost") },
  log: { path: "/?view=engineer&part=log", show: (page) => visible(page, ".log tbody tr") },
  configuration: { path: "/?view=engineer&part=configuration", show: async (page) => {
    await page.locator(".entry button[type=submit]").first().click();
    await visible(page, "dialog.review li, dialog.review p:not(.change)");
  }, leave: away },
  simulator: { path: "/?view=engineer&part=simulator", show: (page) => visible(page, ".fields") },
};

const desk = { width: 1366, height: 768 };
const ways = {
  "390 px, dark": { viewport: { width: 390, height: 844 }, colorScheme: "dark", hasTouch: true },
  "390 px, light": { viewport: { width: 390, height: 844 }, colorScheme: "light" },
  "768 px, dark": { viewport: { width: 768, height: 1024 }, colorScheme: "dark" },
  "1366 px, dark": { viewport: desk, colorScheme: "dark" },
  "1366 px, light, less motion": { viewport: desk, colorScheme: "light", reducedMotion: "reduce" },
  "1366 px, forced colours": { viewport: desk, forcedColors: "active" },
  "3840 px, dark": { viewport: { width: 3840, height: 2160 }, colorScheme: "dark" },
  "1366 px at 200 %": { viewport: { width: 683, height: 384 }, deviceScaleFactor: 2 },
};

async function lookAt(options, way) {
  const page = await openPage(server, "/", options);
  for (const [state, { path, show, leave }] of Object.entries(states)) {
    await page.goto(server.address + path);
    await show(page);
    await assertAccessible(page, `${state}, ${way}`);
    await assertFits(page, `${state}, ${way}`);
    await leave?.(page);
  }
  assertQuiet(page);
  await page.context().close();
}

// Two at a time: the long work is done in each page's own process.
describe("every view and state", { concurrency: 2 }, () => {
  for (const [way, options] of Object.entries(ways))
    test(way, () => lookAt(options, way));
});
