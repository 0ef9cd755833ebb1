"""Writes what avsk and its libGL.so.1 have for each function of OpenGL.

The tables are made at build time from OpenGL's XML registry. These files are
written:

    Stubs.c          the exported functions of libGL.so.1, in assembler; see Library.h
    Functions.inc    AVSK_OPENGL(name, text, types, words, flags, groups) for each function, in the order of their
                     numbers
    FunctionTexts.inc   a literal: name, parameters and types of each function, each ended by a zero; `text` above is
                     where they begin, and `types` where the types do. The first type is the result's; see TYPES.
    Groups.inc       AVSK_GROUP(first, count) for each group of enumerants; then the members: AVSK_MEMBER(enumerant);
                     then the group of each parameter of type E or B, or -1: AVSK_PARAMETER_GROUP(group). `groups`
                     above is where a function's begin.
    Enumerants.inc   AVSK_ENUMERANT(value, text), by value, the best name of a value first; and
    EnumerantTexts.inc  the literal with their names

usage: generate_opengl.py FOLDER gl.xml glx.xml
"""

import pathlib
import re
import sys
import xml.etree.ElementTree as ET

# Type letters of results and parameters. X is a number or an enumerant.
TYPES = {
    "void": "v", "GLboolean": "b", "GLbyte": "c", "GLubyte": "C", "GLshort": "h", "GLushort": "H", "GLhalfNV": "H",
    "GLint": "i", "GLsizei": "i", "GLfixed": "i", "GLclampx": "i", "GLintptr": "i", "GLintptrARB": "i",
    "GLsizeiptr": "i", "GLsizeiptrARB": "i", "GLvdpauSurfaceNV": "i", "GLuint": "u", "GLhandleARB": "u",
    "GLenum": "E", "GLbitfield": "B", "GLfloat": "f", "GLclampf": "f", "GLdouble": "d", "GLclampd": "d",
    "GLint64": "l", "GLint64EXT": "l", "GLuint64": "L", "GLuint64EXT": "L", "GLsync": "p", "GLeglImageOES": "p",
    "GLeglClientBufferEXT": "p", "GLDEBUGPROC": "F", "GLDEBUGPROCAMD": "F", "GLDEBUGPROCARB": "F",
    "GLDEBUGPROCKHR": "F", "GLVULKANPROCNV": "p"}
TEXTS = ("const GLchar *", "const GLcharARB *", "const GLubyte *")
TWO_WORDS = "dlL"

# Libraries of other systems export these too; the registry does not list them. They have no effect.
UNLISTED = """
    glBindANCCaptureStreamBufferNVX glBindTransformFeedbackEXT glBufferDataSysmem glClientWaitSyncValueuiNVX glColor3x
    glCompressedTexImage3DNV glCompressedTexSubImage3DNV glCopyTexSubImage3DNV glDebugMessageCallbackOES
    glDebugMessageControlOES glDebugMessageInsertOES glDeleteTransformFeedbacksEXT glDevtoolsCorrelationIdNVX
    glDevtoolsInvokeStreamedCallbackNVX glDrawMeshNV glFenceValueuiNVX glFramebufferTextureLayerNV
    glGenTransformFeedbacksEXT glGetCompressedTexImageNV glGetDebugMessageLogOES glGetNamedBufferParameteri64vEXT
    glGetObjectLabelOES glGetObjectPtrLabelOES glGetPointervOES glGetQueryObjectui64vNV glGetSyncv64NVX
    glGetTexImageNV glGetTexLevelParameterfvNV glGetTexLevelParameterivNV glGetVideoCaptureANCStreamivNVX
    glGpuSyncAcquireNVX glGpuSyncCreateNVX glGpuSyncDestroyNVX glGpuSyncReleaseNVX glIsTransformFeedbackEXT
    glLoadTransformEXT glMultTransformEXT glMultiTexCoord1x glMultiTexCoord1xv glMultiTexCoord2x glMultiTexCoord2xv
    glMultiTexCoord3x glMultiTexCoord3xv glMultiTexCoord4xv glNVENCInterOpFunctionNVX glObjectLabelOES
    glObjectPtrLabelOES glPatchParameterfvEXT glPatchParameterfvNV glPatchParameteriNV glPauseTransformFeedbackEXT
    glPopDebugGroupOES glPrimitiveRestart glPushDebugGroupOES glQueryCounterNV glResumeTransformFeedbackEXT
    glTexImage3DNV glTexSubImage3DNV glValidBackBufferHintAutodesk glWaitSyncValueuiNVX glWindowBackBufferHintAutodesk
    glXAllocateMemoryNV glXFreeMemoryNV glXGetDriverConfig glXGetRefreshRateSGI glXGetScreenDriver""".split()

# Their parameter `param` is a number or an enumerant, whichever `pname` wants.
MAY_BE_ENUMERANT = re.compile(r"gl(\w*Parameteri|TexEnvi|TexGeni|Fogi|LightModeli|PixelTransferi)(EXT|ARB|SGIX|NV)?$")

# Functions that write pixels of the screen, and that read them. Queries count what is drawn, so they read too.
DRAWS = re.compile(r"gl(Begin|Clear|ClearBuffer\w*|ClearNamedFramebuffer\w*|Draw(?!Buffer)\w*|MultiDraw\w*|"
                   r"MultiModeDraw\w*|CallLists?|Rect\w+|Bitmap|CopyPixels|Accum|EvalMesh[12]|"
                   r"BlitFramebuffer\w*|BlitNamedFramebuffer\w*|(Stencil|Cover|Stencil\w*Cover)(Fill|Stroke)Path\w*)$")
READS = re.compile(r"gl(ReadPixels|ReadnPixels\w*|ReadBuffer|NamedFramebufferReadBuffer|CopyPixels|"
                   r"Copy\w*Tex\w*Image\w*|CopyConvolutionFilter\w*|CopyColor\w*Table\w*|Accum|"
                   r"BlitFramebuffer\w*|BlitNamedFramebuffer\w*|BeginQuery\w*|BeginOcclusionQuery\w*)$")
FLAGS = (("kDraws", DRAWS), ("kReads", READS))

VENDORS = re.compile(r"_(ARB|EXT|OES|NV|ATI|AMD|APPLE|SGI[SX]?|IBM|INTEL|SUN|QCOM|IMG|KHR|ANGLE|HP|PGI|NVX|MESA|OVR|"
                     r"ARM|WIN|INGR|S3TC|3DFX|ATIX?|OML|REND|VIV|DMP|FJ|GREMEDY|BIT_\w+|COLOR_ATTACHMENT\d+_EXT)$")


class Command:
    def __init__(self, node, groups):
        self.name, result, _ = self.declared(node.find("proto"))
        self.result = result
        self.parameters, self.types, self.groups = [], "", []
        for parameter in node.findall("param"):
            name, kind, group = self.declared(parameter)
            # A location or a level may be an int by its type and an enumerant by its meaning.
            if group in groups and kind == "i":
                kind = "E"
            elif kind == "i" and name == "param" and MAY_BE_ENUMERANT.match(self.name):
                kind = "X"
            self.parameters.append(name)
            self.types += kind
            if kind in "EB":
                self.groups.append(group if group in groups else None)

    @staticmethod
    def declared(node):
        """The name, the type's letter and the group."""
        text = "".join(node.itertext()).strip()
        name = node.find("name").text
        kind = text[: text.rindex(name)].strip()
        if kind in TEXTS and not (kind == "const GLubyte *" and node.tag == "param"):
            letter = "s"
        elif kind.endswith("*"):
            letter = "p"
        else:
            letter = TYPES[kind]
        return name, letter, node.get("group")

    def words(self):
        return sum(2 if kind in TWO_WORDS else 1 for kind in self.types)

    def flags(self):
        return "|".join(flag for flag, names in FLAGS if names.match(self.name)) or "0"


def enumerants_of(registry):
    """Names by value, the preferred name first, and those of each group."""
    values, groups = {}, {}
    for block in registry.findall("enums"):
        for node in block.findall("enum"):
            if node.get("api") not in (None, "gl", "glcore"):
                continue
            value = int(node.get("value"), 0)
            name = node.get("name")
            if not 0 <= value <= 0xFFFFFFFF:
                continue
            values.setdefault(value, []).append(name)
            for group in (node.get("group") or block.get("group") or "").split(","):
                if group:
                    groups.setdefault(group, {}).setdefault(value, []).append(name)

    def preferred(names):
        return min(names, key=lambda name: (bool(VENDORS.search(name)), len(name)))

    best = {value: preferred(names) for value, names in values.items()}
    chosen = set(best.items())
    members = {group: {value: preferred(names) for value, names in its.items()} for group, its in groups.items()}
    for its in members.values():
        chosen.update(its.items())
    ordered = sorted(chosen, key=lambda pair: (pair[0], pair[1] != best[pair[0]], pair[1]))
    number = {pair: i for i, pair in enumerate(ordered)}
    return ordered, {group: [number[pair] for pair in sorted(its.items())] for group, its in members.items()}


def write(path, lines):
    path.write_text("\n".join(lines) + "\n")


def literal(parts):
    return '"' + "\\0".join(parts) + '\\0"'


def write_tables(folder, commands, enumerants, groups):
    functions, texts, parameter_groups, at = [], [], [], 0
    group_numbers = {group: i for i, group in enumerate(groups)}
    for command in commands:
        parts = (command.name, ",".join(command.parameters), command.result + command.types)
        types = at + len(parts[0]) + len(parts[1]) + 2
        functions.append(f"AVSK_OPENGL({command.name}, {at}, {types}, {command.words()}, {command.flags()}, "
                         f"{len(parameter_groups)})")
        texts.append(literal(parts))
        at += sum(len(part) + 1 for part in parts)
        parameter_groups += [group_numbers.get(group, -1) for group in command.groups]
    write(folder / "Functions.inc", functions)
    write(folder / "FunctionTexts.inc", texts)

    lines, first = [], 0
    for members in groups.values():
        lines.append(f"AVSK_GROUP({first}, {len(members)})")
        first += len(members)
    lines += [f"AVSK_MEMBER({member})" for members in groups.values() for member in members]
    lines += [f"AVSK_PARAMETER_GROUP({group})" for group in parameter_groups]
    write(folder / "Groups.inc", lines)

    lines, texts, at = [], [], 0
    for value, name in enumerants:
        lines.append(f"AVSK_ENUMERANT({value:#x}, {at})")
        texts.append(literal((name,)))
        at += len(name) + 1
    write(folder / "Enumerants.inc", lines)
    write(folder / "EnumerantTexts.inc", texts)


def write_stubs(path, commands, fixed):
    """fixed: result letters, by the names of the functions without a slot."""
    code = [".text", ".p2align 4", ".cfi_startproc", ".type avskHere, @function", "avskHere:", "movl (%esp), %eax",
            "ret", ".cfi_endproc", ".cfi_startproc"]
    neutral = {"v": "avskNeutral", "s": "avskNeutralText", "f": "avskNeutralFloat"}
    slots = []
    for i, command in enumerate(commands):
        code += [".p2align 4", f".globl {command.name}", f".type {command.name}, @function", f"{command.name}:",
                 f".Lf{i}:", "call avskHere", f"1: movl ${i}, avskLast-1b(%eax)", "movl (%esp), %ecx",
                 "movl %esp, avskLast+4-1b(%eax)", "movl %ecx, avskLast+8-1b(%eax)",
                 f"jmp *avskSlots+{4 * i}-1b(%eax)",
                 f".size {command.name}, .-{command.name}"]
        slots.append(neutral.get(command.result, "avskNeutral"))
    exports = {command.name: f".Lf{i}" for i, command in enumerate(commands)}
    for name, result in fixed.items():
        exports[name] = f".L{name}"
        if name in OWN:
            code += [f".hidden avsk_{name}"]
            exports[name] = f"avsk_{name}"
            continue
        code += [f".globl {name}", f".type {name}, @function", f"{name}: {exports[name]}:", f"jmp {neutral.get(result, 'avskNeutral')}",
                 f".size {name}, .-{name}"]
    code += [".type avskNeutral, @function", "avskNeutral:", "xorl %eax, %eax", "xorl %edx, %edx", "ret",
             ".type avskNeutralText, @function", "avskNeutralText:", "call avskHere", "1: leal avskEmpty-1b(%eax), %eax", "ret",
             ".type avskNeutralFloat, @function", "avskNeutralFloat:", "fldz", "ret",
             ".type avskCall, @function", "avskCall:", "call avskHereToo", "1: jmp *avskOpenGLTable+4-1b(%ecx)",
             ".type avskThunks, @function", "avskThunks:"]
    # jmp with a 32-bit distance, so that all thunks have the same size
    code += [f"movl ${i}, %eax; .byte 0xE9; .long avskCall-.-4" for i in range(len(commands))]
    code += [".cfi_endproc", ".type avskHereToo, @function", "avskHereToo:", "movl (%esp), %ecx", "ret"]
    code += [".section .rodata", "avskEmpty: .byte 0", ".p2align 2", ".hidden avskExports", ".globl avskExports",
             "avskExports:"]
    names = sorted(exports, key=str.encode)
    texts, at = [], 0
    for name in names:
        code.append(f".long avskNames-avskExports+{at}, {exports[name]}-avskExports")
        texts.append(f'.asciz "{name}"')
        at += len(name) + 1
    code += ["avskNames:"] + texts + [".hidden avskExportCount", ".globl avskExportCount", ".p2align 2",
                                      f"avskExportCount: .long {len(names)}"]
    code += [".data", ".p2align 2", ".hidden avskOpenGLTable", ".globl avskOpenGLTable", "avskOpenGLTable:",
             f".long {len(commands)}, avskNeutral, avskThunks, avskSlots", "avskLast: .long 0, 0, 0", "avskSlots:"]
    code += [f".long {slot}" for slot in slots] + [".text"]
    lines = ["// Written by generate_opengl.py.", "__asm__("]
    lines += ['    "' + line.replace("\\", "\\\\").replace('"', '\\"') + '\\n"' for line in code]
    write(path, lines + [");"])


# Exported functions that Library.c defines, under the name with "avsk_" before it.
OWN = ("glXGetProcAddress", "glXGetProcAddressARB")


def main():
    folder = pathlib.Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    registry, glx = (ET.parse(path).getroot() for path in sys.argv[2:4])
    enumerants, groups = enumerants_of(registry)
    commands = sorted((Command(node, groups) for node in registry.find("commands")), key=lambda command: command.name)
    write_tables(folder, commands, enumerants, groups)
    fixed = dict.fromkeys(UNLISTED, "v")
    for node in glx.find("commands"):
        text = "".join(node.find("proto").itertext())
        fixed[node.find("proto/name").text] = "s" if "char" in text else "v"
    write_stubs(folder / "Stubs.c", commands, fixed)


if __name__ == "__main__":
    main()
