#!/usr/bin/python3
"""Writes data/pipeid.lib, the pipe table installed with the program.

Sources
-------
* ASME B36.10M, Welded and Seamless Wrought Steel Pipe: schedules 10, 20, 30,
  STD, 40, 60, XS, 80, 100, 120, 140, 160, XXS, and the outside diameters of
  Table 1 (in inches; NPS 14 and above: OD = NPS).
* ASME B36.19M, Stainless Steel Pipe: schedules 5S, 10S, 40S, 80S.
* ASTM D1785, Poly(Vinyl Chloride) (PVC) Plastic Pipe, Schedules 40, 80 and
  120 (iron pipe size outside diameters).
  The wall thicknesses of all three come from the tables of these standards as
  carried by the Python library `fluids` (module fluids.piping, Debian package
  python3-fluids), which stores them in millimetres.
* Roughness: L. F. Moody, "Friction factors for pipe flow", Trans. ASME 66
  (1944) 671-684: commercial steel or wrought iron 0.00015 ft (4.57e-05 m);
  drawn tubing 0.000005 ft (1.52e-06 m), the value taken for smooth plastic
  pipe.

The standards define the dimensions in inches; their millimetre columns are
rounded conversions. This script therefore takes each wall back to inches (to
the 0.001 in of the standards), forms ID = OD - 2 t in inches, and stores the
diameters in metres (1 in = 0.0254 m exactly). So 2 in schedule 80 gives
ID 1.939 in = 49.25 mm, as the inch table reads, rather than the 49.22 mm of
the rounded metric columns.

Run with Debian's /usr/bin/python3:  /usr/bin/python3 tools/gen_pipeid.py
The output is deterministic: the same library gives the same bytes.
"""

import os
import sys

from fluids.piping import schedule_lookup

INCH = 0.0254  # m, exact

# ASME B36.10M Table 1: outside diameter in inches of the sizes below NPS 14.
OD_INCH = {
    0.125: 0.405, 0.25: 0.540, 0.375: 0.675, 0.5: 0.840, 0.75: 1.050,
    1: 1.315, 1.25: 1.660, 1.5: 1.900, 2: 2.375, 2.5: 2.875, 3: 3.500,
    3.5: 4.000, 4: 4.500, 5: 5.563, 6: 6.625, 8: 8.625, 10: 10.750,
    12: 12.750,
}

# The sizes below 1 inch keep their fraction names; the intermediate sizes
# above are written as decimals ("1.5", not "1-1/2") so that every size name
# reads as its number of inches where a size text is taken as a number.
SIZE_NAMES = {0.125: "1/8", 0.25: "1/4", 0.375: "3/8", 0.5: "1/2", 0.75: "3/4",
              1.25: "1.25", 1.5: "1.5", 2.5: "2.5", 3.5: "3.5"}

MAX_SIZES = 50
MAX_SCHEDULES = 20

# Sizes offered to the user but skipped when a line is sized: 1/8 to 3/8 are
# instrument and vent connections rather than line sizes, and 1.25, 2.5,
# 3.5 and 5 are the intermediate sizes that plant piping classes leave out
# because their fittings, flanges and valves are seldom stocked.
NON_STANDARD = "1/8;1/4;3/8;1.25;2.5;3.5;5"

MATERIALS = [
    {
        "name": "Steel",
        "notes": "Carbon steel pipe, walls of ASME B36.10M and B36.19M; roughness Moody (1944)",
        "roughness": 4.57e-05,
        "schedules": [("5S", "5S"), ("10S", "10S"), ("40S", "40S"), ("80S", "80S"),
                      ("10", "10"), ("20", "20"), ("30", "30"), ("STD", "STD"),
                      ("40", "40"), ("60", "60"), ("XS", "XS"), ("80", "80"),
                      ("100", "100"), ("120", "120"), ("140", "140"), ("160", "160"),
                      ("XXS", "XXS")],
        "init": ("2", "40"),
        # Default schedule by outside or nominal diameter (m): schedule 80 below
        # 2 in, where small-bore threaded and socket-welded lines need the
        # thicker wall for strength; schedule 40 from 2 to 10 in, where it is
        # the standard weight; STD from 12 in (nominal 0.3048 m, while 10 in
        # has an OD of 0.273 m), where schedule 40 grows heavier than the
        # standard weight that large bore lines are built in. The last limit
        # lies above the largest size.
        "size_sch": [(0.05, "80"), (0.3, "40"), (1.5, "STD")],
    },
    {
        "name": "Stainless",
        "notes": "Stainless steel pipe, ASME B36.19M; roughness Moody (1944)",
        "roughness": 4.57e-05,
        "schedules": [("5S", "5S"), ("10S", "10S"), ("40S", "40S"), ("80S", "80S")],
        "init": ("2", "10S"),
        # 40S for small bore below 2 in, for strength; 10S from 2 in, as a
        # corrosion resistant material needs no corrosion allowance.
        "size_sch": [(0.05, "40S"), (1.5, "10S"), (1.5, "10S")],
    },
    {
        "name": "PVC",
        "notes": "PVC pipe, ASTM D1785; roughness of drawn tubing, Moody (1944)",
        "roughness": 1.52e-06,
        "schedules": [("40", "40D1785"), ("80", "80D1785"), ("120", "120D1785")],
        "init": ("2", "40"),
        # Schedule 80 below 2 in, where thin plastic walls are easily damaged;
        # schedule 40 above.
        "size_sch": [(0.05, "80"), (0.7, "40"), (0.7, "40")],
    },
]


def size_name(nps):
    if nps in SIZE_NAMES:
        return SIZE_NAMES[nps]
    assert nps == int(nps), nps
    return str(int(nps))


def od_inch(nps):
    return OD_INCH[nps] if nps < 14 else float(nps)


def inches(mm):
    return round(mm / 25.4, 3)


def number(v):
    """A number as the program's item writer puts it: 15 significant digits."""
    return "%.15g" % v


def text(s):
    assert '"' not in s and "\r" not in s and "\n" not in s, s
    return '"' + s + '"'


def material_rows(mat):
    """{nps: [ID in inches or 0, one for each schedule]} with the checks on the data."""
    rows = {}
    for col, (_, key) in enumerate(mat["schedules"]):
        nps_list, _di, do_list, t_list = schedule_lookup[key]
        for nps, do_mm, t_mm in zip(nps_list, do_list, t_list):
            od = od_inch(nps)
            # The metric OD of the standard is the inch OD rounded (to 1 mm for
            # the large sizes): they agree.
            assert abs(od * 25.4 - do_mm) < 0.5, (mat["name"], key, nps, od, do_mm)
            # The metric wall is the inch wall to 0.01 mm (a few are cut rather
            # than rounded, as 1-1/2 XXS: 0.400 in, 10.15 mm): within half of
            # 0.001 in, the inch wall is recovered exactly.
            t = inches(t_mm)
            assert abs(t * 25.4 - t_mm) < 0.0127, (mat["name"], key, nps, t_mm)
            rows.setdefault(nps, [0.0] * len(mat["schedules"]))[col] = round(od - 2.0 * t, 3)
    assert len(rows) <= MAX_SIZES
    return rows


def material_lines(number_in_file, mat):
    lines = []
    lines.append('"Set",%d' % number_in_file)
    lines.append('"Material",' + text(mat["name"]))
    lines.append('"Notes",' + text(mat["notes"]))
    lines.append('"Properties",0,"Units"')
    lines.append('"Properties",0,"Units"')
    lines.append('"Roughness",%s,"m"' % number(mat["roughness"]))
    lines.append('"NonStdSizes",' + text(NON_STANDARD))
    lines.append('"SizeInit",%s,%s' % (text(mat["init"][0]), text(mat["init"][1])))
    pairs = ",".join("%s,%s" % (number(limit), text(sch)) for limit, sch in mat["size_sch"])
    lines.append('"SizeSch",%s,"m"' % pairs)
    lines.append('"IDUnits","m"')
    names = [name for name, _ in mat["schedules"]]
    assert len(names) <= MAX_SCHEDULES
    names += [""] * (MAX_SCHEDULES - len(names))
    lines.append('"Nom","OD",' + ",".join(text(n) for n in names))
    rows = material_rows(mat)
    sizes = sorted(rows)
    for nps in sizes:
        ids = rows[nps] + [0.0] * (MAX_SCHEDULES - len(rows[nps]))
        values = [od_inch(nps) * INCH] + [d * INCH for d in ids]
        lines.append(text(size_name(nps)) + "," + ",".join(number(v) for v in values))
    for _ in range(MAX_SIZES - len(sizes)):
        lines.append('"",' + ",".join(["0"] * (MAX_SCHEDULES + 1)))
    return lines


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    out = os.path.join(root, "data", "pipeid.lib")
    lines = ['"Velm_2.0"', '"Number",%d' % len(MATERIALS)]
    for i, mat in enumerate(MATERIALS, start=1):
        lines += material_lines(i, mat)
    data = ("\r\n".join(lines) + "\r\n").encode("cp1252")
    os.makedirs(os.path.dirname(out), exist_ok=True)
    with open(out, "wb") as f:
        f.write(data)
    print("wrote %s (%d bytes)" % (out, len(data)), file=sys.stderr)


if __name__ == "__main__":
    main()
