// Writes the pictures of the documents: node screenshots.js [NAME...], on the demo plant. They are
// made small by pngquant.
import { execFileSync } from "node:child_process";
import { mkdir, readFile } from "node:fs/promises";
import { closeBrowser, openPage } from "./support/browser.js";
import { rowsWhen } from "./support/list.js";
import { filler, machine, packer, raise } from "./support/plant.js";
import { Server, inProject, sleep } from "./support/server.js";

const read = async (path) => JSON.parse(await readFile(inProject(path), "utf8"));
const plant = await read("demo/plant.json");
for (const runtime of Object.values(plant.runtimes))
  Object.assign(runtime, { timeline: [], repeat: false });
const server = await Server.start({ config: await read("demo/config.json"), plant,
  options: ["--history", "FILES/history.sqlite"] });
const folder = inProject("docs/pictures");
const desk = { viewport: { width: 1280, height: 570 }, reducedMotion: "reduce" };

const pictures = [
  { name: "operate", path: "/", show: (page) => page.locator("tbody .title").first().click() },
  { name: "operate-light", path: "/", options: { colorScheme: "light" } },
  { name: "operate-phone", path: "/", options: { viewport: { width: 390, height: 844 }, hasTouch: true } },
  { name: "understand", path: "/?view=understand" },
  { name: "past", path: "/?view=past", show: (page) => page.locator("tbody button").first().click() },
  { name: "engineer", path: "/?view=engineer" },
  { name: "operate-lost", path: "/?order=time", show: lose },
];
const wanted = process.argv.slice(2);

/** The packer is lost: its alarms are last known, and a gap begins. */
async function lose() {
  await server.sim(packer, { do: "refuse", hresult: "0x98110745" }, { do: "drop" });
  await sleep(2500);
}

try {
  await server.ready();
  await mkdir(folder, { recursive: true });
  await server.sim(filler, raise("level", 1, { arguments: [15], source: { id: 20, name: "Filler.Tank" } }),
    raise("stop", 2, { arguments: ["infeed"], source: { id: 10, name: "Filler.Panel" } }),
    raise("infeed", 3, { source: { id: 21, name: "Filler.Infeed" } }),
    ...[1, 2, 3, 4].flatMap(() => [raise("valve", 4, { source: { id: 22, name: "Filler.Carousel" } }),
      { do: "clear", alarm: "valve" }]),
    { do: "message", class: machine, event: 10, arguments: ["L-2026-1118"] });
  const packing = (number) => `{9D17B3E4-60AC-4F85-B2C9-7E02D5A1F10${number}}`;
  await server.sim(packer, { ...raise("jam", 1, { arguments: [3] }), class: packing(1) },
    { ...raise("curtain", 1, { arguments: ["East"] }), class: packing(2) });
  for (const { name, path, options, show } of pictures) {
    if (wanted.length > 0 && !wanted.includes(name))
      continue;
    const page = await openPage(server, path, { ...desk, colorScheme: "dark", ...options });
    if (name.startsWith("operate"))
      await rowsWhen(page, (shown) => shown.length > 5, "the list");
    await sleep(1000);
    await show?.(page);
    await sleep(700);
    const file = `${folder}/${name}.png`;
    await page.screenshot({ path: file });
    execFileSync("pngquant", ["--force", "--ext", ".png", "--speed", "1", "64", file]);
    await page.context().close();
  }
} finally {
  await closeBrowser();
  await server.stop();
}
