import resource
import subprocess
import warnings

import numpy as np
import pytest

import nuvosim
from conftest import copy_of


def command_line_realizations(nuvosim_bin, folder):
    subprocess.run([nuvosim_bin, "run", "-q", "channels.in"], cwd=folder, check=True,
                   capture_output=True)
    return np.stack([nuvosim.read_image(folder / f"output/channels_real0000{r}.gslib").values
                     for r in range(3)])


def test_run_and_simulate_give_the_command_line_realizations(channels, nuvosim_bin, tmp_path):
    expected = command_line_realizations(nuvosim_bin, copy_of(channels, tmp_path / "cli"))
    assert expected.shape == (3, 1, 1, 40, 50)

    folder = copy_of(channels, tmp_path / "py")
    reals = nuvosim.run(folder / "channels.in", progress=False)
    assert np.array_equal(reals, expected)
    written = nuvosim.read_image(folder / "output/channels_real00002.gslib").values
    assert np.array_equal(written, expected[2])

    ti = nuvosim.read_image(channels / "ti.gslib")
    points = np.loadtxt(channels / "points.txt", skiprows=6)
    settings = dict(conditioning=points, seed=20240, nrealization=3, progress=False)
    assert np.array_equal(nuvosim.simulate(ti, (50, 40), **settings), expected)
    assert np.array_equal(nuvosim.simulate(ti, (50, 40), threads=1, **settings), expected)
    # The columns as a dict, and a realization run alone, give the same values.
    columns = {"x": points[:, 0], "y": points[:, 1], "facies": points[:, 3]}
    alone = nuvosim.SimInput(ti, (50, 40), conditioning=columns, seed=20240, nrealization=3)
    assert np.array_equal(alone.simulate(realization=1, progress=False)[0], expected[1])


def test_images_round_trip_in_every_format(tmp_path):
    values = np.arange(24, dtype=np.float64).reshape(2, 2, 3, 2)
    values[1, 0, 1, 1] = np.nan
    image = nuvosim.Image(values, spacing=(1, 2, 0.5), origin=(10, 20, 30), names=["a", "b"])
    for name in ("img.gslib", "img.vtk", "img.bin"):
        nuvosim.write_image(image, tmp_path / name, value_format="%.17g")
        back = nuvosim.read_image(tmp_path / name)
        assert np.array_equal(back.values, values, equal_nan=True), name
        assert (back.spacing, back.origin, back.names) == (image.spacing, image.origin, ["a", "b"])
    grey = nuvosim.Image(np.array([[0, 255], [7, 9]]))
    nuvosim.write_image(grey, tmp_path / "grey.pgm", value_format="%d")
    assert np.array_equal(nuvosim.read_image(tmp_path / "grey.pgm").values, grey.values)
    (tmp_path / "plain.pgm").write_text("P2\n2 1\n255\n12 200\n")
    assert nuvosim.read_image(tmp_path / "plain.pgm").values.ravel().tolist() == [12, 200]
    (tmp_path / "over.pgm").write_text("P2\n2 1\n255\n12 300\n")
    with pytest.raises(ValueError, match="outside 0..255"):
        nuvosim.read_image(tmp_path / "over.pgm")
    with pytest.raises(ValueError, match="outside 0..255"):
        nuvosim.write_image(nuvosim.Image(np.array([[256.0]])), tmp_path / "high.pgm")
    assert not (tmp_path / "high.pgm").exists()


def test_bad_input_raises_clear_errors(channels, tmp_path):
    ti = nuvosim.read_image(channels / "ti.gslib")
    with pytest.raises(TypeError):
        nuvosim.Image(np.array([["a", "b"]]))
    with pytest.raises(ValueError, match="shape"):
        nuvosim.simulate(ti, (10, 10), conditioning=np.zeros((3, 2)), progress=False)
    with pytest.raises(ValueError, match="nneighbors"):
        nuvosim.simulate(ti, (10, 10), nneighbors=[1, 2], progress=False)
    with pytest.raises(nuvosim.NuvoError) as missing:
        nuvosim.read_image(tmp_path / "none.gslib")
    assert missing.value.code == -109 and "none.gslib" in str(missing.value)
    for values, code in ((np.inf, -628), (np.nan, None)):
        with pytest.raises(nuvosim.NuvoError) as refused:
            nuvosim.simulate(np.full((8, 8), values), (5, 5), progress=False)
        assert refused.value.code == code if code else refused.value.code < 0
    bad = tmp_path / "bad.in"
    bad.write_text((channels / "channels.in").read_text().replace("PATH_RANDOM ", "PATH_NOWHERE "))
    with pytest.raises(nuvosim.NuvoError, match=r"line \d+, at \"PATH_NOWHERE\""):
        nuvosim.run(bad, progress=False)


def test_warnings_and_progress_reach_python(channels):
    ti = nuvosim.read_image(channels / "ti.gslib")
    outside = np.array([[1000.0, 5.5, 0.5, 1.0]])
    seen = []
    with warnings.catch_warnings(record=True) as caught:
        warnings.simplefilter("always")
        nuvosim.simulate(ti, (30, 30), conditioning=outside,
                         progress=lambda *state: seen.append(state))
    assert seen and seen[-1][3] == 100
    assert [str(w.message)[:13] for w in caught] == ["WARNING 00042"]
    assert caught[0].category is nuvosim.NuvoWarning
    with warnings.catch_warnings():
        warnings.simplefilter("error", nuvosim.NuvoWarning)
        with pytest.raises(nuvosim.NuvoWarning):
            nuvosim.simulate(ti, (30, 30), conditioning=outside, progress=False)


def test_a_thousand_small_simulations_keep_memory_flat():
    # A training image of 12.8 kB: losing a copy of it per run would show.
    ti = np.indices((40, 40)).sum(axis=0) % 2

    def batch(count):
        for seed in range(count):
            nuvosim.simulate(ti, (16, 16), seed=seed + 1, nneighbors=4, progress=False)
        return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss

    before = batch(100)
    assert batch(1000) - before < 4096  # kilobytes
