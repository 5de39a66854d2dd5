#!/usr/bin/env python3
"""Fails when a manual or page links to a file that is not there. Usage: check_links.py FILE..."""
import os
import re
import sys

FENCED = re.compile(r"^```.*?^```", re.S | re.M)
LINK = {".md": re.compile(r"\]\(([^)#\s]+)"), ".html": re.compile(r"""(?:href|src)="([^"#]+)""")}


def missing(path):
    with open(path, encoding="utf-8") as file:
        text = FENCED.sub("", file.read())
    for link in LINK[os.path.splitext(path)[1]].findall(text):
        if not re.match(r"[a-z]+:", link) and not os.path.exists(
                os.path.join(os.path.dirname(path), link)):
            yield link


def main():
    found = [(path, link) for path in sys.argv[1:] for link in missing(path)]
    for path, link in found:
        print(f"{path}: there is no {link}", file=sys.stderr)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
