"""Reads the documentation blocks of the public headers. Used by check-docs and host-slots."""

import re

COMMENT = re.compile(r"/\*.*?\*/", re.S)
TABLE = re.compile(r"typedef struct AVSKHostCallbacks \{(.*?)\} AVSKHostCallbacks;", re.S)
SERVICE = re.compile(r"\(\*(\w+)\)\(")


def line_of(text, position):
    return text.count("\n", 0, position) + 1


def blanked(text):
    """Returns the text with comments and directives replaced by blanks, which keeps all positions."""
    def blank(match):
        return re.sub(r"[^\n]", " ", match[0])
    return re.sub(r"^[ \t]*#(?:.*\\\n)*.*$", blank, COMMENT.sub(blank, text), flags=re.M)


def parameter_names(parameters):
    """The names in a parameter list; a parameter may itself be a function pointer."""
    parts, depth = [""], 0
    for character in parameters:
        depth += (character == "(") - (character == ")")
        if character == "," and depth == 0:
            parts.append("")
        else:
            parts[-1] += character
    names = []
    for part in map(str.strip, parts):
        if part not in ("", "void"):
            pointer = re.search(r"\(\*(\w+)\)", part)
            names.append(pointer[1] if pointer else re.search(r"(\w+)(?:\[\w*\])?$", part)[1])
    return names


def block_above(text, position):
    """The documentation block that ends directly above a position, as (first line, lines), or None."""
    before = text[:position].rstrip()
    if not before.endswith("*/") or text.count("\n", len(before), position) > 1:
        return None
    start = before.rfind("/*")
    if not before.startswith("/**", start):
        return None
    lines = [re.sub(r"^\s*\* ?", "", line).rstrip() for line in before[start + 3:-2].split("\n")]
    return line_of(text, start), lines


def spread(name):
    """The names that a range such as a2..a4 stands for."""
    bounds = re.fullmatch(r"(\D+)(\d+)\.\.\1(\d+)", name)
    if not bounds:
        return [name]
    return [f"{bounds[1]}{number}" for number in range(int(bounds[2]), int(bounds[3]) + 1)]


class Slot:
    """A member of AVSKHostCallbacks with its block: a summary, then lines such as "@since every table."."""

    def __init__(self, number, statement, line, block):
        self.number, self.line = number, line
        self.declaration = re.sub(r"\s+", " ", statement)
        function = SERVICE.search(statement)
        self.name = function[1] if function else statement.split()[-1].rstrip(";")
        self.is_function = bool(function)
        self.has_result = self.is_function and not statement.lstrip().startswith("void (")
        self.parameters = parameter_names(statement[function.end():statement.rindex(")")]) if function else []
        self.summary = ""
        self.entries = []  # [tag, parameter or "", text]
        for content in block[1] if block else []:
            tag = re.match(r"@(\w+)\s*(.*)", content)
            if tag and tag[1] == "param":
                name, _, text = tag[2].partition(" ")
                self.entries.append(["param", name, text.strip()])
            elif tag:
                self.entries.append([tag[1], "", tag[2]])
            elif self.entries:
                self.entries[-1][2] += " " + content.strip()
            else:
                self.summary += " " + content.strip()
        self.summary = self.summary.strip()

    def texts(self, tag):
        return [entry[2].strip() for entry in self.entries if entry[0] == tag]


def read_slots(text):
    """The members of AVSKHostCallbacks in a header; empty if it does not declare the table."""
    code = blanked(text)
    table = TABLE.search(code)
    slots = []
    for statement in re.finditer(r"\S[^;]*;", table[1]) if table else []:
        position = table.start(1) + statement.start()
        slots.append(Slot(len(slots), statement[0], line_of(text, position), block_above(text, position)))
    return slots
