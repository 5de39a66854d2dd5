"""Writes the description of the library as declarations of Python's ctypes."""
import re

HEAD = '''\
"""Records, constants and prototypes of VXMGMT.DLL. Made from its headers by describe.py; not edited.

Importing this needs neither the library nor Windows.
"""
# fmt: off
# ruff: noqa
from __future__ import annotations

import ctypes
from ctypes import (CFUNCTYPE, POINTER, Structure, Union, c_char, c_char_p, c_int8, c_int16,
                    c_int32, c_int64, c_uint8, c_uint16, c_uint32, c_uint64, c_void_p)
from typing import Any, Callable, Dict
'''


def ctype(one):
    """The expression of a type."""
    if "count" in one:
        base = ctype({key: value for key, value in one.items() if key != "count"})
        for count in reversed(one["count"]):
            base += f" * {count}"
        return base
    if "function" in one:
        return function_type(one["function"])
    if "callback" in one:
        return one["callback"]
    base = one.get("record") or ("None" if one["base"] == "void" else f'c_{one["base"]}')
    if one.get("pointer"):
        return {"None": "c_void_p", "c_char": "c_char_p" if one.get("const") else "POINTER(c_char)"}.get(
            base, f"POINTER({base})")
    return base


def function_type(one):
    return f'CFUNCTYPE({", ".join(map(ctype, [one["returns"], *one["parameters"]]))})'


def annotation(one):
    """What a type checker sees when a field is read."""
    if "count" in one:
        return "bytes" if one.get("base") == "char" else "ctypes.Array[Any]"
    if "function" in one or "callback" in one or one.get("pointer"):
        return "Any"
    return one.get("record", "int")


def returned(one):
    if one.get("base") == "void" and not one.get("pointer"):
        return "None"
    return "Any" if one.get("pointer") else "int"


def record(one):
    lines = [f'class {one["name"]}({"Union" if one["kind"] == "union" else "Structure"}):',
             f'    """{one["size"]} bytes."""']
    lines += [f'    {field["name"]}: {annotation(field["type"])}' for field in one["fields"]]
    if one["align"] == 1:
        lines.append("    _pack_ = 1")
    lines.append("    _fields_ = [")
    lines += [f'        ("{field["name"]}", {ctype(field["type"])}),' for field in one["fields"]]
    return "\n".join([*lines, "    ]"])


def text(description):
    statuses = {name: value for name, value in description["constants"].items()
                if name.startswith("HXMGT_")}
    parts = [HEAD.rstrip("\n"), ""]
    for name, value in description["constants"].items():
        parts.append(f"{name} = {value if value < 4096 else hex(value)}")
    parts += ["", "# The names of the statuses.", "STATUS_NAMES: Dict[int, str] = {"]
    parts += [f'    {value:#010x}: "{name}",' for name, value in statuses.items()]
    parts += ["}", ""]
    for one in description["callbacks"]:
        if not re.match("HBA_", one["name"]):
            parts += ["", f'{one["name"]} = {function_type(one)}', ""]
    for one in description["records"]:
        parts += ["", record(one), ""]
    for one in description["callbacks"]:
        if re.match("HBA_", one["name"]):
            parts += ["", f'{one["name"]} = {function_type(one)}', ""]
    parts += ["", "class Functions:",
              '    """The exports of a loaded library, each with its prototype from its first use on."""', ""]
    parts += [f'    {one["name"]}: Callable[..., {returned(one["returns"])}]' for one in description["functions"]]
    parts += ["", "    def __init__(self, library: Any) -> None:",
              "        self._library = library", "",
              "    def __getattr__(self, name: str) -> Any:",
              "        if name not in PROTOTYPES:",
              '            raise AttributeError(f"{name} is no export of the library")',
              "        function = getattr(self._library, name)",
              "        function.restype, function.argtypes = PROTOTYPES[name]",
              "        setattr(self, name, function)",
              "        return function", "", "",
              "# Of a function with further arguments, those before them.",
              "PROTOTYPES: Dict[str, Any] = {"]
    for one in description["functions"]:
        arguments = ", ".join(ctype(parameter["type"]) for parameter in one["parameters"])
        parts.append(f'    "{one["name"]}": ({ctype(one["returns"])}, [{arguments}]),')
    parts += ["}", ""]
    return re.sub(r"\n{4,}", "\n\n\n", "\n".join(parts))
