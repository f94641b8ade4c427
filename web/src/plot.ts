// Small SVG charts for the dialogs: a machine's curves with its operating
// points, and the pressure along a line's path.

import { Json } from "./api";

const SVG = "http://www.w3.org/2000/svg";
const W = 520, H = 320, L = 60, R = 50, T = 20, B = 40;
const COLOURS = ["#2f6fb0", "#c0392b", "#27ae60", "#8e44ad"];

function el(name: string, attrs: Record<string, string | number>, text?: string): SVGElement {
  const e = document.createElementNS(SVG, name);
  for (const [k, v] of Object.entries(attrs)) e.setAttribute(k, String(v));
  if (text !== undefined) e.textContent = text;
  return e;
}

// A round upper bound for an axis.
function nice(v: number): number {
  if (!(v > 0)) return 1;
  const p = Math.pow(10, Math.floor(Math.log10(v)));
  for (const m of [1, 2, 2.5, 5, 10]) if (m * p >= v) return m * p;
  return 10 * p;
}

class Chart {
  svg = el("svg", { width: W, height: H, viewBox: `0 0 ${W} ${H}`, class: "plot" }) as SVGSVGElement;
  constructor(public x0: number, public x1: number, public y0: number, public y1: number, xl: string, yl: string) {
    this.svg.appendChild(el("rect", { x: L, y: T, width: W - L - R, height: H - T - B, fill: "#fff", stroke: "#888" }));
    for (let i = 0; i <= 5; i++) {
      const xv = x0 + ((x1 - x0) * i) / 5, yv = y0 + ((y1 - y0) * i) / 5;
      this.svg.appendChild(el("text", { x: this.x(xv), y: H - B + 14, "font-size": 10, "text-anchor": "middle" }, xv.toPrecision(3)));
      this.svg.appendChild(el("text", { x: L - 4, y: this.y(yv) + 3, "font-size": 10, "text-anchor": "end" }, yv.toPrecision(3)));
      this.svg.appendChild(el("line", { x1: L, x2: W - R, y1: this.y(yv), y2: this.y(yv), stroke: "#eee" }));
    }
    this.svg.appendChild(el("text", { x: (L + W - R) / 2, y: H - 6, "font-size": 11, "text-anchor": "middle" }, xl));
    this.svg.appendChild(el("text", { x: 12, y: (T + H - B) / 2, "font-size": 11, "text-anchor": "middle",
      transform: `rotate(-90 12 ${(T + H - B) / 2})` }, yl));
  }
  x(v: number): number { return L + ((v - this.x0) / (this.x1 - this.x0 || 1)) * (W - L - R); }
  y(v: number): number { return H - B - ((v - this.y0) / (this.y1 - this.y0 || 1)) * (H - T - B); }
  line(xs: number[], ys: number[], stroke: string, extra: Record<string, string | number> = {}): void {
    const pts = xs.map((v, i) => `${this.x(v)},${this.y(ys[i])}`).join(" ");
    this.svg.appendChild(el("polyline", { points: pts, fill: "none", stroke, "stroke-width": 2, ...extra }));
  }
}

export function machinePlot(d: Json): SVGSVGElement {
  const qs: number[] = d.cases.flatMap((c: Json) => c.q).concat(d.points.map((p: Json) => p.q));
  const hs: number[] = d.cases.flatMap((c: Json) => c.h).concat(d.points.map((p: Json) => p.h));
  const c = new Chart(0, nice(Math.max(...qs, 0)), 0, nice(Math.max(...hs, 0)), `Flow (${d.x})`, `Head (${d.y})`);
  d.cases.forEach((k: Json, i: number) => {
    const colour = COLOURS[i % COLOURS.length];
    c.line(k.q, k.h, colour, { "data-case": k.case, class: "head" });
    // Efficiency on the same frame, 0 to 1 over the head axis.
    if (k.eff.some((e: number) => e > 0))
      c.line(k.q, k.eff.map((e: number) => (e > 1 ? e / 100 : e) * c.y1), colour, { "stroke-dasharray": "6 4", class: "eff" });
    if (k.npshr.length) c.line(k.q, k.npshr, colour, { "stroke-dasharray": "2 3", class: "npshr" });
  });
  d.points.forEach((p: Json, i: number) => {
    c.svg.appendChild(el("circle", { cx: c.x(p.q), cy: c.y(p.h), r: 5, fill: COLOURS[i % COLOURS.length],
      class: "operating", "data-case": p.case }));
    c.svg.appendChild(el("text", { x: c.x(p.q) + 7, y: c.y(p.h) - 7, "font-size": 10 }, `Case ${p.case}`));
  });
  c.svg.appendChild(el("text", { x: W - R, y: T + 12, "font-size": 10, "text-anchor": "end" },
    "head solid, efficiency dashed (0-1), NPSHR dotted"));
  return c.svg;
}

export function profilePlot(d: Json): SVGSVGElement {
  const ps: number[] = d.lines.flatMap((l: Json) => [l.p0, l.p1]);
  const xs: number[] = d.lines.map((l: Json) => l.x1);
  const lo = Math.min(...ps, 0), hi = Math.max(...ps, 0);
  const c = new Chart(0, nice(Math.max(...xs, 1)), lo < 0 ? -nice(-lo) : 0, nice(hi), `Length along the path (${d.x})`,
    `Pressure (${d.y})`);
  const px: number[] = [], py: number[] = [];
  for (const l of d.lines) {
    px.push(l.x0, l.x1);
    py.push(l.p0, l.p1);
  }
  c.line(px, py, "#888");
  for (const l of d.lines) {
    if (l.this) c.line([l.x0, l.x1], [l.p0, l.p1], "#c0392b", { "stroke-width": 4, class: "this" });
    c.svg.appendChild(el("text", { x: c.x((l.x0 + l.x1) / 2), y: c.y(Math.max(l.p0, l.p1)) - 6, "font-size": 9,
      "text-anchor": "middle" }, l.name));
  }
  return c.svg;
}
