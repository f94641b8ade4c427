#!/usr/bin/python3
"""Writes one grid network twice: as a Velm project (.vdf) and as an EPANET
input file (.inp, the text format of the EPANET 2 manual, Rossman 2000,
appendix C), so that anyone with EPANET can compare the two programs on the
same network.

    /usr/bin/python3 tools/grid_networks.py ROWS COLS OUT [--sparse]

writes OUT.vdf and OUT.inp: a ROWS x COLS grid of junctions 100 m apart joined
by pipes of 0.3 m bore (roughness 0.045 mm, Darcy-Weisbach), water at 20 C,
two reservoirs at opposite corners (40 m and 38 m of head) and 100 L/s of
demand spread evenly over the junctions. --sparse keeps every row, the first
and last columns and about 15 % of the other vertical pipes. In the .vdf a
demand is a 1 m line of the same bore from its junction to a product, with
its flow given; a reservoir is a feed whose pressure is its head of water.
"""

import argparse

RHO, G = 998.2, 9.80665          # kg/m3 (water at 20 C), m/s2
DEMAND_TOTAL = 0.1               # m3/s
HEADS = (40.0, 38.0)             # m of water at the two reservoirs


def grid(rows, cols, sparse):
    node = lambda r, c: r * cols + c + 1
    pipes = []
    for r in range(rows):
        for c in range(cols):
            if c + 1 < cols:
                pipes.append((node(r, c), node(r, c + 1)))
            keep = not sparse or c == 0 or c + 1 == cols or (r * cols + c) % 7 == 0
            if r + 1 < rows and keep:
                pipes.append((node(r, c), node(r + 1, c)))
    return node(0, 0), node(rows - 1, cols - 1), pipes


def write_inp(path, rows, cols, pipes, corners):
    n = rows * cols
    demand = DEMAND_TOTAL * 1000.0 / n
    with open(path, "w") as f:
        f.write("[TITLE]\nGrid %d x %d\n\n[JUNCTIONS]\n" % (rows, cols))
        for j in range(1, n + 1):
            f.write("J%d\t0\t%.6f\n" % (j, demand))
        f.write("\n[RESERVOIRS]\nR1\t%.3f\nR2\t%.3f\n\n[PIPES]\n" % HEADS)
        for k, (a, b) in enumerate(pipes, 1):
            f.write("P%d\tJ%d\tJ%d\t100\t300\t0.045\t0\tOpen\n" % (k, a, b))
        f.write("PR1\tR1\tJ%d\t1\t300\t0.045\t0\tOpen\n" % corners[0])
        f.write("PR2\tR2\tJ%d\t1\t300\t0.045\t0\tOpen\n" % corners[1])
        f.write("\n[OPTIONS]\nUnits\tLPS\nHeadloss\tD-W\nViscosity\t1.0\nAccuracy\t0.001\n\n[END]\n")


def write_vdf(path, rows, cols, pipes, corners):
    n = rows * cols
    flow = DEMAND_TOTAL * RHO * 3.6 / n          # t/h at each junction
    lines = [(a, b, 100.0, None) for a, b in pipes]
    feeds = []
    for corner, head in zip(corners, HEADS):
        lines.append((0, corner, 1.0, None))
        feeds.append((len(lines), head * RHO * G / 1000.0))  # kPag
    prods = []
    for j in range(1, n + 1):
        lines.append((j, 0, 1.0, flow))
        prods.append(len(lines))
    ins = {j: [] for j in range(1, n + 1)}
    outs = {j: [] for j in range(1, n + 1)}
    for k, (a, b, _, _) in enumerate(lines, 1):
        if a:
            outs[a].append(k)
        if b:
            ins[b].append(k)
    out = ['"VELM_3.2"', '"\\GEN",0,"PRJ","Velm Hydraulics","Grid","%d x %d junctions",""' % (rows, cols),
           '"\\GEN",0,"CASENO","1"', '"\\PIPE",0,"TEMP",20,20,20,"C"', '"\\PIPE",0,"LIQDEN",998.2,998.2,998.2,"kg/m3"',
           '"\\PIPE",0,"LIQVISC",1.002,1.002,1.002,"cP"', '"\\PIPE",0,"MAT","Steel"', '"\\PIPE",0,"SCH","ID"',
           '"\\PIPE",0,"ID","0.3",0.3,"m"', '"\\PIPE",0,"E","4.5E-05",""', '"\\PIPE",0,"NUM",%d' % len(lines)]
    for k, (_, _, length, w) in enumerate(lines, 1):
        out.append('"\\PIPE",%d,"NAME","L%d",""' % (k, k))
        out.append('"\\PIPE",%d,"LEN",%g,"m"' % (k, length))
        if w is not None:
            out.append('"\\PIPE",%d,"TFLOW","%.9g",0,"t/h"' % (k, w))
    out.append('"\\FEED",0,"NUM",%d' % len(feeds))
    for i, (line, p) in enumerate(feeds, 1):
        out += ['"\\FEED",%d,"NAME","R%d",""' % (i, i), '"\\FEED",%d,"NOZ",%d,0,"m",0,0,0,"kPag"' % (i, line),
                '"\\FEED",%d,"PRES","%.6f",0,"kPag"' % (i, p)]
    out.append('"\\PROD",0,"NUM",%d' % len(prods))
    for i, line in enumerate(prods, 1):
        out += ['"\\PROD",%d,"NAME","D%d",""' % (i, i), '"\\PROD",%d,"NOZ",%d,0,"m",0,0,0,"kPag"' % (i, line),
                '"\\PROD",%d,"PRES","",0,"kPag"' % i]
    out.append('"\\JUNC",0,"NUM",%d' % n)
    for j in range(1, n + 1):
        out.append('"\\JUNC",%d,"NAME","J%d",""' % (j, j))
        for port, k in enumerate(ins[j], 1):
            out.append('"\\JUNC",%d,"NOZI",%d,%d,0,"m"' % (j, port, k))
        for port, k in enumerate(outs[j], 1):
            out.append('"\\JUNC",%d,"NOZO",%d,%d,0,"m"' % (j, port, k))
    with open(path, "w", newline="\r\n") as f:
        f.write("\n".join(out) + "\n")


def main():
    ap = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    ap.add_argument("rows", type=int)
    ap.add_argument("cols", type=int)
    ap.add_argument("out")
    ap.add_argument("--sparse", action="store_true")
    a = ap.parse_args()
    first, last, pipes = grid(a.rows, a.cols, a.sparse)
    write_inp(a.out + ".inp", a.rows, a.cols, pipes, (first, last))
    write_vdf(a.out + ".vdf", a.rows, a.cols, pipes, (first, last))
    print("%s.vdf and %s.inp: %d junctions, %d pipes" % (a.out, a.out, a.rows * a.cols, len(pipes)))


if __name__ == "__main__":
    main()
