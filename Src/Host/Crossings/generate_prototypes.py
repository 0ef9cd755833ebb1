"""Writes the table of every function that crosses the library's border.

The table is made from the public headers at build time, so it contains a new
function as soon as a header declares it. Each entry is a macro call; the
sources beside this script define the macros as they need:

    AVSK_FUNCTION(result, name, (parameters), "names", arguments...)    an exported function
    AVSK_SERVICE(result, name, (parameters), "names", arguments...)     a slot of the host's table
    AVSK_CALLBACK(result, name, (parameters), (entry), "names", arguments...)
                                   a callback type, or an entry point of plugins; "entry" is the
                                   parameters behind the Callback that the thunk passes

The arguments are the parameters' names. One whose type alone does not say how
it is passed on or shown is wrapped:

    Called(function, kind)       a callback of that kind
    Text(text)                   a text, though its type is not const
    Start(text, count)           the first bytes of a text
    Structure(params)            a structure with callbacks in it
    Handle(window)               a handle, which traces show by name

usage: generate_prototypes.py OUTPUT HEADER...
"""

import re
import sys

STRUCTURES = ("const AVSKCreateWindowParams *", "const AVSKCreateFlightLoopParams *", "const AVSKHostCallbacks *")

HANDLES = ("AVSKCommandRef", "AVSKDataRef", "AVSKFlightLoopID", "AVSKHotKeyID", "AVSKMenuID", "AVSKObjectRef",
           "AVSKWindowID")
# The host's table declares its handles as void *.
HANDLES_OF_SERVICES = ("command", "menu", "object", "parent")


def declarations(text):
    """A header without comments and directives, on one line."""
    text = re.sub(r"/\*.*?\*/", " ", text, flags=re.S)
    text = re.sub(r"^\s*#(.*\\\n)*.*$", "", text, flags=re.M)
    return re.sub(r"\s+", " ", text)


def split(parameters):
    """The parts between commas, except commas in parentheses."""
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
        # The name of a function pointer stands inside its type.
        function = re.fullmatch(r"(.*)\(\*(\w+)\)\((.*)\)", text)
        plain = re.fullmatch(r"(.*?)(\w+)", text)
        if not function and not plain:
            sys.exit(f"generate_prototypes.py: cannot read the parameter '{text}': write TYPE NAME")
        self.text = text
        self.type = (function or plain)[1].strip()
        self.name = (function or plain)[2]
        self.called = split(function[3]) if function else None


def arguments(owner, parameters):
    """What is passed on for each parameter, as further arguments of a macro."""
    wrapped = []
    for before, parameter, after in zip([None] + parameters, parameters, parameters[1:] + [None]):
        name = parameter.name
        if parameter.called is not None:
            wrapped.append(f"Called({name}, k_{owner}_{name})")
        elif parameter.type.endswith("_f"):
            wrapped.append(f"Called({name}, k_{parameter.type})")
        elif parameter.type in HANDLES or (parameter.type == "void *" and name in HANDLES_OF_SERVICES):
            wrapped.append(f"Handle({name})")
        elif parameter.type in STRUCTURES:
            wrapped.append(f"Structure({name})")
        elif (parameter.type, name) == ("char *", "text"):
            wrapped.append(f"Text({name})")
        elif (parameter.type, name) == ("const char *", "text") and after and after.name == "count":
            wrapped.append(f"Start({name}, count)")
        else:
            wrapped.append(name)
    return "".join(", " + argument for argument in wrapped)


def names(parameters):
    return ",".join(parameter.name for parameter in parameters)


def listed(parameters):
    return "(" + ", ".join(parameters) + ")"


def function(macro, result, name, text):
    parameters = [Parameter(part) for part in split(text)]
    return (f"{macro}({result.strip()}, {name}, {listed(p.text for p in parameters)}, "
            f'"{names(parameters)}"{arguments(name, parameters)})')


def callback(result, name, text):
    parameters = [Parameter(part) for part in split(text)]
    texts = [p.text for p in parameters]
    return (f"AVSK_CALLBACK({result.strip()}, {name}, {listed(texts)}, {listed(['const Callback *called'] + texts)}, "
            f'"{names(parameters)}"{arguments(name, parameters)})')


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
    # Callbacks first: the entries of functions name the callbacks' kinds.
    lines = [line for _, line in sorted(found, key=lambda entry: entry[0])]
    with open(output, "w", encoding="utf-8") as file:
        file.write("// Made from the public headers by generate_prototypes.py.\n" + "\n".join(lines) + "\n")


main()
