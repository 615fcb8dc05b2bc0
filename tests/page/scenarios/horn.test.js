// The horn: which alarm is heard, until when, and that none is missed with the line.
import assert from "node:assert/strict";
import { after, before, test } from "node:test";
import { assertQuiet, closeBrowser, openPage } from "../support/browser.js";
import { confirmRow, rowsWhen } from "../support/list.js";
import { config, filler, plant, raise } from "../support/plant.js";
import { Server, eventually, sleep } from "../support/server.js";

let server;

before(async () => {
  server = await Server.start({ config, plant });
  await server.ready();
});
after(async () => {
  await closeBrowser();
  await server?.stop();
});

/** Sound as a browser has it that wants a press first; what would be heard is in `heard_`. */
function listen() {
  window.heard_ = [];
  class Part {
    gain = { setTargetAtTime: () => {} };
    connect = (next) => next;
    stop = () => {};
    constructor(context, { frequency }) { this.start = () => window.heard_.push(frequency); }
  }
  window.AudioContext = class extends EventTarget {
    state = "suspended";
    currentTime = 0;
    async resume() {
      this.state = "running";
      this.dispatchEvent(new Event("statechange"));
    }
  };
  window.OscillatorNode = window.GainNode = Part;
}

const critical = [880, 659, 880];
const error = [659, 523];
const warning = [523];

test("what is heard, and until when", async () => {
  const page = await openPage(server, "/", { prepare: listen });
  const heard = () => page.evaluate(() => window.heard_.splice(0));
  /** Waits for the call of that priority, from its first beep on. */
  const hears = async (call, what) => {
    await heard();
    let all = [];
    await eventually(async () => {
      all = [...all, ...await heard()];
      return all.join().includes(call.join());
    }, `${what}; heard ${all}`);
  };
  const silent = async (what) => {
    await eventually(() => page.locator("#silenceHorn").isHidden(), `${what}: silent`);
    await heard();
    await sleep(2600);
    assert.deepEqual(await heard(), [], what);
  };

  await rowsWhen(page, () => true, "the page");
  await server.sim(filler, raise("level", 1));
  const [level] = await rowsWhen(page, (shown) => shown.length === 1, "an alarm");
  assert.deepEqual(await heard(), [], "nothing before somebody has pressed something");
  await page.getByText("Turn sound on").click();
  await hears(error, "what has been ringing unheard");
  await server.sim(filler, raise("stop", 2));
  await hears(critical, "the more urgent one");
  await page.keyboard.press("s");
  await silent("silenced");

  await server.sim(filler, raise("hint", 3, { confirm: true }));
  await hears(warning, "the next one");
  await server.sim(filler, { do: "confirm", alarm: "hint" });
  await silent("the only one that rang is confirmed elsewhere");
  await confirmRow(page, level.id);

  await server.sim(filler, { do: "refuse", hresult: "0x98110745" }, { do: "drop" });
  await page.locator("#targets.lost").waitFor();
  await server.sim(filler, raise("unseen", 1), { do: "accept" });
  await hears(error, "what was raised while its target system was lost");
  await page.getByText("Turn sound off").click();
  await heard();
  await sleep(3000);
  assert.deepEqual(await heard(), [], "turned off");
  assertQuiet(page);
});
