#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Reads what was built for what a release promises of it.

Usage: hardening.py READELF NM PROGRAM SHARED_LIBRARY ENGINE ARCHIVE...

The program and the shared library: loaded anywhere, nothing writable that the loader has bound, no
stack that runs, stack and formatted output checked. All archives: entry points marked. ENGINE, the
archive that hosts come to run: it asks no other allocator than its own for memory, so none throws
into them.
"""

import subprocess
import sys


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def line_with(text, word):
    return next((line for line in text.splitlines() if word in line), "")


def loaded_faults(readelf, nm, image):
    header = output_of(readelf, "-hW", image)
    segments = output_of(readelf, "-lW", image)
    dynamic = output_of(readelf, "-dW", image)
    imports = output_of(nm, "-D", "--undefined-only", image)
    stack = line_with(segments, "GNU_STACK").split()
    promises = {
        "is position-independent": "DYN" in line_with(header, "Type:"),
        "has relocations made read-only": "GNU_RELRO" in segments,
        "is bound at its start": "BIND_NOW" in dynamic,
        "has no relocations in its code": "TEXTREL" not in dynamic,
        "has no search path of its own": "RPATH" not in dynamic and "RUNPATH" not in dynamic,
        "has a stack that cannot run": bool(stack) and "E" not in stack[6],
        "checks its stack": "__stack_chk_fail" in imports,
        "checks formatted output": "__printf_chk" in imports and "__fprintf_chk" in imports,
    }
    return [f"{image}: not true that it {promise}" for promise, kept in promises.items()
            if not kept]


def unmarked_objects(readelf, archive):
    """Objects whose functions do not tell where calls may enter."""
    parts = output_of(readelf, "-nW", archive).split("\nFile: ")[1:]
    return [f"{part.splitlines()[0]}: no marks of -fcf-protection" for part in parts
            if "IBT" not in part or "SHSTK" not in part] + ([] if parts else [f"{archive}: empty"])


def foreign_allocations(nm, engine):
    wanted = output_of(nm, "-C", "--undefined-only", engine)
    words = (" U operator new", " U malloc", " U calloc", " U std::__throw")
    return [f"{engine}: asks for {line.split(' U ')[-1]}" for line in wanted.splitlines()
            if any(word in line for word in words)]


def main():
    if len(sys.argv) < 6:
        sys.exit(__doc__)
    readelf, nm, program, shared, engine, *archives = sys.argv[1:]
    faults = loaded_faults(readelf, nm, program) + loaded_faults(readelf, nm, shared)
    faults += foreign_allocations(nm, engine)
    for archive in (engine, *archives):
        faults += unmarked_objects(readelf, archive)
    print("\n".join(faults or ["all kept"]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
