"""How well realizations reproduce the statistics of their training image: the
measures of ``nuvosim analyze``, for images and arrays."""

from collections import namedtuple

import numpy as np

from . import _nuvosim
from .image import Image

Row = namedtuple("Row", "statistic category lag ti mean p05 p95")
Row.__doc__ = """One statistic: its value on the training image, and the mean and the
5-95 % envelope over the realizations (NaN where undefined). ``lag`` is 0 for a
statistic without lag, ``category`` empty for a continuous variable."""


class Analysis:
    """The result of :func:`analyze`: ``rows`` (a list of :class:`Row`),
    ``categorical``, and ``divergence``, the Jensen-Shannon divergence in bits of
    the 3 x 3 patterns (NaN for a continuous variable)."""

    def __init__(self, categorical, rows, divergence):
        self.categorical = categorical
        self.rows = [Row(*row) for row in rows]
        self.divergence = divergence

    def statistics(self):
        """The names of the statistics measured, in order."""
        return list(dict.fromkeys(row.statistic for row in self.rows))

    def curve(self, statistic, category=""):
        """(lags, ti, mean, p05, p95) arrays of ``statistic`` (for example
        "variogram_x") and ``category`` (a number or its text)."""
        if category != "" and not isinstance(category, str):
            category = f"{category:.0f}"
        picked = [row for row in self.rows if row.statistic == statistic
                  and row.category == category]
        if not picked:
            raise KeyError(f"no statistic {statistic!r} for category {category!r}")
        columns = np.array([row[2:] for row in picked], dtype=np.float64)
        return tuple(columns[:, k] for k in range(5))

    def __repr__(self):
        kind = "categorical" if self.categorical else "continuous"
        return f"Analysis({kind}, {len(self.rows)} rows, divergence {self.divergence:.4g})"


def _values(image):
    values = image.values if isinstance(image, Image) else np.asarray(image, dtype=np.float64)
    return values.reshape((1,) * (4 - values.ndim) + values.shape)


def analyze(ti, realizations, variable=0, lags=10):
    """Measures variable ``variable`` (index) of the training image ``ti`` (an
    Image or an array) and of ``realizations`` (an array of shape (nrealization,
    nvar, nz, ny, nx), as :func:`simulate` returns, or a list of images) up to
    ``lags`` nodes along each axis. A variable with at most 20 distinct whole
    values is categorical: per category its proportion, isolated share,
    indicator variograms and connectivity function; otherwise a summary and
    variograms. Returns an :class:`Analysis`."""
    reals = [_values(real) for real in realizations]
    return Analysis(*_nuvosim.analyze(_values(ti), reals, int(variable), int(lags)))
