// Debian's Chromium on the real page, and what is true of the page at all times.
import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import { createRequire } from "node:module";
import { chromium } from "playwright-core";
import { inProject } from "./server.js";

const axeSource = await readFile(
  createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
/** @type {ReturnType<typeof chromium.launch> | undefined} */
let browser;  // one, also when several pages ask for it at once

function launched() {
  browser ??= chromium.launch({
    executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium",
    args: ["--no-sandbox", "--disable-gpu", "--enable-precise-memory-info",
      "--autoplay-policy=user-gesture-required",
      // A page from the disk would be taken for one of the internet that asks this machine.
      "--disable-features=LocalNetworkAccessChecks,LocalNetworkAccessChecksWebSockets"],
  });
  return browser;
}

/** With HMI_PAGE=server/page the page's files come from there, and nothing has to be built. */
async function serveFromDisk(context, folder) {
  const types = { html: "text/html", css: "text/css", js: "text/javascript", svg: "image/svg+xml" };
  const fulfill = async (route) => {
    const { pathname } = new URL(route.request().url());
    const name = pathname === "/" ? "index.html" : pathname.replace("/page/", "");
    const contentType = `${types[name.split(".").pop()]}; charset=utf-8`;
    await route.fulfill({ contentType, body: await readFile(inProject(`${folder}/${name}`)) });
  };
  await context.route((url) => url.pathname === "/" || url.pathname.startsWith("/page/"), fulfill);
}

/**
 * A page of its own; `errors` collects what it complains of. `options` as playwright's newContext:
 * viewport, locale, colorScheme, forcedColors, reducedMotion ...; `prepare` runs in the page first.
 */
export async function openPage(server, path = "/", { prepare, ...options } = {}) {
  const context = await (await launched()).newContext({
    viewport: { width: 1366, height: 768 }, locale: "en-US", timezoneId: "Europe/Berlin",
    acceptDownloads: true, ...options,
  });
  if (prepare)
    await context.addInitScript(prepare);
  context.setDefaultTimeout(30000);
  if (process.env.HMI_PAGE)
    await serveFromDisk(context, process.env.HMI_PAGE);
  const page = await context.newPage();
  page.errors = [];
  page.on("pageerror", (error) => page.errors.push(error.stack ?? String(error)));
  page.on("console", (message) => {
    const isExpected = /ERR_CONNECTION_REFUSED|WebSocket|status of (4|5)\d\d/.test(message.text());
    if (message.type() === "error" && !isExpected)
      page.errors.push(message.text());
  });
  await page.goto(server.address + path);
  return page;
}

export async function closeBrowser() {
  await (await browser)?.close();
  browser = undefined;
}

/** Neither an exception nor a breach of the content policy. */
export function assertQuiet(page) {
  assert.deepEqual(page.errors, []);
}

/** What axe finds, in words; nothing is expected. */
export async function assertAccessible(page, where) {
  if (!await page.evaluate(() => "axe" in window))
    await page.evaluate(axeSource);
  const violations = await page.evaluate(async () => {
    const found = await window.axe.run(document, { resultTypes: ["violations"] });
    return found.violations.map(({ id, help, nodes }) => `${id}: ${help}\n` + nodes.slice(0, 4)
      .map((node) => `  ${node.html.slice(0, 160)}\n  ${node.failureSummary}`).join("\n"));
  });
  assert.equal(violations.join("\n"), "", where);
}

/** Nothing is cut off at the sides, and nothing that can be pressed is out of reach. */
export async function assertFits(page, where) {
  const cut = await page.evaluate(() => {
    const width = document.documentElement.clientWidth;
    const isReachable = (element) => {
      for (let parent = element.parentElement; parent; parent = parent.parentElement) {
        if (/auto|scroll/.test(getComputedStyle(parent).overflowX))
          return true;
      }
      return false;
    };
    return [...document.querySelectorAll("button, select, input, a, summary")]
      .filter((element) => element.checkVisibility?.({ visibilityProperty: true }) ?? true)
      .filter((element) => {
        const { left, right, width: own } = element.getBoundingClientRect();
        return own > 1 && (left < -1 || right > width + 1) && !isReachable(element);
      })
      .map((element) => element.outerHTML.slice(0, 120));
  });
  assert.equal(cut.join("\n"), "", `out of reach: ${where}`);
}
