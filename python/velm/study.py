"""Case studies: one project run once per case, each case a set of changes,
in worker processes (the engine keeps no global state, so cases are
independent), on every core or on a Dask cluster."""

import concurrent.futures
import os

import pandas as pd


def _changes_by_case(cases):
    """Rows (case, kind, item, attribute, value) into {case: [(kind, item, attribute, value)]}, in order."""
    table = pd.DataFrame(cases)
    out = {}
    for row in table.itertuples(index=False):
        out.setdefault(row.case, []).append((row.kind, row.item, row.attribute, row.value))
    return out


def _run_chunk(project_bytes, chunk, options):
    """Runs the cases of a chunk on copies of the project; returns {case: lines table or error text}."""
    import velm  # in a worker process

    out = {}
    base = velm.from_bytes(project_bytes)
    for case, changes in chunk:
        p = base.copy()
        for kind, item, attribute, value in changes:
            setattr(getattr(p, kind)[item], attribute, value)
        try:
            out[case] = p.run(**options).lines
        except velm.NotConverged as e:
            out[case] = str(e)
    return out


def _chunks(items, size):
    for k in range(0, len(items), size):
        yield items[k:k + size]


def study(project, cases, client=None, workers=None, chunk=None, progress=None, **run_options):
    """Runs project once for each case of cases (rows of case, kind, item,
    attribute, value: e.g. (7, "pumps", "P-101", "speed", 2600)) and returns
    {case: DataFrame of the lines' results}, or the NotConverged text of a
    case that did not converge. With no client the cases run on a local pool
    of processes (workers, default every core); with a dask.distributed
    Client they run on its cluster, in chunks of cases so each task is
    worth sending. progress shows a bar of the chunks done (python3-tqdm) on
    standard error: True, False, or by default when there are more than 200
    cases."""
    data = project.to_bytes()
    by_case = list(_changes_by_case(cases).items())
    size = chunk or max(1, len(by_case) // (4 * (workers or os.cpu_count() or 1)))
    parts = list(_chunks(by_case, size))
    results = {}
    bar = _progress_bar(len(by_case), progress)
    if client is None:
        with concurrent.futures.ProcessPoolExecutor(max_workers=workers) as pool:
            for part in pool.map(_run_chunk, [data] * len(parts), parts, [run_options] * len(parts)):
                results.update(part)
                bar.update(len(part))
    else:
        import distributed

        futures = client.map(_run_chunk, [data] * len(parts), parts, [run_options] * len(parts), pure=False)
        for _, part in distributed.as_completed(futures, with_results=True):
            results.update(part)
            bar.update(len(part))
    bar.close()
    return {case: results[case] for case, _ in by_case}


class _NoBar:
    def update(self, n):
        pass

    def close(self):
        pass


def _progress_bar(total, progress):
    if progress is False or (progress is None and total <= 200):
        return _NoBar()
    import tqdm

    return tqdm.tqdm(total=total, unit="case", desc="velm study")
