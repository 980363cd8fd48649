# SPDX-License-Identifier: MIT
"""Declarations for Delphi and Free Pascal."""
from generator.text import comment, noted, wrapped

TYPES = {"void": "", "char": "AnsiChar", "int32_t": "Integer", "uint32_t": "Cardinal", "int64_t": "Int64",
         "double": "Double", "size_t": "NativeUInt", "vlt_wchar": "WideChar"}

START = """\
// SPDX-License-Identifier: MIT
// What the headers declare: {names}. Made by bindings/generate.py; not edited by hand.
unit VltApi;

{{$IFDEF FPC}}
{{$MODE DELPHI}}
{{$PACKRECORDS C}}
{{$ELSE}}
{{$ALIGN 8}}
{{$ENDIF}}

interface

const
{{$IFDEF MSWINDOWS}}
  VltLibrary = 'vlt.dll';
{{$ELSE}}
  VltLibrary = 'libvlt.so';
{{$ENDIF}}
"""

RESERVED = {"file", "type", "record", "end", "begin", "string", "array", "set", "property", "pointer"}


def identifier(name):
    return f"{name}_" if name in RESERVED else name


def type_name(kind):
    if kind.pointers and kind.name == "void":
        return "Pointer"
    name = TYPES.get(kind.name, kind.name)
    if kind.length:
        return f"array[0..{kind.length - 1}] of {name}"
    return "P" * kind.pointers + name


def constants(header):
    for group in header.constants:
        yield "\n" + comment("//", group.doc, "  ")
        for item in group.members:
            yield noted(f"  {item.name} = {item.value};", "//", item.doc)


def records(header):
    for record in header.records:
        if not record.fields:
            yield f"  {record.name} = record end; // {record.doc}\n"
            continue
        yield "\n" + comment("//", record.doc, "  ") + f"  {record.name} = record\n"
        for item in record.fields:
            yield noted(f"    {identifier(item.name)}: {type_name(item.type)};", "//", item.doc)
        yield "  end;\n"


def functions(header):
    for function in header.functions:
        parameters = [f"{identifier(item.name)}: {type_name(item.type)}" for item in function.parameters]
        result = type_name(function.result)
        head = f"{'function' if result else 'procedure'} {function.name}" + ("(" if parameters else "")
        tail = (")" if parameters else "") + (f": {result}" if result else "") + "; cdecl; external VltLibrary;"
        yield "\n" + comment("//", function.doc) + wrapped(head, parameters, ";", tail, "  ")


def source(headers):
    """The text of the unit."""
    parts = [START.format(names=", ".join(header.name for header in headers))]
    for header in headers:
        parts += constants(header)
    parts.append("\ntype\n")
    for record in (record for header in headers for record in header.records):
        parts.append(f"  P{record.name} = ^{record.name};\n  PP{record.name} = ^P{record.name};\n")
    for header in headers:
        parts += records(header)
    for header in headers:
        parts += functions(header)
    return "".join(parts) + "\nimplementation\n\nend.\n"


def layout_program(headers):
    """A program that prints the layouts that these declarations give."""
    lines = []
    for record in (record for header in headers for record in header.records if record.fields):
        lines.append(f"  WriteLn('{record.name} ', SizeOf({record.name}));")
        lines += [f"  WriteLn('{record.name}.{item.name} ', NativeUInt(@P{record.name}(nil)^.{identifier(item.name)}));"
                  for item in record.fields]
    return ("// SPDX-License-Identifier: MIT\n// Made by bindings/generate.py from the public headers.\n"
            "program Layouts;\n\n{$IFDEF FPC}{$MODE DELPHI}{$ENDIF}\n{$APPTYPE CONSOLE}\n\nuses\n  VltApi;\n\nbegin\n"
            + "\n".join(lines) + "\nend.\n")
