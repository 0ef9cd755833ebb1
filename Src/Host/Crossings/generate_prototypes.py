"""Writes the table of everything that crosses the library's border.

Read from the public headers at build time, so a new function is in the table
as soon as it is declared. Each entry is a macro call that the sources beside
this script define as they need:

    AVSK_FUNCTION(result, name, (parameters), "names", (arguments))    an exported function
    AVSK_SERVICE(result, name, (parameters), "names", (arguments))     a slot of the host's table
    AVSK_CALLBACK(result, name, "names", (arguments), parameters...)   a callback, or an entry point of plugins

Arguments are the parameters' names, dressed where the type alone does not
tell enough:

    Called(function, kind)       a callback of that kind
    Text(text)                   a text, though not const
    Start(text, count)           the first bytes of a text
    Structure(params)            a structure with callbacks in it

usage: generate_prototypes.py OUTPUT HEADER...
"""

import re
import sys

STRUCTURES = ("const AVSKCreateWindowParams *", "const AVSKCreateFlightLoopParams *", "const AVSKHostCallbacks *")


def declarations(text):
    """The statements of a header, each on one line, without comments and directives."""
    text = re.sub(r"/\*.*?\*/", " ", text, flags=re.S)
    text = re.sub(r"^\s*#(.*\\\n)*.*$", "", text, flags=re.M)
    return re.sub(r"\s+", " ", text)


def split(parameters):
    """At the commas that are not in parentheses."""
    parts, depth = [""], 0
    for character in parameters:
        depth += (character == "(") - (character == ")")
        if character == "," and depth == 0:
            parts.append("")
        else:
            parts[-1] += character
    parts = [part.strip() for part in parts]
    return [] if parts in ([""], ["void"]) else parts


class Parameter:
    def __init__(self, text):
        # A function's name stands in the middle of its type.
        function = re.fullmatch(r"(.*)\(\*(\w+)\)\((.*)\)", text)
        plain = re.fullmatch(r"(.*?)(\w+)", text)
        if not function and not plain:
            sys.exit(f"generate_prototypes.py: cannot read the parameter '{text}': write TYPE NAME")
        self.text = text
        self.type = (function or plain)[1].strip()
        self.name = (function or plain)[2]
        self.called = split(function[3]) if function else None


def arguments(owner, parameters):
    """What is passed on for each parameter."""
    dressed = []
    for before, parameter, after in zip([None] + parameters, parameters, parameters[1:] + [None]):
        name = parameter.name
        if parameter.called is not None:
            dressed.append(f"Called({name}, k_{owner}_{name})")
        elif parameter.type.endswith("_f"):
            dressed.append(f"Called({name}, k_{parameter.type})")
        elif parameter.type in STRUCTURES:
            dressed.append(f"Structure({name})")
        elif (parameter.type, name) == ("char *", "text"):
            dressed.append(f"Text({name})")
        elif (parameter.type, name) == ("const char *", "text") and after and after.name == "count":
            dressed.append(f"Start({name}, count)")
        else:
            dressed.append(name)
    return ", ".join(dressed)


def names(parameters):
    return ",".join(parameter.name for parameter in parameters)


def function(macro, result, name, text):
    parameters = [Parameter(part) for part in split(text)]
    return (f"{macro}({result.strip()}, {name}, ({', '.join(p.text for p in parameters)}), "
            f'"{names(parameters)}", ({arguments(name, parameters)}))')


def callback(result, name, text):
    parameters = [Parameter(part) for part in split(text)]
    listed = "".join(", " + p.text for p in parameters)
    return f'AVSK_CALLBACK({result.strip()}, {name}, "{names(parameters)}", ({arguments(name, parameters)}){listed})'


def entries(text):
    for result, name, parameters in re.findall(r"typedef (\w[^();{}]*?)\(\*(\w+_f)\)\(([^;]*)\);", text):
        yield 0, callback(result, name, parameters)
    for result, name, parameters in re.findall(r"AVSK_API ([^();{}]*?)(\w+)\(([^;]*)\);", text):
        if name.startswith("AVPlugin"):
            yield 0, callback(result, name, parameters)
        else:
            yield 1, function("AVSK_FUNCTION", result, name, parameters)
    for table in re.findall(r"struct AVSKHostCallbacks \{(.*?)\} AVSKHostCallbacks;", text):
        for statement in table.split(";"):
            slot = re.fullmatch(r"(.*?)\(\*(\w+)\)\((.*)\)", statement.strip())
            if not slot:
                continue
            for parameter in map(Parameter, split(slot[3])):
                if parameter.called is not None:
                    yield 0, callback(parameter.type, f"{slot[2]}_{parameter.name}", ", ".join(parameter.called))
            yield 1, function("AVSK_SERVICE", slot[1], slot[2], slot[3])


def main():
    output, headers = sys.argv[1], sys.argv[2:]
    found = []
    for header in headers:
        with open(header, encoding="utf-8") as file:
            found += entries(declarations(file.read()))
    # Callbacks first: functions name their kinds.
    lines = [line for _, line in sorted(found, key=lambda entry: entry[0])]
    with open(output, "w", encoding="utf-8") as file:
        file.write("// Made from the public headers by generate_prototypes.py.\n" + "\n".join(lines) + "\n")


main()
