# SPDX-License-Identifier: MIT
"""Results as tables: of text for a terminal, of HTML for a notebook."""

from __future__ import annotations

from html import escape
from typing import Collection, Iterable, Iterator, Sequence

Line = Sequence[str]


def text_table(heads: Line, lines: Iterable[Line], left: Collection[int] = ()) -> str:
    """Return a table whose columns are as wide as their longest cell, numbers to the right.

    The columns numbered in `left` hold words, which stand to the left.
    """
    columns = []
    for number, cells in enumerate(zip(heads, *lines)):
        width = max(map(len, cells))
        words = number in left
        columns.append([cell.ljust(width) if words else cell.rjust(width) for cell in cells])
    return "\n".join("  ".join(line).rstrip() for line in zip(*columns))


def html_table(
    heads: Line, lines: Sequence[Line], left: Collection[int] = (), most: int | None = None
) -> str:
    """Return the same as HTML; of more than `most` lines the first ones, and how many are left."""
    shown = list(lines if most is None else lines[:most])
    table = ["<table>", f"<thead>{_html_line('th', heads, left)}</thead>", "<tbody>"]
    table += [_html_line("td", line, left) for line in shown]
    table += ["</tbody>", "</table>"]
    if len(shown) < len(lines):
        table.append(html_text(f"and {len(lines) - len(shown)} more"))
    return "\n".join(table)


def html_text(text: str) -> str:
    """Return lines of text as a paragraph each."""
    return "".join(f"<p>{escape(line)}</p>" for line in text.splitlines())


def _html_line(tag: str, cells: Line, left: Collection[int]) -> str:
    return f"<tr>{''.join(_html_cells(tag, cells, left))}</tr>"


def _html_cells(tag: str, cells: Line, left: Collection[int]) -> Iterator[str]:
    for number, cell in enumerate(cells):
        side = "left" if number in left else "right"
        yield f'<{tag} style="text-align: {side}">{escape(cell)}</{tag}>'
