# SPDX-License-Identifier: MIT
"""Bytes in files of text: what no line can show is written after a backslash.

  \\\\  a backslash    \\n \\r \\t  line ends and tab    \\s  a blank    \\xHH  any byte
"""

import re

LETTERS = {"\\": b"\\", "n": b"\n", "r": b"\r", "t": b"\t", "s": b" "}
SPELT = {value[0]: "\\" + letter for letter, value in LETTERS.items() if letter != "s"}
PIECES = re.compile(r"\\x([0-9a-f]{2})|\\([\\nrts])|([^\\]+)|(\\.{0,3})", re.S)


def unescape(text):
    """The bytes that a text stands for; ValueError when a backslash means nothing."""
    def value(piece):
        number, letter, plain, wrong = piece.groups()
        if wrong is not None:
            raise ValueError(f"unknown escape {wrong}")
        if plain is not None:
            return plain.encode()
        return bytes.fromhex(number) if number else LETTERS[letter]
    return b"".join(value(piece) for piece in PIECES.finditer(text))


def escape(data):
    """A line of printable ASCII without a blank at its end."""
    line = "".join(SPELT.get(byte) or (chr(byte) if 0x20 <= byte < 0x7f else f"\\x{byte:02x}")
                   for byte in data)
    return line[:-1] + "\\s" if line.endswith(" ") else line
