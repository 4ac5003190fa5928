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


def test_analysis_of_arrays_and_its_curves():
    # Stripes along x: nodes alike along x, alternating along y every 3 rows; the
    # noisy copy has one isolated node in the middle of a stripe.
    ti = np.zeros((1, 1, 12, 16))
    ti[0, 0] = (np.arange(12)[:, None] // 3 % 2) * np.ones(16)
    noisy = ti.copy()
    noisy[0, 0, 4, 7] = 0
    analysis = nuvosim.analyze(ti, np.stack([ti, noisy]), lags=3)
    assert analysis.categorical and analysis.divergence > 0
    lags, at_ti, mean, p05, p95 = analysis.curve("variogram_y", 1)
    assert list(lags) == [1, 2, 3] and at_ti[0] == pytest.approx(3 / 22) and at_ti[2] == 0.5
    _, at_ti, mean, p05, p95 = analysis.curve("variogram_x", 1)
    assert at_ti.tolist() == [0, 0, 0] and 0 < p05[0] < mean[0] < p95[0]
    assert analysis.curve("isolated", 0)[1][0] == 0 and analysis.curve("isolated", 0)[4][0] > 0
    ax = nuvosim.plot.curves(analysis, "variogram_x")
    assert len(ax.lines) == 4 and len(ax.collections) == 2
    with pytest.raises(KeyError):
        nuvosim.plot.curves(analysis, "no_such_statistic")
