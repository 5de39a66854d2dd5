#!/usr/bin/env python3
"""Gives a public header to Doxygen: the same code, its plain comments marked as documentation.

The headers' comments are written for those who read the headers. What they rely on and Doxygen does
not know: a comment belongs to all declarations up to the next blank line, a section's title stands
between rules, and a number at the start of a field's comment is its offset.
"""
import re
import sys

COMMENT = re.compile(r"/\*.*?\*/", re.S)
RULE = "-" * 20


def text_of(comment):
    """The words of a comment, without its frame."""
    lines = [re.sub(r"^\s*\*? ?", "", line) for line in comment[2:-2].split("\n")]
    text = "\n".join(line.rstrip() for line in lines).strip()
    # Quotation marks, too: Doxygen would take what stands between them as it is.
    return re.sub(r'[\\@<#%"]', r"\\\g<0>", text)


def field_text(comment):
    match = re.fullmatch(r"(\d+)\b(?:\s+|$)(.*)", text_of(comment), re.S)
    return f"Offset {match[1]}. {match[2]}" if match else text_of(comment)


def status_list(source):
    """The status codes, which macros make, as an enumeration to read."""
    rows = re.findall(r'ROW\((\w+),\s+(0x[0-9A-F]+)(?:, "(.*)")?\)', source)
    values = [f"    HXMGT_{name} = {code}, /**< {text or 'Has no text of its own.'} */"
              for name, code, text in rows]
    return "/** The status codes and their texts. */\nenum HX_STATUS_CODE {\n" + "\n".join(values) + "\n};\n"


def declarations(code):
    """Splits what follows a comment into the declarations that it belongs to, and the rest."""
    end = re.search(r"\n\n|\n}", code)
    belongs, rest = (code[:end.start()], code[end.start():]) if end else (code, "")
    functions = re.findall(r"[^;{}#]+\([^;{}]*\);[^;{}]*?(?=\n\s*\w|\Z)", belongs)
    return (functions, rest) if "".join(functions) == belongs else ([belongs], rest)


def documented(source, name):
    out, section, position = [], False, 0
    comments = list(COMMENT.finditer(source))
    for index, found in enumerate(comments):
        out.append(source[position:found.start()])
        comment, position = found[0], found.end()
        code = source[position:comments[index + 1].start()] if index + 1 < len(comments) else source[position:]
        before = source[source.rfind("\n", 0, found.start()) + 1:found.start()]
        if index == 0:
            out.append(f"/** @file {name}\n{text_of(comment)}\n*/")
        elif RULE in comment:
            title, _, words = text_of(comment).replace(RULE, "").strip("- \n").partition("\n")
            out.append(("/** @} */\n" if section else "") + f"/** @name {title}\n{words}\n*/\n/** @{{ */")
            section = True
        elif before.strip():
            out.append(f"/**< {field_text(comment)} */" if not before.lstrip().startswith("#e") else comment)
        else:
            mine, rest = declarations(code)
            if len(mine) > 1:
                out.append("\n".join(f"/** {text_of(comment)} */\n{one.strip()}" for one in mine))
                out.append(rest)
                position += len(code)
            else:
                out.append(f"/** {text_of(comment)} */")
    out.append(source[position:])
    result = "".join(out)
    if section:
        result = re.sub(r"#ifdef __cplusplus\n}", "/** @} */\n\\g<0>", result, count=1)
    if name == "hxstatus.h":
        result = result[:result.index("#define HX_STATUS_TABLE")] + status_list(source) + "#endif\n"
    return result


def main():
    path = sys.argv[1]
    with open(path, encoding="utf-8") as file:
        sys.stdout.write(documented(file.read(), path.rsplit("/", 1)[-1]))


if __name__ == "__main__":
    main()
