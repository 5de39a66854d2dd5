#!/usr/bin/env python3
"""Fails when a parameter of a public header is named nowhere in what is said about its function: in the
function's comment, in that of its section, or in that of its header. What the rules of the whole
interface say about parameters of any function counts, too. Fails also when a field of a record or a
value of an enumeration has no words of its own; a field's offset is none.

Usage: parameters.py HEADER...
"""
import os
import re
import sys

from filter import documented

DECLARATION = re.compile(r"/\*\*(.*?)\*/\s*((?:typedef )?[^/;{}#]*?\([^;{}]*\);)?", re.S)
# Rule 8 of hxmgtapi.h.
EVERYWHERE = re.compile(r"handle|reserved\d?")

GROUP = re.compile(r"^(?:typedef )?(struct|enum) (\w+) \{(?: ([^\n]*) \}|\n(.*?)\n\})", re.S | re.M)
NAME = {"struct": r"(\w+)(?:\[[^\]]*\])*;", "enum": r"(\w+)(?: = [^,/\n]+?)?(?:,|(?=\s*(?:/|\Z)))"}
# A comment before a member is passed over: the handlers have theirs there.
MEMBER = {kind: re.compile(rf"/\*.*?\*/|{name} *(?:/\*\*<(.*?)\*/)?", re.S)
          for kind, name in NAME.items()}
SILENT = re.compile(r"\s*(?:Offset \d+\.\s*)?")


def parameters(declaration):
    listed = re.search(r"\(([^()]*)\)\s*;$", declaration)[1]
    return [re.findall(r"\w+", one)[-1] for one in listed.split(",") if one.strip() not in ("void", "...")]


def explained(name, others, words):
    """A size is explained with what it is the size of."""
    if EVERYWHERE.fullmatch(name) or re.search(rf"\b{name}\b", words):
        return True
    of = re.fullmatch(r"(\w+?)(?:Size|Length|Bytes)", name)
    return bool(of) and any(other != name and other.startswith(of[1]) and explained(other, [], words)
                            for other in others)


def silent(text):
    for kind, group, line, lines in GROUP.findall(text):
        for member, words in MEMBER[kind].findall(line or lines):
            if member and SILENT.fullmatch(words):
                yield group, member


def missing(path):
    name = os.path.basename(path)
    with open(path, encoding="utf-8") as file:
        text = documented(file.read(), name)
    for group, member in silent(text):
        yield f"{path}: {group}: {member} is explained nowhere"
    header, section = "", ""
    for comment, declaration in DECLARATION.findall(text):
        if "@file" in comment:
            header = comment
        if "@name" in comment:
            section = comment
        if not declaration:
            continue
        names = parameters(declaration)
        for one in names:
            if not explained(one, names, comment + section + header):
                function = re.search(r"(\w+)\)?\s*\([^()]*\)\s*;$", declaration)[1]
                yield f"{path}: {function}: {one} is explained nowhere"


def main():
    found = [line for path in sys.argv[1:] for line in missing(path)]
    print("\n".join(found), file=sys.stderr)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
