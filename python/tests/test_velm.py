"""The Python package as a script writer meets it: the same numbers as the
command line, the program's messages as exceptions, changes by case string,
and studies that give what sequential runs give."""

import os
import subprocess
from pathlib import Path

import pytest

import velm

ROOT = Path(__file__).resolve().parents[2]
EXAMPLES = ROOT / "examples"
VELM_EXE = Path(os.environ.get("VELM_EXE", ROOT / "build" / "velm"))


def saved_flows(path):
    """Line name -> TFLOW value (t/h) of a saved project file."""
    names, flows = {}, {}
    for raw in Path(path).read_text(encoding="cp1252").splitlines():
        items = [i.strip().strip('"') for i in raw.split(",")]
        if len(items) > 3 and items[0] == "\\PIPE" and items[1] != "0":
            if items[2] == "NAME":
                names[items[1]] = items[3]
            elif items[2] == "TFLOW":
                flows[items[1]] = float(items[4])
    return {names[k]: v for k, v in flows.items()}


@pytest.mark.parametrize("example", ["gravity_transfer.vdf", "cooling_water_loop.vdf", "pump_loop.vdf"])
def test_a_run_gives_the_numbers_of_the_command_line(example, tmp_path):
    subprocess.run([str(VELM_EXE), "run", str(EXAMPLES / example), "--out", str(tmp_path), "--save",
                    str(tmp_path / "saved.vdf")], check=True, capture_output=True)
    expected = saved_flows(tmp_path / "saved.vdf")
    r = velm.open(EXAMPLES / example).run()
    assert r.converged
    for name, flow in expected.items():
        assert r.lines.loc[name, "flow_kg_h"] == flow * 1000.0, name


def test_a_run_with_balance_gives_the_numbers_of_the_command_line(tmp_path):
    example = EXAMPLES / "condensate_flash_drum.vdf"
    subprocess.run([str(VELM_EXE), "run", str(example), "--mode", "both", "--out", str(tmp_path), "--save",
                    str(tmp_path / "saved.vdf")], check=True, capture_output=True)
    expected = saved_flows(tmp_path / "saved.vdf")
    r = velm.open(example).run(mode="both")
    assert r.converged
    for name, flow in expected.items():
        assert r.lines.loc[name, "flow_kg_h"] == flow * 1000.0, name
    # The balance alone on the saved state reaches its report.
    assert velm.open(tmp_path / "saved.vdf").run(mode="hmb").converged


def test_a_bad_file_raises_input_error_with_the_readers_words(tmp_path):
    bad = tmp_path / "bad.vdf"
    bad.write_bytes(b'"VELM_9.1"\r\n')
    with pytest.raises(velm.InputError, match="Cannot read VELM version 9.1 data files"):
        velm.open(bad)
    with pytest.raises(velm.InputError, match="File does not exist"):
        velm.open(tmp_path / "none.vdf")
    p = velm.open(EXAMPLES / "pump_loop.vdf")
    with pytest.raises(velm.InputError, match="no such item"):
        p.lines["NOPE"].dia = "6"


def test_a_case_that_does_not_converge_raises_with_its_iterations():
    p = velm.open(EXAMPLES / "cooling_water_loop.vdf")
    with pytest.raises(velm.NotConverged, match="NOT reached after 2 iterations") as e:
        p.run(max_iter=2)
    assert e.value.result.iterations == [2]
    assert p.run(max_iter=50, solver="newton").iterations[0] < p.run(max_iter=50).iterations[0]


def test_fields_set_by_case_string_round_trip(tmp_path):
    p = velm.open(EXAMPLES / "pump_loop.vdf")
    p.lines["D-104"].flow = "80;;E"
    p.lines["D-104"].dia = "6"
    p.pumps["P-101"].speed = 2600
    assert p.lines["D-104"].flow[:2] == ["80;;E", "0"]
    p.save(tmp_path / "changed.vdf")
    again = velm.open(tmp_path / "changed.vdf")
    assert again.lines["D-104"].flow[0] == "80;;E"
    assert again.lines["D-104"].dia[0] == "6"
    assert again.pumps["P-101"].speed == ["2950", "2600", "rpm"]


def test_a_slower_pump_moves_less_water():
    p = velm.open(EXAMPLES / "pump_loop.vdf")
    full = p.run().lines.loc["D-102", "flow_kg_h"]
    slower = p.copy()
    slower.pumps["P-101"].speed = 2400
    assert slower.run().lines.loc["D-102", "flow_kg_h"] < 0.9 * full
    # The copy is the project's own: the original runs as before (from its
    # last results, so to the run's tolerance).
    assert p.pumps["P-101"].speed[1] != "2400"
    assert p.run().lines.loc["D-102", "flow_kg_h"] == pytest.approx(full, rel=1e-6)


def _speed_cases(n):
    return [{"case": k, "kind": "pumps", "item": "P-101", "attribute": "speed", "value": 2000 + 20 * k}
            for k in range(n)]


def _sequential(project, cases):
    out = {}
    for c in cases:
        p = velm.from_bytes(project.to_bytes())
        setattr(getattr(p, c["kind"])[c["item"]], c["attribute"], c["value"])
        out[c["case"]] = p.run().lines
    return out


def test_a_study_on_a_pool_and_on_dask_gives_the_sequential_results():
    project = velm.open(EXAMPLES / "pump_loop.vdf")
    cases = _speed_cases(50)
    expected = _sequential(project, cases)
    on_pool = velm.study(project, cases, workers=2)
    distributed = pytest.importorskip("distributed")
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                  dashboard_address=None) as cluster, distributed.Client(cluster) as client:
        on_dask = velm.study(project, cases, client=client)
    for c in cases:
        k = c["case"]
        assert on_pool[k].equals(expected[k]), k
        assert on_dask[k].equals(expected[k]), k


def test_a_flash_gives_what_the_command_line_flash_gives():
    import json
    out = subprocess.run([str(VELM_EXE), "flash", "--comp", "methane,propane", "--z", "0.6,0.4", "--type", "PF",
                          "--P", "3000", "--LF", "0", "--json"], check=True, capture_output=True, text=True).stdout
    expected = json.loads(out)
    got = velm.new().flash(["methane", "propane"], [0.6, 0.4], "PF", P=3000, LF=0)
    for key in ("T", "P", "LF", "VF", "H", "S", "VAPDEN"):
        assert got[key] == expected[key], key
    assert got["Y"] == expected["Y"]
    with pytest.raises(velm.InputError, match="no component unobtainium"):
        velm.new().flash(["unobtainium"], [1.0])


def test_a_projects_pseudo_component_flashes_as_on_the_command_line(tmp_path):
    import json
    project = tmp_path / "pseudo.vdf"
    project.write_bytes(b'"VELM_3.2"\r\n"\\PSEUDO",0,"NUM",1\r\n"\\PSEUDO",1,"NAME",9001,9001,"PSEUDO_1",""\r\n'
                        b'"\\PSEUDO",1,"TBP",447.3,0,"K"\r\n"\\PSEUDO",1,"DENS",734,0,"kg/m3"\r\n')
    out = subprocess.run([str(VELM_EXE), "flash", "--project", str(project), "--comp", "heptane,PSEUDO_1", "--z",
                          "0.5,0.5", "--type", "PF", "--P", "101.325", "--LF", "1", "--json"],
                         check=True, capture_output=True, text=True).stdout
    got = velm.open(project).flash(["heptane", "pseudo_1"], [0.5, 0.5], "PF", P=101.325, LF=1)
    assert got["T"] == json.loads(out)["T"]
