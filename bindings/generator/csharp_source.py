# SPDX-License-Identifier: MIT
"""P/Invoke declarations for C#."""
from xml.sax.saxutils import escape

from generator.text import comment, noted, wrapped

TYPES = {"void": "void", "int32_t": "int", "uint32_t": "uint", "int64_t": "long", "double": "double",
         "size_t": "UIntPtr", "char": "byte", "vlt_wchar": "char"}

START = """\
// SPDX-License-Identifier: MIT
// What the headers declare: {names}. Made by bindings/generate.py; not edited by hand.
//
// Narrow text goes through the platform's multibyte character set, wide text as UTF-16. A record is passed as the
// address of memory that stays where it is; a text that is returned belongs to the library.
using System;
using System.Runtime.InteropServices;
using Pointer = System.IntPtr;

namespace VltNative
{{
"""


def parameter(item):
    """A parameter's declaration: texts, arrays of record numbers, buffers, places for a result."""
    kind = item.type
    if not kind.pointers:
        return f"{TYPES[kind.name]} {item.name}"
    if kind.name == "char":
        return f"[MarshalAs(UnmanagedType.LPStr)] string {item.name}" if kind.const else f"[Out] byte[] {item.name}"
    if kind.name == "vlt_wchar":
        return f"[MarshalAs(UnmanagedType.LPWStr)] string {item.name}" if kind.const else f"[Out] char[] {item.name}"
    if kind.name == "void":
        return f"ref byte {item.name}" if item.name == "buffer" else f"Pointer {item.name}"
    if item.name == "recs":
        return f"[Out] {TYPES[kind.name]}[] {item.name}"
    return f"out {TYPES[kind.name]} {item.name}" if kind.name in TYPES else f"Pointer {item.name}"


def summary(text, indent):
    lines = escape(text).split("\n")
    if len(lines) == 1:
        return f"{indent}/// <summary>{lines[0]}</summary>\n"
    return comment("///", "\n".join(["<summary>", *lines, "</summary>"]), indent)


def constants(header):
    for group in header.constants:
        yield "\n" + comment("//", group.doc, "        ")
        for item in group.members:
            yield noted(f"        public const int {item.name} = {item.value};", "//", item.doc)


def functions(header):
    for function in header.functions:
        result = "Pointer" if function.result.pointers else TYPES[function.result.name]
        text = "CharSet = CharSet.Unicode, " if any(
            item.type.name == "vlt_wchar" for item in function.parameters) else ""
        head = f"        public static extern {result} {function.name}("
        yield ("\n" + summary(function.doc, "        ")
               + f"        [DllImport(Library, {text}CallingConvention = CallingConvention.Cdecl, "
               + "ExactSpelling = true,\n"
               + "            BestFitMapping = false, ThrowOnUnmappableChar = true)]\n"
               + wrapped(head, list(map(parameter, function.parameters)), ",", ");", "            "))


def field(item):
    kind = item.type
    name = "Pointer" if kind.pointers else TYPES.get(kind.name, kind.name)
    array = f"[MarshalAs(UnmanagedType.ByValArray, SizeConst = {kind.length})] " if kind.length else ""
    return noted(f"        {array}public {name}{'[]' if kind.length else ''} {item.name};", "//", item.doc)


def records(header):
    for record in (record for record in header.records if record.fields):
        yield "\n" + summary(record.doc, "    ") + "    [StructLayout(LayoutKind.Sequential)]\n"
        yield f"    public struct {record.name}\n    {{\n" + "".join(map(field, record.fields)) + "    }\n"


def source(headers):
    """The text of the file."""
    parts = [START.format(names=", ".join(header.name for header in headers)),
             "    public static class Api\n    {\n        public const string Library = \"vlt\";\n"]
    for kind in (constants, functions):
        for header in headers:
            parts += kind(header)
    parts.append("    }\n")
    for header in headers:
        parts += records(header)
    return "".join(parts) + "}\n"


def layout_program(headers):
    """A program that prints the layouts that these declarations give."""
    lines = []
    for record in (record for header in headers for record in header.records if record.fields):
        lines.append(f'Console.WriteLine("{record.name} " + Marshal.SizeOf(typeof({record.name})));')
        lines += [f'Console.WriteLine("{record.name}.{item.name} " + '
                  f'Marshal.OffsetOf(typeof({record.name}), "{item.name}"));' for item in record.fields]
    body = "\n        ".join(lines)
    return ("// SPDX-License-Identifier: MIT\n// Made by bindings/generate.py from the public headers.\n"
            "using System;\nusing System.Runtime.InteropServices;\nusing VltNative;\n\nstatic class Layouts\n{\n"
            f"    static void Main()\n    {{\n        {body}\n    }}\n}}\n")
