#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Installs into an empty prefix and builds the clients of examples/clients against it.

    run.py BUILD SOURCE

Once with CMake's find_package and once with pkg-config, each client run and its output compared, and
likewise the program of docs/library.md; compares the bits of the shared and the static library; then
looks at what the libraries show and need.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

BUILD, SOURCE = (pathlib.Path(p).resolve() for p in sys.argv[1:3])

# Worked out by hand. The rows of docs/criteria.md; three pairs with cosines 0.6 between the first
# two and 0 otherwise, so that the root joins 2 and 4 rows of similarity 0; words with the shares 9/10
# and 1/10, 16/25 and 9/25, and half of each in the squared distance 2 of two orthogonal clusters.
EXPECTED = {
    "cluster_rows": """\
row 0: cluster 0
row 1: cluster 0
row 2: cluster 1
row 3: cluster 1
cluster 0: 2 rows, inside 1.00, outside 0.04
cluster 1: 2 rows, inside 0.64, outside 0.04
I2 = 3.60
""",
    "cluster_tree": """\
pairs one and two are siblings
node 3: similarity 0.60, parent 4
node 4: similarity 0.00, parent -1
""",
    "cluster_words": """\
cluster 0
  describing: apple 90.0% pear 10.0%
  telling: apple 45.0% hammer 32.0%
cluster 1
  describing: hammer 64.0% saw 36.0%
  telling: apple 45.0% hammer 32.0%
""",
}

failures = []


def check(holds, what):
    print("ok  " if holds else "FAIL", what)
    if not holds:
        failures.append(what)


def run(*command, **options):
    done = subprocess.run([str(c) for c in command], capture_output=True, text=True, **options)
    if done.returncode != 0:
        print(done.stdout, done.stderr, sep="\n")
        sys.exit(f"FAIL {' '.join(map(str, command))}: status {done.returncode}")
    return done.stdout


def check_clients(folder, environment, how):
    for client, expected in EXPECTED.items():
        output = run(folder / client, env=environment)
        if output != expected:
            print(output)
        check(output == expected, f"{client}, {how}")


def check_bits(folder, libdir, flags, environment):
    """Every entry point gives the same bits, whichever library is linked."""
    source = SOURCE / "tests/reliability/entry_points.c"
    run("cc", "-std=c11", "-I", SOURCE, source, "-o", folder / "by-shared", *flags)
    run("cc", "-std=c11", "-I", SOURCE, source, "-o", folder / "by-static", libdir / "libmolva.a",
        "-lstdc++", "-lm")
    run(BUILD / "tests/entry_points", folder / "internal.bits")
    wanted = (folder / "internal.bits").read_bytes()
    check(len(wanted) > 10000, "every entry point leaves results")
    for program in ("by-shared", "by-static"):
        run(folder / program, folder / "bits", env=environment)
        check((folder / "bits").read_bytes() == wanted, f"the same bits, linked {program}")


def check_page(folder, flags, environment):
    """The program of docs/library.md, and what it says that it prints."""
    page = (SOURCE / "docs/library.md").read_text()
    program, printed = (re.sub("^    ", "", block, flags=re.M) for beginning in ("#include", "row 0:")
                        for block in re.findall(rf"^    {beginning}.*?(?=^\S)", page, re.M | re.S))
    (folder / "four.c").write_text(program)
    run("cc", "-std=c11", "-Wall", "-Wextra", "-Werror", folder / "four.c", "-o", folder / "four",
        *flags)
    check(run(folder / "four", env=environment).strip() == printed.strip(), "docs/library.md")


def main(work):
    prefix = work / "prefix"
    run("cmake", "--install", BUILD, "--prefix", prefix)
    libdir = next(prefix.glob("lib/**/libmolva.so.1")).parent
    environment = dict(os.environ, LD_LIBRARY_PATH=str(libdir))

    run("cmake", "-S", SOURCE / "examples/clients", "-B", work / "by-cmake",
        f"-DCMAKE_PREFIX_PATH={prefix}")
    run("cmake", "--build", work / "by-cmake")
    check_clients(work / "by-cmake", environment, "by find_package")

    by_pkg_config = work / "by-pkg-config"
    by_pkg_config.mkdir()
    for client in EXPECTED:
        source = next((SOURCE / "examples/clients").glob(client + ".c*"))
        flags = run("pkg-config", "--cflags", "--libs", "molva",
                    env=dict(os.environ, PKG_CONFIG_PATH=str(libdir / "pkgconfig"))).split()
        compiler = ["cc", "-std=c11"] if source.suffix == ".c" else ["c++", "-std=c++17"]
        run(*compiler, "-Wall", "-Wextra", "-Werror", source, "-o", by_pkg_config / client, *flags)
    check_clients(by_pkg_config, environment, "by pkg-config")

    check_page(by_pkg_config, flags, environment)
    check_bits(by_pkg_config, libdir, flags, environment)

    shared = libdir / "libmolva.so.1"
    names = {line.split()[-1] for line in run("nm", "-D", "--defined-only", shared).splitlines()}
    headers = "".join(header.read_text() for header in (prefix / "include").glob("molva*.h"))
    declared = set(re.findall(r"\bMOLVA_API .*?\b(MOLVA_\w+)\(", headers))
    check(names == declared, f"the shared library shows the {len(declared)} entry points alone")
    if names != declared:
        print(sorted(names ^ declared))
    dynamic = run("readelf", "-d", shared)
    check("[libmolva.so.1]" in dynamic, "its SONAME is libmolva.so.1")
    check("libplot" not in dynamic, "it does not need libplot")


with tempfile.TemporaryDirectory() as folder:
    if not shutil.which("pkg-config"):
        sys.exit("FAIL pkg-config is not installed")
    main(pathlib.Path(folder))
print(f"{len(failures)} failed")
sys.exit(1 if failures else 0)
