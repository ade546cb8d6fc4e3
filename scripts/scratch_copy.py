# SPDX-License-Identifier: MIT
"""A copy of the project to be changed and built at will; for the scripts beside it."""
import os
import shutil
import subprocess
import sys

kSource = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def run(arguments, **options):
    return subprocess.run(arguments, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          check=False, **options)


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def write(path, text):
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def replaced_once(path, text, other):
    """What the file holds, with the other text in the place of this one, which it holds once."""
    whole = read(path)
    if whole.count(text) != 1:
        sys.exit(f"{path} does not hold this once: {text}")
    return whole.replace(text, other)


class ScratchCopy:
    """The files that git knows, as they are now, in FOLDER/tree, and a release of them in
    FOLDER/build."""

    def __init__(self, folder):
        self.tree = os.path.join(folder, "tree")
        self.build = os.path.join(folder, "build")

    def refresh(self):
        """Brings the copy up to date; files that have not changed keep their times."""
        names = [name for name in run(["git", "ls-files"], cwd=kSource).stdout.splitlines()
                 if os.path.isfile(os.path.join(kSource, name))]
        for name in names:
            source, copy = os.path.join(kSource, name), os.path.join(self.tree, name)
            os.makedirs(os.path.dirname(copy), exist_ok=True)
            with open(source, "rb") as new:
                text = new.read()
            if os.path.isfile(copy):
                with open(copy, "rb") as old:
                    if old.read() == text:
                        continue
            shutil.copyfile(source, copy)
            shutil.copymode(source, copy)
        wanted = set(names)
        for folder, _, files in os.walk(self.tree):
            for file in files:
                path = os.path.join(folder, file)
                if os.path.relpath(path, self.tree) not in wanted:
                    os.remove(path)

    def path(self, name):
        return os.path.join(self.tree, name)

    def configure(self):
        launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []
        return run(["cmake", "-S", self.tree, "-B", self.build, "-DCMAKE_BUILD_TYPE=Release",
                    "-DMARDLE_TESTS=ON", *launcher])

    def make(self, targets, jobs):
        return run(["nice", "-n", "19", "cmake", "--build", self.build, "--parallel", str(jobs),
                    "--target", *targets])
