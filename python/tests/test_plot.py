import numpy as np
import pytest

matplotlib = pytest.importorskip("matplotlib")
matplotlib.use("Agg")
import nuvosim.plot  # noqa: E402


def test_categories_get_a_palette_and_realizations_a_panel_each():
    reals = np.zeros((3, 1, 2, 4, 5))
    reals[:, 0, 1] = np.arange(20).reshape(4, 5) % 3
    reals[0, 0, 1, 0, 0] = np.nan
    ax = nuvosim.plot.show(reals[0], z=1)
    assert ax.images[0].cmap.N == 3
    assert list(ax.figure.axes[-1].get_yticks()) == [0, 1, 2]
    continuous = nuvosim.plot.show(np.linspace(0, 1, 20).reshape(4, 5))
    assert continuous.images[0].cmap.N > 3
    figure = nuvosim.plot.realizations(reals, columns=2, z=1)
    titled = [ax.get_title() for ax in figure.axes if ax.get_title()]
    assert titled == ["realization 0", "realization 1", "realization 2"]
