"""Writes the description of the library as declarations of Python's ctypes."""

HEAD = '''\
"""Records, constants and prototypes of VXMGMT.DLL. Made from its headers by describe.py; not edited.

Importing this needs neither the library nor Windows.
"""
# fmt: off
# ruff: noqa
from __future__ import annotations

import ctypes as _c
import typing as _t
'''


def ctype(one):
    """The expression of a type."""
    if "count" in one:
        element = ctype({key: value for key, value in one.items() if key != "count"})
        return " * ".join([element, *map(str, reversed(one["count"]))])
    if "function" in one:
        return function_type(one["function"])
    if "callback" in one:
        return one["callback"]
    base = one.get("base")
    if one.get("pointer") and base == "void":
        return "_c.c_void_p"
    if one.get("pointer") and base == "char" and one.get("const"):
        return "_c.c_char_p"
    name = one.get("record") or ("None" if base == "void" else f"_c.c_{base}")
    return f"_c.POINTER({name})" if one.get("pointer") else name


def function_type(one):
    return f'_c.CFUNCTYPE({", ".join(map(ctype, [one["returns"], *one["parameters"]]))})'


def annotation(one):
    """What a type checker sees when a field is read."""
    if "count" in one:
        return "bytes" if one.get("base") == "char" else "_c.Array[_t.Any]"
    if "function" in one or "callback" in one or one.get("pointer"):
        return "_t.Any"
    return one.get("record", "int")


def returned(one):
    if one.get("pointer"):
        return "_t.Any"
    return "None" if one.get("base") == "void" else "int"


def record(one):
    lines = [f'class {one["name"]}(_c.{"Union" if one["kind"] == "union" else "Structure"}):',
             f'    """{one["size"]} bytes."""']
    lines += [f'    {field["name"]}: {annotation(field["type"])}' for field in one["fields"]]
    if one["align"] == 1:
        lines.append("    _pack_ = 1")
    lines.append("    _fields_ = [")
    lines += [f'        ("{field["name"]}", {ctype(field["type"])}),' for field in one["fields"]]
    return [*lines, "    ]"]


def constants(description):
    every = description["constants"]
    return [f"{name} = {value if value < 4096 else hex(value)}" for name, value in every.items()] + [
        "", "# The names of the statuses.", "STATUS_NAMES: _t.Dict[int, str] = {",
        *(f'    {value:#010x}: "{name}",' for name, value in every.items() if name.startswith("HXMGT_")),
        "}"]


def functions(description):
    lines = ["class Functions:",
             '    """The exports of a loaded library, each with its prototype from its first use on."""', ""]
    lines += [f'    {one["name"]}: _t.Callable[..., {returned(one["returns"])}]'
              for one in description["functions"]]
    lines += ["", "    def __init__(self, library: _t.Any) -> None:",
              "        self._library = library", "",
              "    def __getattr__(self, name: str) -> _t.Any:",
              "        if name not in PROTOTYPES:",
              '            raise AttributeError(f"{name} is no export of the library")',
              "        function = getattr(self._library, name)",
              "        function.restype, function.argtypes = PROTOTYPES[name]",
              "        setattr(self, name, function)",
              "        return function", "", "",
              "# Of a function with further arguments, those before them.",
              "PROTOTYPES: _t.Dict[str, _t.Any] = {"]
    for one in description["functions"]:
        arguments = ", ".join(ctype(parameter["type"]) for parameter in one["parameters"])
        lines.append(f'    "{one["name"]}": ({ctype(one["returns"])}, [{arguments}]),')
    return [*lines, "}"]


def text(description):
    callbacks = [f'{one["name"]} = {function_type(one)}' for one in description["callbacks"]]
    parts = [constants(description), *map(record, description["records"]), callbacks, functions(description)]
    return HEAD + "\n" + "\n\n\n".join("\n".join(part) for part in parts) + "\n"
