// The main window in the page: menus, tool bar, palette, the sheet, the status
// area and the run log. Every rule lives in the server; the page sends pointer
// events, keys and commands and draws what comes back.

import { get, Json, post, token } from "./api";
import { MENUS, PALETTE, PALETTE_TIP, POPUP, TOOLBAR, ZOOMS, ZOOM_TIP, Entry } from "./menus";
import { ColourBy, range, renderSheet, TWIPS_PER_PIXEL } from "./render";
import * as ui from "./ui";
import { editItem, editOptions, setCommandRunner } from "./dialog";

const svg = document.getElementById("sheet") as unknown as SVGSVGElement;
let sheet: Json = null;
let zoom = 1;
let colourBy: ColourBy = { field: "", min: 0, max: 1 };
let drawAction = 0;
let runTimer = 0;

const $ = (id: string) => document.getElementById(id) as HTMLElement;

// ---- The sheet ----

function show(s: Json): void {
  sheet = s;
  if (colourBy.field) [colourBy.min, colourBy.max] = range(s, colourBy.field);
  renderSheet(svg, s, zoom, colourBy);
  document.title = s.title;
  $("title").textContent = s.title;
  for (const k of ["lblHelp", "lblUnits", "lblCase", "lblSpec"]) $(k).textContent = s.status[k] ?? "";
  setDrawAction(s.drawAction);
  document.querySelector('[data-command="mnuViewSpec"]')?.classList.toggle("on", s.labelMode === "Input");
  document.querySelector('[data-command="mnuViewResult"]')?.classList.toggle("on", s.labelMode === "Result");
  document.body.dataset.dirty = String(s.dirty);
  document.body.dataset.run = String(s.runActive);
  showLegend();
}

async function refresh(): Promise<void> {
  show(await get("/api/sheet"));
}

function setDrawAction(a: number): void {
  drawAction = a;
  for (const b of document.querySelectorAll<HTMLButtonElement>("#palette button"))
    b.classList.toggle("armed", Number(b.dataset.action) === a);
  svg.classList.toggle("create", a >= 50);
}

function showLegend(): void {
  const legend = $("legend");
  legend.hidden = !colourBy.field;
  if (!colourBy.field) return;
  const unit = colourBy.field === "vel" ? "m/s" : "kPa/100m";
  const name = colourBy.field === "vel" ? "Velocity" : "dP/100";
  legend.innerHTML = `<div>${name} (${unit})</div><div class="bar"></div>` +
    `<div class="ends"><span>${colourBy.min.toPrecision(3)}</span><span>${colourBy.max.toPrecision(3)}</span></div>`;
}

// ---- Replies: questions, messages, pickers, views ----

// Sends a request and follows its reply: a question is asked and the request
// sent again with the answer; then the messages are shown one by one.
async function request(path: string, body: Json): Promise<Json> {
  const answers: number[] = [];
  for (;;) {
    const r = await post(path, { ...body, answers });
    if (r.question) {
      answers.push(await ui.question(r.question.text, r.question.choices));
      continue;
    }
    if (r.sheet) show(r.sheet);
    for (const m of r.messages ?? []) await ui.message(m);
    if (r.message && !r.question) await ui.message(r.message);
    if (r.refused) await ui.message(r.refused);
    if (r.drawAction !== undefined) setDrawAction(r.drawAction);
    if (r.status !== undefined) $("lblHelp").textContent = r.status;
    return r;
  }
}

// The folder of the open project, where the file pickers start.
function projectDir(): string {
  return sheet?.title?.match(/\[(.*)\/[^/]*\]$/)?.[1] ?? "";
}

async function command(name: string, args: Json = {}): Promise<void> {
  if (name.startsWith("page")) return pageCommand(name);
  const r = await request(`/api/command/${name}`, { args });
  if (r.picker) {
    const file = await ui.pickFile(r.picker.mode, r.picker.filter, projectDir());
    if (file) await command(name, { ...args, file });
    return;
  }
  if (r.prompt) {
    const name2 = await ui.prompt(r.prompt);
    if (name2) await command(name, { ...args, name: name2 });
    return;
  }
  if (r.import) {
    const choice = await ui.importDialog(r.import, projectDir());
    if (choice) await command(name, choice);
    return;
  }
  if (r.pipes) await ui.pipeTable(r.pipes, projectDir());
  if (r.view) await ui.viewText(r.view.name, r.view.text, r.view.title);
  if (r.edit) await openDialog(r.edit.kind, r.edit.index);
  if (r.options && (await editOptions(r.options))) await refresh();
  if (r.run) watchRun();
  if (r.page) await pageAction(name);
  if (r.mailto) location.href = r.mailto;
  if (r.exit) {
    document.body.innerHTML = "<p style='padding:20px'>Velm has stopped. You can close this tab.</p>";
  }
}

async function openDialog(kind: string, index: number): Promise<void> {
  if (await editItem(kind, index)) await refresh();
}

async function pageCommand(name: string): Promise<void> {
  colourBy = { field: name === "pageColourVel" ? "vel" : name === "pageColourDpl" ? "dpl" : "", min: 0, max: 1 };
  if (sheet) show(sheet);
}

// Commands the page carries out itself: print and pictures of the sheet.
async function pageAction(name: string): Promise<void> {
  if (name === "mnuFilePrint" || name === "mnuFileDSetup") {
    window.print();
    return;
  }
  const text = new XMLSerializer().serializeToString(svg);
  const svgBlob = new Blob([text], { type: "image/svg+xml" });
  if (name === "mnuFileSaveClient") return download(svgBlob, "sheet.svg");
  const img = new Image();
  img.src = URL.createObjectURL(svgBlob);
  await img.decode();
  const canvas = document.createElement("canvas");
  canvas.width = img.width;
  canvas.height = img.height;
  const ctx = canvas.getContext("2d")!;
  ctx.fillStyle = "#fff";
  ctx.fillRect(0, 0, canvas.width, canvas.height);
  ctx.drawImage(img, 0, 0);
  canvas.toBlob((b) => b && download(b, "sheet.png"), "image/png");
}

function download(blob: Blob, name: string): void {
  const a = document.createElement("a");
  a.href = URL.createObjectURL(blob);
  a.download = name;
  a.click();
}

// ---- Runs ----

function watchRun(): void {
  $("runpanel").hidden = false;
  window.clearInterval(runTimer);
  const poll = async () => {
    const r = await get("/api/run");
    const log = $("runlog");
    log.textContent = r.log.join("\n");
    log.scrollTop = log.scrollHeight;
    document.body.dataset.run = String(r.active);
    if (!r.active) {
      window.clearInterval(runTimer);
      await refresh();
    }
  };
  runTimer = window.setInterval(poll, 250);
  void poll();
}

// ---- Pointer and keys ----

function twips(e: MouseEvent): { x: number; y: number } {
  const r = svg.getBoundingClientRect();
  return { x: ((e.clientX - r.left) * TWIPS_PER_PIXEL) / zoom, y: ((e.clientY - r.top) * TWIPS_PER_PIXEL) / zoom };
}

// Moves are sent one at a time; a move that comes while one is on its way
// replaces the one waiting.
let busy = false;
let waitingMove: Json | null = null;
let chain: Promise<unknown> = Promise.resolve();

// Requests go one after the other; a failure is reported and the queue goes on.
function enqueue(step: () => Promise<unknown>): void {
  chain = chain.then(step).catch((e) => console.error("Velm page:", e));
}

function sendPointer(type: string, e: MouseEvent): void {
  const body = { type, ...twips(e), button: e.button === 2 ? 2 : 1, shift: e.shiftKey, ctrl: e.ctrlKey || e.metaKey };
  if (type === "move") {
    if (busy) {
      waitingMove = body;
      return;
    }
  }
  enqueue(() => pointer(body));
}

async function pointer(body: Json): Promise<void> {
  busy = true;
  try {
    const r = await request("/api/pointer", body);
    svg.classList.toggle("uparrow", !!r.upArrow);
    if (r.edit) await openDialog(r.edit.kind, r.edit.index);
    if (body.type === "move") hoverCard(r, body);
  } finally {
    busy = false;
  }
  if (waitingMove) {
    const next = waitingMove;
    waitingMove = null;
    enqueue(() => pointer(next));
  }
}

let cardTimer = 0;
function hoverCard(r: Json, at: Json): void {
  const card = $("card");
  window.clearTimeout(cardTimer);
  card.hidden = true;
  if (!r.hover || r.hover.state !== 5 || drawAction !== 0) return;
  cardTimer = window.setTimeout(async () => {
    const item = await get(`/api/item/${r.hover.kind}/${r.hover.index}`);
    if (!item.rows || item.rows.length < 2) return;
    card.textContent = item.rows.join("\n");
    const rect = svg.getBoundingClientRect();
    card.style.left = `${rect.left + (at.x * zoom) / TWIPS_PER_PIXEL + 16}px`;
    card.style.top = `${rect.top + (at.y * zoom) / TWIPS_PER_PIXEL + 16}px`;
    card.hidden = false;
  }, 600);
}

// The middle button pans the sheet.
let pan: { x: number; y: number } | null = null;
svg.addEventListener("mousedown", (e) => {
  if (e.button === 1) {
    e.preventDefault();
    pan = { x: e.clientX, y: e.clientY };
    return;
  }
  if (e.button !== 0) return;
  e.preventDefault();
  hideContext();
  sendPointer("down", e);
});
svg.addEventListener("mousemove", (e) => {
  if (pan) {
    const wrap = $("sheetwrap");
    wrap.scrollLeft -= e.clientX - pan.x;
    wrap.scrollTop -= e.clientY - pan.y;
    pan = { x: e.clientX, y: e.clientY };
    return;
  }
  sendPointer("move", e);
});
window.addEventListener("mouseup", (e) => {
  if (e.button === 1) pan = null;
});
svg.addEventListener("mouseup", (e) => e.button === 0 && sendPointer("up", e));
svg.addEventListener("dblclick", (e) => sendPointer("dblclick", e));
svg.addEventListener("mouseleave", () => ($("card").hidden = true));
svg.addEventListener("contextmenu", (e) => {
  e.preventDefault();
  const menu = $("contextmenu");
  menu.style.left = `${e.clientX}px`;
  menu.style.top = `${e.clientY}px`;
  menu.hidden = false;
});

function hideContext(): void {
  $("contextmenu").hidden = true;
}

document.addEventListener("keydown", (e) => {
  if (ui.isOpen()) return;
  const target = e.target as HTMLElement;
  if (target.tagName === "INPUT" || target.tagName === "SELECT") return;
  const ctrl = e.ctrlKey || e.metaKey;
  if (ctrl && (e.key === "z" || e.key === "Z")) {
    e.preventDefault();
    enqueue(() => command("mnuEditUndo"));
    return;
  }
  if (ctrl && (e.key === "y" || e.key === "Y")) {
    e.preventDefault();
    enqueue(() => command("mnuEditRedo"));
    return;
  }
  const codes: Record<string, number> = { Escape: 27, Enter: 13, Delete: 46 };
  let key = codes[e.key] ?? 0;
  if (ctrl && (e.key === "c" || e.key === "v")) key = e.key.toUpperCase().charCodeAt(0);
  if (!key) return;
  e.preventDefault();
  hideContext();
  enqueue(async () => {
    const r = await request("/api/key", { key, shift: e.shiftKey, ctrl });
    if (r.edit) await openDialog(r.edit.kind, r.edit.index);
  });
});

document.addEventListener("click", (e) => {
  if (!(e.target as HTMLElement).closest(".menu")) for (const m of document.querySelectorAll(".menu")) m.classList.remove("open");
  if (!(e.target as HTMLElement).closest("#contextmenu")) hideContext();
});

window.addEventListener("beforeunload", (e) => {
  if (document.body.dataset.dirty === "true") e.preventDefault();
});

// ---- Building the window ----

function entryButton(entry: Exclude<Entry, "-">): HTMLButtonElement {
  const b = document.createElement("button");
  b.dataset.command = entry[0];
  b.textContent = entry[1].replace("\t", "    ");
  b.addEventListener("click", () => {
    for (const m of document.querySelectorAll(".menu")) m.classList.remove("open");
    hideContext();
    enqueue(() => command(entry[0]));
  });
  return b;
}

function build(): void {
  const bar = $("menubar");
  for (const [name, label, entries] of MENUS) {
    const menu = document.createElement("div");
    menu.className = "menu";
    menu.dataset.menu = name;
    const top = document.createElement("button");
    top.textContent = label;
    top.addEventListener("click", () => {
      const open = menu.classList.contains("open");
      for (const m of document.querySelectorAll(".menu")) m.classList.remove("open");
      menu.classList.toggle("open", !open);
    });
    const items = document.createElement("div");
    items.className = "items";
    for (const entry of entries) items.appendChild(entry === "-" ? document.createElement("hr") : entryButton(entry));
    menu.append(top, items);
    bar.appendChild(menu);
  }
  const ctx = $("contextmenu");
  for (const entry of POPUP) ctx.appendChild(entry === "-" ? document.createElement("hr") : entryButton(entry));
  const tools = $("toolbar");
  for (const [name, label, tip] of TOOLBAR) {
    const b = entryButton([name, label]);
    b.title = tip;
    tools.appendChild(b);
  }
  const zoomBox = document.createElement("select");
  zoomBox.id = "cboZoom";
  zoomBox.title = ZOOM_TIP;
  for (const z of ZOOMS) zoomBox.add(new Option(z + " %", z, z === "100", z === "100"));
  zoomBox.addEventListener("change", () => {
    zoom = Number(zoomBox.value) / 100;
    if (sheet) show(sheet);
  });
  tools.appendChild(zoomBox);
  const palette = $("palette");
  palette.title = PALETTE_TIP;
  for (const [name, action] of PALETTE) {
    const b = document.createElement("button");
    b.textContent = name;
    b.dataset.tool = name;
    b.dataset.action = String(action);
    b.title = PALETTE_TIP;
    b.addEventListener("click", () => {
      enqueue(() => request("/api/tool", { tool: drawAction === action ? 0 : action }));
    });
    palette.appendChild(b);
  }
}

// Resolves once every request the page has sent is answered (for scripts and tests).
(window as unknown as { velmIdle: () => Promise<void> }).velmIdle = async () => {
  do await chain;
  while (busy || waitingMove);
};

// Draws a sheet and returns the milliseconds it took, layout included (for the page's benchmark).
(window as unknown as { velmDraw: (s: Json) => number }).velmDraw = (s: Json) => {
  const t0 = performance.now();
  show(s);
  svg.getBBox();
  return performance.now() - t0;
};

$("runclose").addEventListener("click", () => ($("runpanel").hidden = true));
setCommandRunner(command);
build();
if (!token) void ui.message("This page needs the address that velm serve printed, with its token.");
else void refresh().then(async () => {
  const r = await get("/api/run");
  if (r.active) watchRun();
});
