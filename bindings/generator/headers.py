# SPDX-License-Identifier: MIT
"""Reads the public headers: constants, records and functions, each with the comment that describes it."""
import re
import subprocess
import tempfile
from dataclasses import dataclass, field
from pathlib import Path

from pycparser import c_ast, c_parser

# What the headers take from the C library, as far as a parser of declarations needs it.
PREAMBLE = """
typedef signed char int8_t; typedef unsigned char uint8_t; typedef short int16_t; typedef unsigned short uint16_t;
typedef int int32_t; typedef unsigned int uint32_t; typedef long long int64_t; typedef unsigned long long uint64_t;
typedef unsigned long size_t; typedef unsigned short char16_t;
"""
EMPTY_HEADERS = {"stddef.h": "#define offsetof(type, member) 0\n", "assert.h": "#define static_assert _Static_assert\n",
                 "stdint.h": "", "uchar.h": "", "limits.h": ""}


@dataclass(frozen=True)
class Type:
    """A type as the headers write it: a base name, how many stars, whether what it points to is const."""
    name: str
    pointers: int = 0
    const: bool = False
    length: int = 0  # of an array; 0: none


@dataclass(frozen=True)
class Variable:
    """A parameter or a field of a record."""
    name: str
    type: Type
    doc: str = ""


@dataclass(frozen=True)
class Constant:
    name: str
    value: int
    doc: str


@dataclass(frozen=True)
class Constants:
    doc: str
    members: tuple


@dataclass(frozen=True)
class Record:
    name: str
    doc: str
    fields: tuple  # empty: opaque


@dataclass(frozen=True)
class Function:
    name: str
    doc: str
    result: Type
    parameters: tuple


@dataclass
class Header:
    name: str
    doc: str = ""
    constants: list = field(default_factory=list)
    records: list = field(default_factory=list)
    functions: list = field(default_factory=list)


def plain_text(comment):
    """The lines of a C comment without its frame, their own indentation kept."""
    inner = comment[2:-2]
    lines = [re.sub(r"^\s*\* ?", "", line).rstrip() for line in inner.split("\n")]
    lines[0] = lines[0].lstrip()
    return "\n".join(lines).strip("\n").rstrip()


class Comments:
    """The comments of a source text, by line."""

    def __init__(self, text):
        self.ending, self.trailing = {}, {}
        self.lines = text.split("\n")
        for match in re.finditer(r"/\*.*?\*/", text, re.S):
            first = text.count("\n", 0, match.start()) + 1
            before = text[text.rfind("\n", 0, match.start()) + 1:match.start()]
            if before.strip():
                self.trailing[first] = plain_text(match.group())
            else:
                self.ending[first + match.group().count("\n")] = plain_text(match.group())

    def above(self, line):
        """The comment right above a line, or above the group of declarations that the line belongs to."""
        line -= 1
        while line > 0 and line not in self.ending and self.lines[line - 1].strip():
            line -= 1
        return self.ending.get(line, "")

    def beside(self, line):
        return self.trailing.get(line, self.ending.get(line - 1, ""))


def c_value(node, known):
    """The value of a constant expression."""
    if isinstance(node, c_ast.Constant):
        return int(node.value.rstrip("uUlL"), 0)
    if isinstance(node, c_ast.ID):
        return known[node.name]
    if isinstance(node, c_ast.UnaryOp) and node.op == "-":
        return -c_value(node.expr, known)
    if isinstance(node, c_ast.BinaryOp) and node.op in ("+", "-", "*", "<<"):
        left, right = c_value(node.left, known), c_value(node.right, known)
        return {"+": left + right, "-": left - right, "*": left * right, "<<": left << right}[node.op]
    raise ValueError(f"{node.coord}: not a constant that this generator reads")


class Reader:
    """Turns the syntax tree of one header into a Header."""

    def __init__(self, path, known):
        text = path.read_text()
        self.known = known
        self.comments = Comments(text)
        self.header = Header(path.name)
        title = [doc for line, doc in sorted(self.comments.ending.items()) if not doc.startswith("SPDX")]
        self.header.doc = title[0] if title else ""

    def type_of(self, node):
        if isinstance(node, c_ast.ArrayDecl):
            inner = self.type_of(node.type)
            return Type(inner.name, inner.pointers, inner.const, c_value(node.dim, self.known))
        pointers = 0
        while isinstance(node, c_ast.PtrDecl):
            pointers, node = pointers + 1, node.type
        named = node.type
        name = " ".join(named.names) if isinstance(named, c_ast.IdentifierType) else named.name
        return Type(name, pointers, "const" in node.quals)

    def read_enum(self, node):
        members, following = [], 0
        for item in node.type.values.enumerators:
            value = c_value(item.value, self.known) if item.value else following
            self.known[item.name], following = value, value + 1
            members.append(Constant(item.name, value, self.comments.beside(item.coord.line)))
        self.header.constants.append(Constants(self.comments.above(node.coord.line), tuple(members)))

    def read_record(self, struct, line):
        fields = tuple(Variable(item.name, self.type_of(item.type), self.comments.beside(item.coord.line))
                       for item in struct.decls or ())
        doc = self.comments.above(line) or self.comments.beside(line)
        self.header.records = [record for record in self.header.records if record.name != struct.name]
        self.header.records.append(Record(struct.name, doc, fields))

    def read_function(self, node):
        items = node.type.args.params if node.type.args else []
        parameters = tuple(Variable(item.name, self.type_of(item.type)) for item in items if item.name)
        doc = self.comments.above(node.coord.line)
        self.header.functions.append(Function(node.name, doc, self.type_of(node.type.type), parameters))

    def read(self, node):
        kind = node.type
        if isinstance(node, c_ast.Decl) and isinstance(kind, c_ast.FuncDecl):
            self.read_function(node)
        elif isinstance(kind, c_ast.Enum):
            self.read_enum(node)
        elif isinstance(kind, c_ast.Struct):
            self.read_record(kind, kind.coord.line)
        elif isinstance(node, c_ast.Typedef) and isinstance(kind.type, c_ast.Struct):
            self.read_record(kind.type, kind.type.coord.line)


def preprocess(path):
    """The header as a C compiler sees it, with `# line` marks, for a system that is not Windows."""
    with tempfile.TemporaryDirectory() as folder:
        for name, text in EMPTY_HEADERS.items():
            Path(folder, name).write_text(text)
        command = ["cpp", "-nostdinc", "-isystem", folder, f"-I{path.parent}", "-D__attribute__(x)=", "-U_WIN32"]
        return subprocess.run([*command, str(path)], check=True, capture_output=True, text=True).stdout


def read_headers(paths):
    """The headers, in order; a header may use what an earlier one declares."""
    known, headers = {}, []
    for path in paths:
        reader = Reader(path, known)
        tree = c_parser.CParser().parse(PREAMBLE + preprocess(path), "preamble")
        for node in tree.ext:
            if node.coord and node.coord.file == str(path):
                reader.read(node)
        headers.append(reader.header)
    return headers
