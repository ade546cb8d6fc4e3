# SPDX-License-Identifier: MIT
"""Builds the extension module by CMake, from the repository that this folder is a part of."""

import os
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

REPOSITORY = Path(__file__).resolve().parent.parent


class BuildByCMake(build_ext):
    """Has CMake make the module where setuptools wants it."""

    def build_extension(self, ext):
        target = Path(self.get_ext_fullpath(ext.name)).resolve()
        build = Path(self.build_temp).resolve()
        options = {
            "CMAKE_BUILD_TYPE": "Release",
            "MOLVA_PYTHON": "ON",
            "MARDLE_PROGRAM": "OFF",
            "MARDLE_TOOLS": "OFF",
            "MARDLE_TESTS": "OFF",
            "MARDLE_BENCHMARKS": "OFF",
            "Python3_EXECUTABLE": sys.executable,
        }
        try:
            import pybind11

            options["pybind11_DIR"] = pybind11.get_cmake_dir()
        except ImportError:
            pass  # CMake finds what the system has.
        defines = [f"-D{name}={value}" for name, value in options.items()]
        subprocess.run(["cmake", "-S", REPOSITORY, "-B", build, *defines], check=True)
        jobs = str(os.cpu_count() or 1)
        subprocess.run(
            ["cmake", "--build", build, "--target", "molva_python", "--parallel", jobs], check=True
        )
        target.parent.mkdir(parents=True, exist_ok=True)
        self.copy_file(build / "python" / "molva" / target.name, target)


setup(
    ext_modules=[Extension("molva._engine", sources=[])],
    cmdclass={"build_ext": BuildByCMake},
)
