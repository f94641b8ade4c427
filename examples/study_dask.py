"""2,000 cases of examples/pump_loop.vdf (pump speed and control valve
opening) on a local Dask cluster; the same call takes the Client of any
cluster.

    python3 examples/study_dask.py
"""

import time
from pathlib import Path

from distributed import Client, LocalCluster

import velm

here = Path(__file__).resolve().parent
project = velm.open(here / "pump_loop.vdf")
cases = []
for k in range(2000):
    cases.append({"case": k, "kind": "pumps", "item": "P-101", "attribute": "speed", "value": 2200 + (k % 40) * 20})
    cases.append({"case": k, "kind": "valves", "item": "FV-101", "attribute": "open", "value": "%d;%d" % (
        30 + k // 40, 40 + k // 40)})

if __name__ == "__main__":
    with LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as cluster, Client(cluster) as client:
        start = time.perf_counter()
        results = velm.study(project, cases, client=client)
        seconds = time.perf_counter() - start
    failed = sum(1 for r in results.values() if isinstance(r, str))
    print("%d cases in %.1f s (%.0f cases/s), %d did not converge" % (len(results), seconds, len(results) / seconds,
                                                                     failed))
