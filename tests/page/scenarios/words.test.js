// The page's own words and files: complete in every language, small, and all of them there.
import assert from "node:assert/strict";
import { readdir, readFile } from "node:fs/promises";
import { test } from "node:test";
import { gzipSync } from "node:zlib";
import { inProject } from "../support/server.js";

const folder = inProject(process.env.HMI_PAGE || "server/page");
const wordEntries = await readdir(`${folder}/words`, { withFileTypes: true });
const languages = wordEntries.filter((entry) => entry.isFile())
  .map(({ name }) => name.slice(0, -".js".length));
const parts = ["", ...wordEntries.filter((entry) => entry.isDirectory()).map(({ name }) => name)];
const isSource = (name) => /\.(js|css|html)$/.test(name);

async function filesBelow(path) {
  const entries = await readdir(path, { withFileTypes: true });
  const nested = await Promise.all(entries.map((entry) => entry.isDirectory()
    ? filesBelow(`${path}/${entry.name}`) : [`${path}/${entry.name}`]));
  return nested.flat().filter(isSource);
}

const files = await filesBelow(folder);

/** A browser takes the file as a module by its tag; here its name would have to say so. */
async function load(part, language) {
  const source = await readFile(`${folder}/words/${part && `${part}/`}${language}.js`, "utf8");
  return (await import(`data:text/javascript,${encodeURIComponent(source)}`)).words;
}

const placeholders = (text) => [...new Set(text.match(/\{\d\}/g) ?? [])].sort();

test("every language can be chosen and says everything, with the same values in it", async () => {
  const choices = (await readFile(`${folder}/shell/words.js`, "utf8")).matchAll(/\["(\w\w)-/g);
  assert.deepEqual([...choices].map(([, language]) => language).sort(), languages.sort());
  for (const part of parts) {
    const english = await load(part, "en");
    for (const language of languages) {
      const words = await load(part, language);
      const where = `words/${part}/${language}`;
      assert.deepEqual(Object.keys(words).sort(), Object.keys(english).sort(), where);
      for (const [key, text] of Object.entries(words))
        assert.deepEqual(placeholders(text), placeholders(english[key]), `${where}: ${key}`);
    }
  }
});

test("no word has two meanings, and each that is asked for is there", async () => {
  const { components: { schemas } } =
    JSON.parse(await readFile(inProject("server/api/openapi.json"), "utf8"));
  const { HistoryChange: changes, Gap: { properties: { reason: gaps } } } = schemas;
  const known = new Map();
  for (const part of parts) {
    for (const [key, text] of Object.entries(await load(part, "en"))) {
      assert.equal(known.get(key) ?? text, text, `"${key}" of ${part} means something else elsewhere`);
      known.set(key, text);
    }
  }
  for (const file of files.filter((name) => !name.includes("/words/"))) {
    const asked = (await readFile(file, "utf8"))
      .matchAll(/\blabel\("(\w+)"|data-label(?:-[a-z-]+)?="(\w+)"/g);
    for (const [, call, attribute] of asked)
      assert.ok(known.has(call ?? attribute), `${file}: ${call ?? attribute}`);
  }
  for (const [kind, names] of Object.entries({ change: changes, pastChange: changes, gap: gaps })) {
    for (const name of names.enum)
      assert.ok(known.has(`${kind}_${name}`), `the server says "${name}": ${kind}`);
  }
});

test("the page stays small", async () => {
  let packed = 0;
  for (const file of files) {
    const text = await readFile(file, "utf8");
    assert.ok(text.split("\n").length <= 251, `${file} is longer than 250 lines`);
    // Of the words, one language is loaded.
    if (!/\/words\//.test(file) || file.endsWith("/en.js"))
      packed += gzipSync(text).length;
  }
  console.log(`the whole page: ${(packed / 1024).toFixed(1)} KiB packed, ${files.length} files`);
  assert.ok(packed < 150 * 1024);
});
