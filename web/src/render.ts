// The sheet drawn as SVG from the drawing commands the server sends: one group
// per item with data-kind and data-index, in twips as the user units.

import { Json } from "./api";

const SVG = "http://www.w3.org/2000/svg";
export const TWIPS_PER_PIXEL = 15;
// Height of normal text on the sheet, twips.
const TEXT_HEIGHT = 160;

export interface ColourBy {
  field: "" | "vel" | "dpl";
  min: number;
  max: number;
}

function colour(c: number): string {
  const r = c & 0xff, g = (c >> 8) & 0xff, b = (c >> 16) & 0xff;
  return `rgb(${r},${g},${b})`;
}

function el(name: string, attrs: Record<string, string | number>): SVGElement {
  const e = document.createElementNS(SVG, name);
  for (const [k, v] of Object.entries(attrs)) e.setAttribute(k, String(v));
  return e;
}

// A point at angle a (radians, counter-clockwise as seen) on a circle.
function onCircle(x: number, y: number, r: number, a: number): [number, number] {
  return [x + r * Math.cos(a), y - r * Math.sin(a)];
}

function arcPath(x: number, y: number, r: number, start: number, end: number): string {
  let sweep = end - start;
  while (sweep <= 0) sweep += 2 * Math.PI;
  if (sweep >= 2 * Math.PI - 1e-6) return "";
  const [x1, y1] = onCircle(x, y, r, start);
  const [x2, y2] = onCircle(x, y, r, end);
  return `M${x1},${y1} A${r},${r} 0 ${sweep > Math.PI ? 1 : 0} 0 ${x2},${y2}`;
}

function drawCommand(g: SVGElement, cmd: Json[], stroke?: string): void {
  const c = (i: number) => stroke ?? colour(cmd[i]);
  switch (cmd[0]) {
    case "l":
      g.appendChild(el("line", { x1: cmd[1], y1: cmd[2], x2: cmd[3], y2: cmd[4], stroke: c(5), "stroke-width": 15,
        ...(cmd[6] ? { "stroke-dasharray": "30 30" } : {}) }));
      break;
    case "b": {
      const x = Math.min(cmd[1], cmd[3]), y = Math.min(cmd[2], cmd[4]);
      g.appendChild(el("rect", { x, y, width: Math.abs(cmd[3] - cmd[1]), height: Math.abs(cmd[4] - cmd[2]),
        fill: "none", stroke: c(5), "stroke-width": 15, ...(cmd[6] ? { "stroke-dasharray": "30 30" } : {}) }));
      break;
    }
    case "f": {
      const x = Math.min(cmd[1], cmd[3]), y = Math.min(cmd[2], cmd[4]);
      g.appendChild(el("rect", { x, y, width: Math.abs(cmd[3] - cmd[1]), height: Math.abs(cmd[4] - cmd[2]),
        fill: colour(cmd[6]), stroke: c(5), "stroke-width": 15 }));
      break;
    }
    case "c":
      g.appendChild(el("circle", { cx: cmd[1], cy: cmd[2], r: cmd[3], fill: "none", stroke: c(4), "stroke-width": 15 }));
      break;
    case "a": {
      const d = arcPath(cmd[1], cmd[2], cmd[3], cmd[4], cmd[5]);
      g.appendChild(d ? el("path", { d, fill: "none", stroke: c(6), "stroke-width": 15 })
                      : el("circle", { cx: cmd[1], cy: cmd[2], r: cmd[3], fill: "none", stroke: c(6), "stroke-width": 15 }));
      break;
    }
    case "t": {
      const t = el("text", { x: cmd[1], y: cmd[2], "font-size": TEXT_HEIGHT * (cmd[4] || 1), fill: colour(cmd[5]),
        "dominant-baseline": "hanging" });
      t.textContent = cmd[3];
      g.appendChild(t);
      break;
    }
    case "p":
      g.appendChild(el("rect", { x: cmd[1] - 8, y: cmd[2] - 8, width: 16, height: 16, fill: colour(cmd[3]) }));
      break;
  }
}

// Blue to red over the range of the chosen result.
export function scale(v: number, min: number, max: number): string {
  const t = max > min ? Math.min(1, Math.max(0, (v - min) / (max - min))) : 0;
  const stops = [[33, 102, 172], [26, 152, 80], [254, 224, 139], [215, 48, 39]];
  const f = t * (stops.length - 1), i = Math.min(stops.length - 2, Math.floor(f)), u = f - i;
  const mix = (k: number) => Math.round(stops[i][k] + (stops[i + 1][k] - stops[i][k]) * u);
  return `rgb(${mix(0)},${mix(1)},${mix(2)})`;
}

export function renderSheet(svg: SVGSVGElement, sheet: Json, zoom: number, by: ColourBy): void {
  const [w, h] = sheet.size as [number, number];
  svg.setAttribute("viewBox", `0 0 ${w} ${h}`);
  svg.setAttribute("width", String((w / TWIPS_PER_PIXEL) * zoom));
  svg.setAttribute("height", String((h / TWIPS_PER_PIXEL) * zoom));
  const frag = document.createDocumentFragment();
  const back = el("g", { "data-kind": "Sheet" });
  for (const cmd of sheet.sheet) drawCommand(back, cmd);
  frag.appendChild(back);
  for (const item of sheet.items) {
    const g = el("g", { class: "item" + (item.selected ? " selected" : "") + (item.error ? " error" : ""),
      "data-kind": item.kind, "data-index": item.index, "data-name": item.name });
    let stroke: string | undefined;
    if (by.field && item.kind === "Line" && typeof item[by.field] === "number" && !item.selected)
      stroke = scale(Math.abs(item[by.field]), by.min, by.max);
    for (const cmd of item.draw) drawCommand(g, cmd, cmd[0] === "t" ? undefined : stroke);
    frag.appendChild(g);
  }
  svg.replaceChildren(frag);
}

// The range of a line result over the sheet, for the colour scale.
export function range(sheet: Json, field: "vel" | "dpl"): [number, number] {
  let min = Infinity, max = -Infinity;
  for (const item of sheet.items)
    if (item.kind === "Line" && typeof item[field] === "number") {
      min = Math.min(min, Math.abs(item[field]));
      max = Math.max(max, Math.abs(item[field]));
    }
  return min <= max ? [min, max] : [0, 1];
}
