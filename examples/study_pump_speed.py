"""A case study: the transfer pump of examples/pump_loop.vdf at 200 speeds
from 2,000 to 2,995 rpm, run on every core, and the flow it delivers against
its speed drawn to study_pump_speed.png.

    python3 examples/study_pump_speed.py [OUT.png]
"""

import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402

import velm  # noqa: E402

here = Path(__file__).resolve().parent
project = velm.open(here / "pump_loop.vdf")
speeds = [2000 + 5 * k for k in range(200)]
cases = [{"case": k, "kind": "pumps", "item": "P-101", "attribute": "speed", "value": s} for k, s in enumerate(speeds)]
results = velm.study(project, cases)
flows = [results[k].loc["D-102", "flow_kg_h"] / 1000.0 for k in range(len(speeds))]

fig, ax = plt.subplots(figsize=(6, 4))
ax.plot(speeds, flows)
ax.set_xlabel("Pump speed (rpm)")
ax.set_ylabel("Flow (t/h), case RATED")
ax.set_title("P-101: flow against speed (200 cases)")
ax.grid(True)
out = sys.argv[1] if len(sys.argv) > 1 else "study_pump_speed.png"
fig.savefig(out, dpi=100, bbox_inches="tight")
print("%d cases; flow %.1f to %.1f t/h; %s" % (len(speeds), min(flows), max(flows), out))
