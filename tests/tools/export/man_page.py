# SPDX-License-Identifier: MIT
"""Every format and option of mardle-export --help is in its manual page, and no other.
   export_man_page.py MARDLE_EXPORT MAN_PAGE"""
import pathlib
import re
import subprocess
import sys


def help_text(program, *arguments):
    return subprocess.run([program, *arguments, "--help"], capture_output=True, text=True, check=True).stdout


def described(page):
    """The tags of the page: the first word of the line after each .TP."""
    tags = re.findall(r"^\.TP\n(.*)$", page.replace("\\-", "-"), re.M)
    return {re.sub(r"^\.\w+ |\\f.", "", tag).split("=")[0].split()[0] for tag in tags}


def main():
    program, page = sys.argv[1], pathlib.Path(sys.argv[2]).read_text()
    overview = help_text(program)
    formats = re.findall(r"^  (\w+) ", overview.split("Subcommands:")[1], re.M)
    assert len(formats) >= 6, formats
    options = set(re.findall(r"^  (--[\w-]+)", overview, re.M))
    for name in formats:
        options |= set(re.findall(r"^  (--[\w-]+)", help_text(program, name), re.M))
    tags = described(page)
    wanted, found = options | set(formats), {tag for tag in tags if tag.startswith("--") or tag in formats}
    assert wanted == found, f"missing: {sorted(wanted - found)}, unknown: {sorted(found - wanted)}"
    return 0


if __name__ == "__main__":
    sys.exit(main())
