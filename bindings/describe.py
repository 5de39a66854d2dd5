#!/usr/bin/env python3
"""Describes the public headers for bindings of other languages.

Reads the headers with clang for Windows x64, so that what is described is what a compiler makes of
them: exports with parameters, records with sizes and offsets, callbacks, constants. Writes
vxmgmt.json, and from it the generated files of the bindings.

Usage: describe.py [--layout FILE] [FOLDER]
  FOLDER    where to, instead of beside this file
  --layout  also writes a C source that asserts every size, offset and constant
"""
import argparse
import json
import os
import re
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, HERE)
sys.dont_write_bytecode = True

import write_node  # noqa: E402
import write_python  # noqa: E402

ROOT = os.path.dirname(HERE)
CLANG = ["clang", "--target=x86_64-w64-windows-gnu", "-std=c11", "-I", os.path.join(ROOT, "include")]
HEADERS = "#include <hbaapi.h>\n#include <hxmgtapi.h>\n"
INTEGERS = {
    "int": "int32", "unsigned int": "uint32", "uint32_t": "uint32", "uint16_t": "uint16",
    "uint8_t": "uint8", "uint64_t": "uint64", "int8_t": "int8", "int16_t": "int16",
    "int32_t": "int32", "int64_t": "int64", "char": "char",
}


def clang(source, *options):
    command = [*CLANG, *options, "-x", "c", "-"]
    return subprocess.run(command, input=source, check=True, capture_output=True, text=True).stdout


class Headers:
    """The declarations of the headers, by kind, in their order."""

    def __init__(self):
        tree = json.loads(clang(HEADERS, "-fsyntax-only", "-Xclang", "-ast-dump=json"))["inner"]
        self.exports = self._exports()
        self.aliases, self.callbacks, self.records, self.functions, self.enumerators = {}, {}, {}, {}, []
        for node in tree:
            name = node.get("name", "")
            ours = name.startswith(("HX_", "HXMGT_", "HBA_", "DESTINATION"))
            if node["kind"] == "TypedefDecl" and ours:
                self.aliases[name] = node["type"]["qualType"]
                if "(*)" in self.aliases[name]:
                    self.callbacks[name] = node["type"]["qualType"]
            elif node["kind"] == "RecordDecl" and ours and node.get("completeDefinition"):
                self._add_record(node)
            elif node["kind"] == "EnumDecl" and ours:
                self.enumerators += [one["name"] for one in node["inner"]
                                     if one["kind"] == "EnumConstantDecl"]
            elif node["kind"] == "FunctionDecl" and name in self.exports:
                self.functions[name] = node
        missing = self.exports - set(self.functions)
        if missing:
            sys.exit(f"exported, and declared in no header: {', '.join(sorted(missing))}")

    @staticmethod
    def _exports():
        with open(os.path.join(ROOT, "src", "vxmgmt.def"), encoding="utf-8") as file:
            lines = [line.strip() for line in file]
        return {line for line in lines if re.fullmatch(r"\w+", line) and line != "EXPORTS"}

    def _add_record(self, node, name=None):
        """Adds a record behind those that stand in it without a name."""
        name = name or node["name"]
        inner, fields = None, {}
        for child in node["inner"]:
            if child["kind"] == "RecordDecl":
                inner = child
            elif child["kind"] == "FieldDecl":
                type_name = child["type"]["qualType"]
                if "unnamed" in type_name or "anonymous" in type_name:
                    type_name = f"{name}_{child['name']}"
                    self._add_record(inner, type_name)
                    self.aliases[type_name] = f"{inner['tagUsed']} in {name}.{child['name']}"
                fields[child["name"]] = type_name
        self.records[name] = {"kind": node["tagUsed"], "fields": fields}

    def type_of(self, text):
        """A C type as a description: its base, and whether it is a pointer or an array."""
        match = re.fullmatch(r"(.*?)\s*\(\*\)\((.*)\)", text)
        if match:
            parameters = [] if match[2] == "void" else match[2].split(", ")
            return {"function": {"returns": self.type_of(match[1]),
                                 "parameters": [self.type_of(one) for one in parameters]}}
        array = re.fullmatch(r"(.*?)((?:\[\d+\])+)", text)
        if array:
            count = [int(one) for one in re.findall(r"\d+", array[2])]
            return {**self.type_of(array[1].strip()), "count": count}
        pointer = re.fullmatch(r"(const )?(\w+) \*", text)
        if pointer:
            base = {"base": "void"} if pointer[2] in ("void", "FILE") else self.type_of(pointer[2])
            return {**base, "pointer": True, **({"const": True} if pointer[1] else {})}
        if text == "void" or text in INTEGERS:
            return {"base": INTEGERS.get(text, "void")}
        if text in self.records:
            return {"record": text}
        if text in self.callbacks:
            return {"callback": text}
        if text.startswith("enum "):
            return {"base": "int32"}
        if text in self.aliases:
            return self.type_of(re.sub(r"^(struct|union) ", "", self.aliases[text]))
        sys.exit(f"no description of the C type {text}")

    def macros(self):
        """Constants that are macros, in the order of their names."""
        for line in sorted(clang(HEADERS, "-E", "-dM").splitlines()):
            match = re.fullmatch(r"#define ((?:HX|HBA)_\w+) (.+)", line)
            if match:
                yield match[1]


def evaluated(expressions):
    """What the compiler makes of constant expressions."""
    lines = [f"const unsigned long long v{i} = (unsigned long long)({expression});"
             for i, expression in enumerate(expressions)]
    source = HEADERS + "#include <stddef.h>\n" + "\n".join(lines)
    values = re.findall(r"@v(\d+) = .*constant i64 (-?\d+)", clang(source, "-S", "-emit-llvm", "-o", "-"))
    found = {int(index): int(value) % 2**64 for index, value in values}
    return [found[i] for i in range(len(expressions))]


def described():
    headers = Headers()
    places = []  # (record or field, key, expression)
    records = []
    for name, record in headers.records.items():
        if headers.aliases.get(name, "").find(" in ") > 0:
            outer, member = headers.aliases[name].split(" in ")[1].split(".")
            expression = f"(({outer} *)0)->{member}"
            offset = f"offsetof({outer}, {member}.%s) - offsetof({outer}, {member})"
        else:
            expression, offset = name, f"offsetof({name}, %s)"
        one = {"name": name, "kind": record["kind"], "fields": []}
        places += [(one, "size", f"sizeof({expression})"), (one, "align", f"__alignof__({expression})")]
        for field, type_name in record["fields"].items():
            of = {"name": field, "type": headers.type_of(type_name)}
            places += [(of, "offset", offset % field),
                       (of, "size", f"sizeof((({name} *)0)->{field})" if expression == name
                        else f"sizeof({expression}.{field})")]
            one["fields"].append(of)
        records.append(one)
    constants = [*headers.macros(), *headers.enumerators]
    values = evaluated([place[2] for place in places] + constants)
    for (target, key, _), value in zip(places, values):
        target[key] = value

    functions = []
    for name, node in sorted(headers.functions.items()):
        parameters = [{"name": one["name"], "type": headers.type_of(one["type"]["qualType"])}
                      for one in node.get("inner", []) if one["kind"] == "ParmVarDecl"]
        returns = headers.type_of(re.match(r"(.*?)\s*\(", node["type"]["qualType"])[1])
        function = {"name": name, "returns": returns, "parameters": parameters}
        if node.get("variadic"):
            function["variadic"] = True
        if node["type"]["qualType"].startswith("HX_STATUS"):
            function["status"] = True
        functions.append(function)
    return {
        "library": "VXMGMT.DLL",
        "constants": dict(zip(constants, values[len(places):])),
        "callbacks": [{"name": name, **headers.type_of(text)["function"]}
                      for name, text in headers.callbacks.items()],
        "records": records,
        "functions": functions,
    }


def json_text(description):
    """One declaration or field a line, so that a change shows as itself."""
    def compact(value):
        return json.dumps(value, separators=(", ", ": "))

    def record(one):
        head = compact({key: value for key, value in one.items() if key != "fields"})[:-1]
        return head + ', "fields": [\n      ' + ",\n      ".join(map(compact, one["fields"])) + "\n    ]}"

    sections = [f'  "library": {compact(description["library"])}',
                '  "constants": {\n    ' + ",\n    ".join(
                    f"{compact(name)}: {value}" for name, value in description["constants"].items()) + "\n  }"]
    for key, text in (("callbacks", compact), ("records", record), ("functions", compact)):
        sections.append(f'  "{key}": [\n    ' + ",\n    ".join(map(text, description[key])) + "\n  ]")
    return "{\n" + ",\n".join(sections) + "\n}\n"


def layout_text(description):
    """Assertions that every record is what the description says, for any C compiler."""
    lines = ["#include <hbaapi.h>", "#include <hxmgtapi.h>", "#include <stddef.h>", ""]
    named = [one for one in description["records"] if one["kind"] == "struct"]
    for one in named:
        lines.append(f'_Static_assert(sizeof({one["name"]}) == {one["size"]}, "{one["name"]}");')
        for field in one["fields"]:
            place = f'{one["name"]}, {field["name"]}'
            what = f'{one["name"]}.{field["name"]}'
            lines.append(f'_Static_assert(offsetof({place}) == {field["offset"]}, "{what}");')
            lines.append(f'_Static_assert(sizeof((({one["name"]} *)0)->{field["name"]}) == {field["size"]}, "{what}");')
    for name, value in description["constants"].items():
        lines.append(f'_Static_assert((unsigned long long)({name}) == {value}ull, "{name}");')
    return "\n".join(lines) + "\n"


def main():
    options = argparse.ArgumentParser()
    options.add_argument("--layout")
    options.add_argument("folder", nargs="?", default=HERE)
    chosen = options.parse_args()
    description = described()
    files = {
        "vxmgmt.json": json_text(description),
        "python/vxmgmt/_generated.py": write_python.text(description),
        "node/generated.js": write_node.text(description),
    }
    if chosen.layout:
        files[os.path.abspath(chosen.layout)] = layout_text(description)
    for name, text in files.items():
        path = os.path.join(chosen.folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8", newline="\n") as file:
            file.write(text)


if __name__ == "__main__":
    main()
