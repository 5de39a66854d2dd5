"""Writes the description of the library as declarations of koffi, for node."""
import json

HEAD = """\
// Records, constants and prototypes of VXMGMT.DLL for koffi. Made from its headers by describe.py; not
// edited. What the library writes goes through a Buffer or a typed array, which decode() makes a record.
'use strict';
"""


def name_of(base):
    return base if base in ("char", "void") else f"{base}_t"


def member(one):
    """The type of a record's field."""
    if "count" in one:
        text = member({key: value for key, value in one.items() if key != "count"})
        for count in reversed(one["count"]):
            text = f"koffi.array({text}, {count})"
        return text
    if one.get("pointer") or "function" in one or "callback" in one:
        return "'void *'"
    return f"types.{one['record']}" if "record" in one else f"'{name_of(one['base'])}'"


def argument(one):
    """The type of a parameter: memory of the caller is a pointer to anything."""
    if "callback" in one:
        return f"koffi.pointer(types.{one['callback']})"
    if one.get("pointer"):
        return "'const char *'" if one.get("base") == "char" and one.get("const") else "'void *'"
    return member(one)


def record(one):
    kind = "union" if one["kind"] == "union" else "pack" if one["align"] == 1 else "struct"
    fields = "".join(f"        {field['name']}: {member(field['type'])},\n" for field in one["fields"])
    return f"    types.{one['name']} = koffi.{kind}('{one['name']}', {{\n{fields}    }});"


def text(description):
    statuses = {str(value): name for name, value in description["constants"].items()
                if name.startswith("HXMGT_")}
    parts = [HEAD, "const constants = Object.freeze({"]
    parts += [f"    {name}: {value if value < 2**53 else f'{value}n'}," for name, value in description["constants"].items()]
    parts += ["});", "", "// The names of the statuses.", "const statusNames = Object.freeze({"]
    parts += [f"    {value}: {json.dumps(name)}," for value, name in statuses.items()]
    parts += ["});", "", "// Sizes in bytes and offsets, as the C compiler has them.", "const layout = Object.freeze({"]
    for one in description["records"]:
        offsets = ", ".join(f"{field['name']}: {field['offset']}" for field in one["fields"]
                            if one["kind"] == "struct")
        offsets = f" {offsets} " if offsets else ""
        parts.append(f"    {one['name']}: {{ size: {one['size']}, offsets: {{{offsets}}} }},")
    parts += ["});", "", "function declareTypes(koffi) {", "    const types = {};"]
    parts += [record(one) for one in description["records"]]
    for one in description["callbacks"]:
        parameters = ", ".join(argument(parameter) for parameter in one["parameters"])
        parts.append(f"    types.{one['name']} = koffi.proto('{one['name']}', {argument(one['returns'])}, [{parameters}]);")
    parts += ["    return types;", "}", "",
              "// Without those that take any number of arguments.",
              "function declareFunctions(koffi, library, types) {", "    return {"]
    for one in description["functions"]:
        if not one.get("variadic"):
            parameters = ", ".join(argument(parameter["type"]) for parameter in one["parameters"])
            parts.append(f"        {one['name']}: library.func('{one['name']}', {argument(one['returns'])}, [{parameters}]),")
    parts += ["    };", "}", "",
              "module.exports = { constants, statusNames, layout, declareTypes, declareFunctions };", ""]
    return "\n".join(parts)
