# SPDX-License-Identifier: MIT
"""A copy of the project to be changed and built at will; for the scripts beside it."""
import filecmp
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
    """The files that git knows, as they are now, in FOLDER, and the preset release of them."""

    def __init__(self, folder):
        self.tree = folder
        self.build = os.path.join(folder, "build-release")

    def path(self, name):
        return os.path.join(self.tree, name)

    def refresh(self):
        """Brings the copy up to date; files that have not changed keep their times."""
        names = [name for name in run(["git", "ls-files"], cwd=kSource).stdout.splitlines()
                 if os.path.isfile(os.path.join(kSource, name))]
        for name in names:
            self.refresh_file(os.path.join(kSource, name), self.path(name))
        wanted = set(names)
        for folder, folders, files in os.walk(self.tree):
            folders[:] = [name for name in folders if not name.startswith("build")]
            for path in (os.path.join(folder, name) for name in files):
                if os.path.relpath(path, self.tree) not in wanted:
                    os.remove(path)

    @staticmethod
    def refresh_file(source, copy):
        if os.path.isfile(copy) and filecmp.cmp(source, copy, shallow=False):
            return
        os.makedirs(os.path.dirname(copy), exist_ok=True)
        shutil.copyfile(source, copy)
        shutil.copymode(source, copy)

    # Laid out as the project is, so that ccache has what the project's own release is made of.
    def configure(self, *settings):
        launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []
        return run(["cmake", "--preset", "release", *launcher, *settings], cwd=self.tree,
                   env=dict(os.environ, CCACHE_BASEDIR=self.tree))

    def make(self, targets, jobs):
        return run(["nice", "-n", "19", "cmake", "--build", self.build, "--parallel", str(jobs),
                    "--target", *targets], env=dict(os.environ, CCACHE_BASEDIR=self.tree))
