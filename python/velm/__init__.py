"""Velm Hydraulics as a Python package: open a project, change its items,
run it, read the results as pandas tables, and run case studies on every
core or on a Dask cluster.

    import velm
    p = velm.open("examples/pump_loop.vdf")
    p.pumps["P-101"].speed = 2600
    r = p.run()
    r.lines            # one row a line, columns with their display units
"""

import functools
import json
import os
import tempfile

import pandas as pd

from . import _velm
from .study import study  # noqa: F401  (part of the package's interface)

__all__ = ["open", "new", "from_bytes", "Project", "Result", "InputError", "NotConverged", "study"]


class InputError(ValueError):
    """A project file that cannot be read, or a change that names no item or key."""


class NotConverged(RuntimeError):
    """A run whose case did not converge, or that the network refused."""

    def __init__(self, message, result):
        super().__init__(message)
        self.result = result


# Item kinds: the attribute of a project, the section of the project file and
# the attributes of an item with the key and value items they set.
def _text(key, unit=None):
    return lambda item, v: [str(v)] + ([unit] if unit else [])


def _pair(key, unit=None):
    return lambda item, v: [str(v), 0] + ([unit] if unit else [])


_KINDS = {
    "lines": ("\\PIPE", {
        "dia": ("DIA", lambda item, v: [str(v), "", "inch"]),
        "sch": ("SCH", _text("SCH")),
        "mat": ("MAT", _text("MAT")),
        "length": ("LEN", lambda item, v: [float(v), "m"]),
        "flow": ("TFLOW", _pair("TFLOW", "t/h")),
    }),
    "feeds": ("\\FEED", {"pres": ("PRES", _pair("PRES", "kPag")), "dp": ("DP", _pair("DP", "kPag"))}),
    "prods": ("\\PROD", {"pres": ("PRES", _pair("PRES", "kPag")), "dp": ("DP", _pair("DP", "kPag"))}),
    "pumps": ("\\PUMP", {
        "speed": ("CURRPM", lambda item, v: [item.get("CURRPM")[0], float(v), "rpm"]),
        "impeller": ("CURDIA", lambda item, v: [item.get("CURDIA")[0], float(v), "m"]),
        "dp": ("DP", _pair("DP", "kPag")),
    }),
    "valves": ("\\VALVE", {"cv": ("CV", _pair("CV")), "open": ("OPEN", _pair("OPEN")), "dp": ("DP", _pair("DP", "kPag"))}),
    "vessels": ("\\VESSEL", {"pres": ("PRES", _pair("PRES", "kPag"))}),
    "juncs": ("\\JUNC", {"pres": ("PRES", _pair("PRES", "kPag"))}),
}


def _item_text(value):
    if isinstance(value, str):
        return '"%s"' % value
    return repr(float(value)) if isinstance(value, float) else str(value)


class Item:
    """One record of a project, by kind and name. Attributes of its kind set
    keys of the project file; set(key, *values) and get(key) reach any key."""

    def __init__(self, project, section, name, attributes):
        object.__setattr__(self, "_project", project)
        object.__setattr__(self, "_section", section)
        object.__setattr__(self, "_name", name)
        object.__setattr__(self, "_attributes", attributes)

    def set(self, key, *values):
        self._project.set(self._section, self._name, key, *values)

    def get(self, key):
        try:
            return self._project._core.get(self._section, self._name, key)
        except ValueError as e:
            raise InputError(str(e)) from None

    def __setattr__(self, attr, value):
        if attr not in self._attributes:
            raise AttributeError("%s has no attribute %r; use set(KEY, ...) for other keys" % (self._section, attr))
        key, items = self._attributes[attr]
        self.set(key, *items(self, value))

    def __getattr__(self, attr):
        if attr not in self._attributes:
            raise AttributeError(attr)
        return self.get(self._attributes[attr][0])


class Items:
    def __init__(self, project, section, attributes):
        self._project, self._section, self._attributes = project, section, attributes

    def __getitem__(self, name):
        return Item(self._project, self._section, name, self._attributes)


class Result:
    """A run: whether every case converged, the iterations of each, the run
    log's lines, the warnings of each case, and the lines' results: of the
    last case in lines, of each case in case_lines[case number]."""

    def __init__(self, raw, lines):
        self.converged = raw["converged"]
        self.cases = raw["cases"]
        self.iterations = [c["iterations"] for c in raw["cases"]]
        self.log = [line for line in raw["log"].split("\r\n") if line]
        self.warnings = [w for c in raw["cases"] for w in c["warnings"]]
        self.title = raw["title"]
        self.message = raw["message"]
        self._lines = lines

    # The tables are built when first asked for: a study reads one of them.
    @functools.cached_property
    def case_lines(self):
        return {c["case"]: pd.DataFrame(c["lines"]).set_index("name") for c in self.cases}

    @functools.cached_property
    def lines(self):
        return pd.DataFrame(self._lines).set_index("name")

    def to_json(self):
        return json.dumps({"converged": self.converged, "cases": self.cases, "title": self.title,
                           "lines": json.loads(self.lines.reset_index().to_json(orient="records"))})


class Project:
    """A project held by the engine."""

    def __init__(self, core):
        self._core = core
        for kind, (section, attributes) in _KINDS.items():
            setattr(self, kind, Items(self, section, attributes))

    def set(self, section, name, key, *values):
        line = ",".join(['"%s"' % section, '"%s"' % name, '"%s"' % key] + [_item_text(v) for v in values])
        try:
            self._core.apply(line + "\r\n")
        except ValueError as e:
            raise InputError(str(e)) from None

    _FLASH_TYPES = {"TP": 1, "PF": 2, "PH": 3, "PS": 4, "TF": 5}

    def flash(self, components, z, type="TP", T=0.0, P=0.0, LF=0.0, H=0.0, S=0.0):
        """One flash of the own engine with the project's methods: T in K, P in
        kPa absolute, LF the liquid weight fraction, H kJ/kg, S kJ/kg/K; a value
        the type does not fix is the start of its search. Returns the stream's
        fields (T, P, LF, VF, H, S, densities, viscosities, Z, X, Y)."""
        try:
            return self._core.flash(list(components), list(z), self._FLASH_TYPES[type.upper()], T, P, LF, H, S)
        except (ValueError, KeyError) as e:
            raise InputError(str(e)) from None

    def save(self, path):
        self._core.save(str(path))

    def copy(self):
        """An independent copy of the project, made without writing and reading it."""
        return Project(self._core.copy())

    def to_bytes(self):
        return self._core.bytes()

    def run(self, mode="hydraulics", max_iter=None, tolerance=None, solver="successive", out_dir=None):
        modes = {"hydraulics": 1, "hmb": 2, "both": 3}
        if mode not in modes:
            raise InputError("mode %r: hydraulics, hmb or both" % mode)
        with tempfile.TemporaryDirectory() as scratch:
            raw = self._core.run(max_iter or 0, tolerance or 0.0, solver, str(out_dir or scratch), modes[mode])
        result = Result(raw, self._core.line_results())
        if not result.converged:
            its = ", ".join(str(i) for i in result.iterations) or "no"
            raise NotConverged("%s (iterations: %s) %s" % (result.title, its, result.message.replace("\r\n", " ")),
                               result)
        return result


def open(path):  # noqa: A001  (the package's own open, as velm.open)
    """Opens a project file; InputError with the reader's words when it cannot be read."""
    try:
        return Project(_velm.open(os.fspath(path)))
    except ValueError as e:
        raise InputError(str(e)) from None


def new():
    return Project(_velm.new())


def from_bytes(data):
    try:
        return Project(_velm.from_bytes(data))
    except ValueError as e:
        raise InputError(str(e)) from None
