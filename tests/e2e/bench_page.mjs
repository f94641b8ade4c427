// Times the page on a sheet of about 1,000 items: a feed, 500 valves and a
// product joined by 501 lines. Prints the server's time per /api/sheet and per
// pointer event as the page sees them, and the page's time to draw the sheet.
// Run: node tests/e2e/bench_page.mjs (after the build). Not part of the tests.
import { writeFileSync, mkdtempSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { openPage, serve } from "./support.mjs";

const n = 500;
const rows = ['"VELM_3.2"'];
const rec = (section, i, key, ...values) =>
  rows.push([`"\\${section}"`, i, `"${key}"`, ...values.map((v) => (typeof v === "string" ? `"${v}"` : v))].join(","));
rec("PIPE", 0, "NUM", n + 1);
for (let k = 1; k <= n + 1; k++) rec("PIPE", k, "NAME", `L-${k}`, "");
rec("FEED", 0, "NUM", 1);
rec("FEED", 1, "NAME", "F-1", "");
rec("FEED", 1, "NOZ", 1, 0, "m", 0, 0, 0, "kPag");
rec("PROD", 0, "NUM", 1);
rec("PROD", 1, "NAME", "P-1", "");
rec("PROD", 1, "NOZ", n + 1, 0, "m", 0, 0, 0, "kPag");
rec("VALVE", 0, "NUM", n);
for (let k = 1; k <= n; k++) {
  rec("VALVE", k, "NAME", `CV-${k}`, "");
  rec("VALVE", k, "CON", k, k + 1);
}
const dir = mkdtempSync(join(tmpdir(), "velm-bench-"));
const file = join(dir, "valves.vdf");
writeFileSync(file, rows.join("\r\n") + "\r\n");

const server = await serve(file, dir);
const { browser, page } = await openPage(server.url);
const times = await page.evaluate(async () => {
  const median = (xs) => xs.sort((a, b) => a - b)[Math.floor(xs.length / 2)];
  const headers = { "X-Velm-Token": new URLSearchParams(location.search).get("token") };
  const sheetMs = [], pointerMs = [], drawMs = [];
  let sheet;
  for (let i = 0; i < 10; i++) {
    const t0 = performance.now();
    sheet = await (await fetch("/api/sheet", { headers })).json();
    sheetMs.push(performance.now() - t0);
  }
  for (let i = 0; i < 50; i++) {
    const t0 = performance.now();
    await fetch("/api/pointer", { method: "POST", headers, body: JSON.stringify({ type: "move", x: 500 + i, y: 500 }) });
    pointerMs.push(performance.now() - t0);
  }
  for (let i = 0; i < 10; i++) drawMs.push(window.velmDraw(sheet));
  return { items: sheet.items.length, sheet: median(sheetMs), pointer: median(pointerMs), draw: median(drawMs) };
});
console.log(`${times.items} items: GET /api/sheet ${times.sheet.toFixed(1)} ms, pointer move ${times.pointer.toFixed(2)} ms, ` +
  `full redraw in the page ${times.draw.toFixed(1)} ms (medians)`);
await browser.close();
server.proc.kill("SIGKILL");
