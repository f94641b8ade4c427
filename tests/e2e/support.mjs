// Starts velm serve on a project in a scratch directory and drives its page in
// headless Chromium as a user would.
import { spawn } from "node:child_process";
import { mkdtempSync, copyFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join, resolve, dirname } from "node:path";
import { fileURLToPath } from "node:url";
import { chromium } from "playwright-core";
import { after } from "node:test";

export const root = resolve(dirname(fileURLToPath(import.meta.url)), "../..");
export const velm = process.env.VELM_EXE ?? join(root, "build/velm");
const chromiumPath = process.env.CHROMIUM ?? "/usr/bin/chromium";

// A scratch copy of an example (or a new project when example is null).
export async function scratchProject(example) {
  const dir = mkdtempSync(join(tmpdir(), "velm-e2e-"));
  const file = join(dir, example ? example.split("/").pop() : "new.vdf");
  if (example) copyFileSync(join(root, example), file);
  else await run([velm, "new", file]);
  return { dir, file };
}

function run(argv) {
  return new Promise((ok, fail) => {
    const p = spawn(argv[0], argv.slice(1), { stdio: "ignore" });
    p.on("exit", (code) => (code === 0 ? ok() : fail(new Error(`${argv.join(" ")} exited ${code}`))));
  });
}

// velm serve on the file; resolves with its address and the process.
export function serve(file, dir) {
  return new Promise((ok, fail) => {
    const env = { ...process.env, XDG_CONFIG_HOME: join(dir, "config"), XDG_DATA_HOME: join(dir, "data") };
    const proc = spawn(velm, ["serve", file, "--no-browser", "--out", join(dir, "out")], { env });
    let out = "";
    proc.stdout.on("data", (d) => {
      out += d;
      const m = out.match(/^Velm is at (http:\/\/127\.0\.0\.1:(\d+)\/\?token=([0-9a-f]+))/);
      if (m) ok({ url: m[1], port: Number(m[2]), token: m[3], proc });
    });
    proc.on("exit", (code) => fail(new Error(`velm serve exited ${code}: ${out}`)));
  });
}

export async function openPage(url) {
  const browser = await chromium.launch({ executablePath: chromiumPath, headless: true, args: ["--no-sandbox"] });
  const page = await browser.newPage({ viewport: { width: 1500, height: 950 } });
  const errors = [];
  page.on("pageerror", (e) => errors.push(String(e)));
  // A refused dialog entry is answered 422 on purpose; the browser logs every such answer.
  page.on("console", (m) => m.type() === "error" && !m.text().includes("status of 422") && errors.push(m.text()));
  await page.goto(url);
  await page.waitForSelector('#sheet g[data-kind="Sheet"]');
  return { browser, page, errors };
}

// Waits until every request of the page is answered.
export const idle = (page) => page.evaluate(() => window.velmIdle());

// Waits until the page is idle or asks the user something (a dialog opens).
export async function settled(page) {
  await page.evaluate(() => new Promise((resolve) => {
    const modal = document.getElementById("modal");
    const ask = () => !modal.hidden;
    window.velmIdle().then(resolve);
    const timer = setInterval(() => ask() && (clearInterval(timer), resolve()), 20);
  }));
}

// The page position of a sheet point in twips.
export async function at(page, x, y) {
  const box = await page.locator("#sheet").boundingBox();
  const w = Number(await page.locator("#sheet").getAttribute("width"));
  const vb = (await page.locator("#sheet").getAttribute("viewBox")).split(" ").map(Number);
  const s = w / vb[2];
  return { x: box.x + x * s, y: box.y + y * s };
}

export async function click(page, x, y, options = {}) {
  const p = await at(page, x, y);
  await page.mouse.move(p.x, p.y, { steps: 2 });
  await idle(page);
  if (options.ctrl) await page.keyboard.down("Control");
  await page.mouse.down();
  await idle(page);
  await page.mouse.up();
  if (options.ctrl) await page.keyboard.up("Control");
  await idle(page);
}

export async function drag(page, from, to) {
  const a = await at(page, from[0], from[1]);
  const b = await at(page, to[0], to[1]);
  await page.mouse.move(a.x, a.y);
  await idle(page);
  await page.mouse.down();
  await idle(page);
  await page.mouse.move(b.x, b.y, { steps: 6 });
  await idle(page);
  await page.mouse.up();
  await idle(page);
}

export async function menu(page, command) {
  const item = page.locator(`[data-command="${command}"]`).first();
  const parent = page.locator(".menu", { has: item });
  if ((await parent.count()) > 0) await parent.locator(":scope > button").click();
  await item.click();
  await settled(page);
}

// Answers the question on show with the button of that label.
export async function answer(page, label) {
  await page.locator(`#dialog button[data-answer="${label}"]`).click();
  await settled(page);
}

export async function sheetJson(server, labels = "") {
  const res = await fetch(`http://127.0.0.1:${server.port}/api/sheet?labels=${labels}`, {
    headers: { "X-Velm-Token": server.token },
  });
  return res.json();
}

// velm serve on a scratch copy of an example (a new project for null) with its
// page open; everything started is stopped after the file's tests.
const running = [];
export async function start(example) {
  if (running.length === 0)
    after(async () => {
      for (const stop of running.splice(0).reverse()) await stop();
    });
  const { dir, file } = await scratchProject(example);
  const server = await serve(file, dir);
  const { browser, page, errors } = await openPage(server.url);
  running.push(async () => {
    await browser.close();
    server.proc.kill("SIGKILL");
  });
  return { dir, file, server, page, errors };
}
