# SPDX-License-Identifier: MIT
"""What the languages' sources have in common: comments and lines of bearable width."""
WIDTH = 120


def comment(mark, text, indent=""):
    """Whole lines of comment."""
    return "".join(f"{indent}{mark} {line}".rstrip() + "\n" for line in text.split("\n")) if text else ""


def noted(line, mark, note, gap=" "):
    """A line with a note behind it, or above it where it would get too wide."""
    if not note:
        return line + "\n"
    whole = f"{line}{gap}{mark} {note}\n"
    indent = line[:len(line) - len(line.lstrip())]
    return whole if len(whole) <= WIDTH + 1 else f"{indent}{mark} {note}\n{line}\n"


def wrapped(head, items, separator, tail, indent):
    """`head`, the items, `tail`, broken between items where a line would get too wide."""
    lines, line = [], head
    for position, item in enumerate(items):
        last = position == len(items) - 1
        piece = item + (tail if last else separator)
        if len(line) + len(piece) + 1 > WIDTH and line.strip():
            lines.append(line.rstrip())
            line = indent
        line += piece + ("" if last else " ")
    return "\n".join([*lines, line if items else head + tail]) + "\n"
