// The flowsheet page used as an engineer uses it: open, run, draw, edit, undo.
import { test } from "node:test";
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { answer, at, click, drag, idle, menu, root, sheetJson, start } from "./support.mjs";

const items = (sheet, kind) => sheet.items.filter((i) => i.kind === kind);

test("an example runs from the Run menu and its results stand beside the lines", async () => {
  const { page, server, errors } = await start("examples/pump_loop.vdf");
  assert.match(await page.title(), /^VELM - \[.*pump_loop\.vdf\]$/);
  await menu(page, "mnuRunSimRun");
  await page.waitForFunction(() => document.querySelector("#runlog")?.textContent?.includes("solution reached"));
  await page.waitForFunction(() => document.body.dataset.run === "false");
  await idle(page);
  const log = await page.locator("#runlog").textContent();
  assert.match(log, /Runlog - Case 2 solution reached after \d+ iterations\./);
  const label = page.locator('#sheet g[data-kind="Line"][data-index="4"] text', { hasText: "Wl=" });
  assert.match(await label.textContent(), /^Wl=78,7\d\d kg\/h$/);
  const sheet = await sheetJson(server);
  assert.equal(sheet.labelMode, "Result");
  assert.ok(items(sheet, "Line").every((l) => l.labels.some((r) => r.startsWith("Pi="))));
  await page.screenshot({ path: join(root, "build", "flowsheet.png") });
  assert.deepEqual(errors, []);
});

test("a feed, a pipe with one bend and a product drawn from the palette are saved connected", async () => {
  const { page, file, server, errors } = await start(null);
  await page.locator('[data-tool="Feed"]').click();
  await click(page, 2000, 3000);
  await page.locator('[data-tool="Product"]').click();
  await click(page, 8000, 3000);
  await page.locator('[data-tool="Pipe"]').click();
  await click(page, 2000, 3000);
  assert.equal(await page.locator("#lblHelp").textContent(), "Click to add bend. Dbl click to end.");
  await click(page, 5000, 4000);
  await click(page, 8000, 3000);
  const sheet = await sheetJson(server);
  const [line] = items(sheet, "Line");
  assert.deepEqual(line.ports, [[2000, 3000], [5000, 4000], [8000, 3000]]);
  assert.equal(items(sheet, "Feed")[0].ports[0][2], 1);
  assert.equal(items(sheet, "Prod")[0].ports[0][2], 1);
  await menu(page, "mnuFileSave");
  const saved = readFileSync(file, "latin1");
  assert.match(saved, /"\\FEED",1,"NOZ",1,/);
  assert.match(saved, /"\\PROD",1,"NOZ",1,/);
  assert.match(saved, /"\\PIPE",1,"BEND",1/);
  assert.deepEqual(errors, []);
});

test("Esc abandons a pipe being drawn and frees its start port", async () => {
  const { page, server } = await start("examples/gravity_transfer.vdf");
  const before = await sheetJson(server);
  const feed = items(before, "Feed")[0];
  await page.locator('[data-tool="Feed"]').click();
  await click(page, 3000, 8000);
  await page.keyboard.press("Escape");
  await idle(page);
  await page.locator('[data-tool="Pipe"]').click();
  await click(page, 3000, 8000);
  await click(page, 5000, 9000);
  assert.equal(items(await sheetJson(server), "Line").length, items(before, "Line").length + 1);
  await page.keyboard.press("Escape");
  await idle(page);
  const after = await sheetJson(server);
  assert.equal(items(after, "Line").length, items(before, "Line").length);
  assert.equal(items(after, "Feed").find((f) => f.index === 2).ports[0][2], 0);
  assert.equal(items(after, "Feed")[0].ports[0][2], feed.ports[0][2]);
});

test("move, copy and paste, rotate and delete, each undone", async () => {
  const { page, server } = await start("examples/pump_loop.vdf");
  const before = await sheetJson(server);
  const pump = items(before, "Pump")[0];
  const [x0, y0, x1, y1] = pump.box;
  const cx = Math.round((x0 + x1) / 200) * 100, cy = Math.round((y0 + y1) / 200) * 100 + 100;
  // Move: the pump and the ends of its two lines go 1000 twips down.
  await drag(page, [cx, cy], [cx, cy + 1000]);
  let s = await sheetJson(server);
  const moved = items(s, "Pump")[0];
  assert.equal(moved.ports[0][1], pump.ports[0][1] + 1000);
  const suction = items(s, "Line").find((l) => l.index === pump.ports[0][2]);
  assert.deepEqual(suction.ports.at(-1), moved.ports[0].slice(0, 2));
  await page.keyboard.press("Control+z");
  await idle(page);
  assert.deepEqual(items(await sheetJson(server), "Pump")[0].ports, pump.ports);
  // Copy and paste: a second pump, unconnected, 300 twips on.
  await click(page, cx, cy);
  await page.keyboard.press("Control+c");
  await page.keyboard.press("Control+v");
  await idle(page);
  s = await sheetJson(server);
  const copy = items(s, "Pump")[1];
  assert.equal(copy.name, "P-1012");
  assert.deepEqual(copy.ports.map((p) => p.slice(0, 2)), pump.ports.map((p) => [p[0] + 300, p[1] + 300]));
  assert.ok(copy.ports.every((p) => p[2] === 0));
  // Rotate the copy: its outlet turns about its inlet.
  await menu(page, "mnuEditRot");
  s = await sheetJson(server);
  const turned = items(s, "Pump")[1];
  assert.deepEqual(turned.ports[0], copy.ports[0]);
  assert.notDeepEqual(turned.ports[1], copy.ports[1]);
  // Delete it, answering the question; then undo brings it back.
  await page.keyboard.press("Delete");
  await answer(page, "Yes");
  assert.equal(items(await sheetJson(server), "Pump").length, 1);
  await page.keyboard.press("Control+z");
  await idle(page);
  assert.equal(items(await sheetJson(server), "Pump").length, 2);
});

test("a request without the session token or from another site is refused", async () => {
  const { server } = await start("examples/gravity_transfer.vdf");
  const base = `http://127.0.0.1:${server.port}`;
  assert.equal((await fetch(`${base}/api/sheet`)).status, 403);
  assert.equal((await fetch(`${base}/`)).status, 403);
  assert.equal((await fetch(`${base}/api/sheet?token=${"0".repeat(32)}`)).status, 403);
  const cross = await fetch(`${base}/api/command/mnuEditSelectAll`, {
    method: "POST", headers: { "X-Velm-Token": server.token, Origin: "http://example.com" }, body: "{}" });
  assert.equal(cross.status, 403);
  assert.equal((await fetch(`${base}/api/sheet?token=${server.token}`)).status, 200);
});

test("a text placed from the palette is edited in its dialog and drawn with its new words", async () => {
  const { page, server } = await start("examples/gravity_transfer.vdf");
  await page.locator('[data-tool="Text/Line"]').click();
  await click(page, 2000, 8000);
  await page.keyboard.press("Escape");
  await idle(page);
  const symbol = (await sheetJson(server)).items.find((i) => i.kind === "Symbol");
  const p = await at(page, symbol.box[0] + 300, symbol.box[1] + 100);
  await page.mouse.dblclick(p.x, p.y);
  await page.waitForSelector("#dialog[data-form=frmSymbol]");
  await page.locator('#dialog [data-field="TEXT"]').fill("Cooling water return");
  await page.locator('#dialog button[data-answer="OK"]').click();
  await page.waitForSelector("#modal", { state: "hidden" });
  await idle(page);
  assert.equal(await page.locator('#sheet g[data-kind="Symbol"] text').textContent(), "Cooling water return");
});
