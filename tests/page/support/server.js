// A server of one's own: started, steered through its simulated runtimes, frozen, killed, ended.
import { spawn } from "node:child_process";
import { createHash } from "node:crypto";
import { mkdtemp, rm, writeFile } from "node:fs/promises";
import { createServer } from "node:net";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";
import { once } from "node:events";
import { fileURLToPath } from "node:url";

const project = fileURLToPath(new URL("../../..", import.meta.url));
export const inProject = (path) => resolve(project, path);
const programs = resolve(project, process.env.HMI_PROGRAMS ?? "build/release/bin");

export const sleep = (ms) => new Promise((done) => { setTimeout(done, ms); });

/** Waits until `condition` gives something true, and gives that. */
export async function eventually(condition, what, patience = 30000) {
  const end = Date.now() + patience;
  for (;;) {
    const answer = await condition();
    if (answer)
      return answer;
    if (Date.now() > end)
      throw new Error(`in vain waited ${patience} ms for: ${what}`);
    await sleep(30);
  }
}

async function freePort() {
  const probe = createServer().listen(0, "127.0.0.1");
  await once(probe, "listening");
  const { port } = probe.address();
  probe.close();
  await once(probe, "close");
  return port;
}

export class Server {
  #files;
  #arguments;
  #process;
  #errors = "";

  /** `users`: name -> {password, role}. The port stays the same over `restart`. */
  static async start({ config, plant, users, options = [] }) {
    const server = new Server();
    server.#files = await mkdtemp(join(tmpdir(), "hmi-page-"));
    server.port = await freePort();
    server.address = `http://127.0.0.1:${server.port}`;
    server.#arguments = [
      "--extension", join(programs, "libZrHmiEventLogger.so"),
      "--config", await server.#write("config.json", config),
      "--plant", await server.#write("plant.json", plant),
      "--port", String(server.port), "--log-level", "warning",
      ...users ? ["--users", await server.#write("users.json", await withHashes(users))] : [],
      ...options.map((option) => option.replace("FILES", server.#files)),
    ];
    await server.restart();
    return server;
  }

  async restart() {
    this.#process = spawn(join(programs, "hmi-server"), this.#arguments,
      { stdio: ["ignore", "pipe", "pipe"] });
    this.#process.stderr.on("data", (text) => { this.#errors += text; });
    let said = "";
    this.#process.stdout.on("data", (text) => { said += text; });
    await eventually(() => {
      if (this.#process.exitCode !== null)
        throw new Error(`the server does not start: ${this.#errors}`);
      return said.startsWith("listening on");
    }, "the server's first line");
  }

  freeze() { this.#process.kill("SIGSTOP"); }

  thaw() { this.#process.kill("SIGCONT"); }

  async kill() {
    this.#process.kill("SIGKILL");
    await once(this.#process, "exit");
  }

  async stop() {
    if (this.#process.exitCode === null && this.#process.signalCode === null) {
      this.thaw();
      this.#process.kill("SIGTERM");
      const tooLate = setTimeout(() => this.#process.kill("SIGKILL"), 15000);
      await once(this.#process, "exit");
      clearTimeout(tooLate);
    }
    await rm(this.#files, { recursive: true, force: true });
  }

  async request(path, method = "GET", body = undefined) {
    const response = await fetch(this.address + path,
      { method, body: body && JSON.stringify(body), headers: this.headers });
    const answer = await response.json();
    if (!response.ok)
      throw new Error(`${method} ${path}: ${response.status} ${answer.error}`);
    return answer;
  }

  /** Tells a simulated runtime what to do, in one go. */
  sim(netId, ...actions) { return this.request(`/sim/${netId}`, "POST", actions); }

  async events(query = "limit=1000") {
    return (await this.request(`/api/events?${query}`)).events;
  }

  /** Waits until all targets have been imported. */
  ready() {
    return eventually(async () =>
      (await this.request("/api/targets")).every(({ state }) => state === "good"), "good targets");
  }

  async #write(name, content) {
    const file = join(this.#files, name);
    await writeFile(file, JSON.stringify(content));
    return file;
  }
}

async function hashOf(password) {
  const hasher = spawn(join(programs, "hmi-server"), ["--hash-password"],
    { stdio: ["pipe", "pipe", "inherit"] });
  hasher.stdin.end(`${password}\n`);
  let hash = "";
  hasher.stdout.on("data", (text) => { hash += text; });
  await once(hasher, "close");
  return hash.trim();
}

async function withHashes(users) {
  const hashed = {};
  for (const [name, { password, role }] of Object.entries(users))
    hashed[name] = { password: await hashOf(password), role };
  return { users: hashed };
}

/** The same random numbers for the same seed: a failed try can be had again. */
export function randomNumbers(seed) {
  let state = createHash("sha256").update(String(seed)).digest().readUInt32LE(0);
  return (below) => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return Math.floor(state / 2 ** 32 * below);
  };
}
