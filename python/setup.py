"""Installs the nuvosim package with its native module compiled from the
project's sources (the library, the shared front-end helpers and python/src),
with the system's setuptools, pybind11 and numpy, offline:

    /usr/bin/python3 -m pip install --user --break-system-packages --no-build-isolation \
        --no-index ./python
"""

import glob
import os

from pybind11.setup_helpers import ParallelCompile, Pybind11Extension, build_ext
from setuptools import setup

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)
LIBRARY_FOLDERS = ["foundation", "data", "toolkit", "input", "constraints", "pyramid", "engine",
                   "runfile"]


def sources():
    files = [path for folder in LIBRARY_FOLDERS
             for path in sorted(glob.glob(os.path.join(ROOT, folder, "*.cpp")))]
    files += sorted(glob.glob(os.path.join(HERE, "src", "*.cpp")))
    return files


# Two compilers at a time unless NPY_NUM_BUILD_JOBS says otherwise.
ParallelCompile("NPY_NUM_BUILD_JOBS", default=2).install()

extension = Pybind11Extension(
    "nuvosim._nuvosim",
    sources(),
    include_dirs=[os.path.join(ROOT, "include"), ROOT, os.path.join(ROOT, "runfile")],
    define_macros=[("NUVO_STATIC", None), ("NUVO_BUILDING_LIBRARY", None)],
    # Bit-stable floating point, as in the project's build.
    extra_compile_args=["-ffp-contract=off", "-fno-fast-math", "-fopenmp"],
    extra_link_args=["-fopenmp"],
    cxx_std=20,
)

setup(
    name="nuvosim",
    version="3.2.0",
    description="Multiple-point geostatistical simulation on regular 3D grids",
    packages=["nuvosim"],
    ext_modules=[extension],
    cmdclass={"build_ext": build_ext},
    install_requires=["numpy"],
    python_requires=">=3.9",
)
