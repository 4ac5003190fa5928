"""A small version of the channels example, made with the nuvosim program, shared
by the tests."""

import os
import pathlib
import shutil
import subprocess

import pytest

EXAMPLE = pathlib.Path(__file__).resolve().parents[2] / "examples" / "channels2d" / "channels2d.in"


@pytest.fixture(scope="session")
def nuvosim_bin():
    return os.environ["NUVOSIM_BIN"]


@pytest.fixture(scope="session")
def channels(tmp_path_factory, nuvosim_bin):
    """A folder with ti.gslib (80 x 80), points.txt (12 points) and channels.in
    (3 realizations of a 50 x 40 grid, one file per realization in output/)."""
    folder = tmp_path_factory.mktemp("channels")
    commands = [["generate", "channels", "ti.gslib", "--nx", "80", "--ny", "80", "--seed", "1"],
                ["generate", "channels", "ref.gslib", "--nx", "50", "--ny", "40", "--seed", "7"],
                ["sample", "ref.gslib", "12", "points.txt", "--seed", "3"]]
    for command in commands:
        subprocess.run([nuvosim_bin, *command], cwd=folder, check=True, capture_output=True)
    text = EXAMPLE.read_text()
    text = text.replace("200 200 1          // number", "50 40 1  // number")
    text = text.replace("1 output/report.txt", "0")
    (folder / "channels.in").write_text(text)
    return folder


def copy_of(folder, tmp_path):
    target = tmp_path / "copy"
    shutil.copytree(folder, target)
    return target
