"""Writes the documentation of the interface as a table for `avsk functions`.

Read from the public headers at build time: each function, entry point of
plugins, callback type and host service, with its declaration and its
documentation block. Each entry is an initialiser of a ReferenceEntry.

usage: generate_reference.py OUTPUT HEADER...
"""

import os
import re
import sys

DECLARATION = re.compile(r"/\*\*((?:[^*]|\*(?!/))*)\*/\s*((?:AVSK_API|static inline|typedef)\b[^;{]*)[;{]")
FUNCTION = re.compile(r"(?:AVSK_API|static inline)\b.*?(\w+)\(", re.S)
CALLBACK = re.compile(r"typedef\b.*?\(\*(\w+_f)\)\(", re.S)
TABLE = re.compile(r"typedef struct AVSKHostCallbacks \{(.*?)\} AVSKHostCallbacks;", re.S)
SERVICE = re.compile(r"/\*\*((?:[^*]|\*(?!/))*)\*/\s*([^;/]*?\(\*(\w+)\)\([^;]*);")
DELIMITER = "~~"


def plain(block):
    """The text of a documentation block without its frame of asterisks."""
    lines = [re.sub(r"^\s*\* ?", "", line).rstrip() for line in block.strip().split("\n")]
    return "\n".join(lines).strip()


def dedented(declaration):
    lines = declaration.strip().split("\n")
    return "\n".join([lines[0]] + [re.sub(r"^    ", "", line) if line.startswith("    ") else line
                                   for line in lines[1:]]) + ";"


def entry(name, kind, header, declaration, block):
    texts = [dedented(declaration), plain(block)]
    if any(f"){DELIMITER}" in text for text in texts):
        sys.exit(f"generate_reference.py: {name}: the text contains ){DELIMITER}")
    raw = ", ".join(f'R"{DELIMITER}({text}){DELIMITER}"' for text in texts)
    return f'{{"{name}", "{kind}", "AVSK/{header}", {raw}}},'


def entries(path):
    header = os.path.basename(path)
    with open(path, encoding="utf-8") as file:
        text = file.read()
    for block, declaration in DECLARATION.findall(text):
        function, callback = FUNCTION.match(declaration), CALLBACK.match(declaration)
        if callback:
            yield entry(callback[1], "callback type", header, declaration, block)
        elif function:
            kind = "entry point of plugins" if function[1].startswith("AVPlugin") else "function"
            yield entry(function[1], kind, header, declaration, block)
    for table in TABLE.findall(text):
        for block, declaration, name in SERVICE.findall(table):
            yield entry(name, "host service", header, declaration, block)


def main():
    output, headers = sys.argv[1], sys.argv[2:]
    lines = [line for header in headers for line in entries(header)]
    with open(output, "w", encoding="utf-8") as file:
        file.write("// Made from the public headers by generate_reference.py.\n" + "\n".join(lines) + "\n")


main()
