"""Builds the extension module with CMake, as CMakeLists.txt beside this file says."""

# SPDX-License-Identifier: Apache-2.0
import os
import re
import shlex
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

HERE = os.path.dirname(os.path.abspath(__file__))


def read_version():
    """The package has the version of the library whose sources it lies in."""
    with open(os.path.join(HERE, "..", "CMakeLists.txt"), encoding="utf-8") as file:
        return re.search(r"project\(pelkraft VERSION ([0-9.]+)", file.read()).group(1)


class BuildByCMake(build_ext):
    """Runs CMake, which finds an installed library in CMAKE_PREFIX_PATH or the system's folders.

    CMAKE_ARGS may hold more options.
    """

    def build_extension(self, ext):
        folder = os.path.abspath(self.build_temp)
        target = os.path.dirname(os.path.abspath(self.get_ext_fullpath(ext.name)))
        # An earlier run may have found another library.
        shutil.rmtree(folder, ignore_errors=True)
        options = [f"-DPython_EXECUTABLE={sys.executable}", "-DCMAKE_BUILD_TYPE=Release"]
        options += shlex.split(os.environ.get("CMAKE_ARGS", ""))
        subprocess.check_call(["cmake", "-S", HERE, "-B", folder, *options])
        subprocess.check_call(["cmake", "--build", folder])
        subprocess.check_call(
            ["cmake", "--install", folder, "--prefix", target, "--component", "python"]
        )


setup(
    version=read_version(),
    ext_modules=[Extension("pelkraft._core", sources=[])],
    cmdclass={"build_ext": BuildByCMake},
)
