"""Pictures of images and realizations with matplotlib.

Categorical variables (few distinct integer values) are drawn with one colour
per category, continuous ones with a colour map; missing values stay blank.
"""

import numpy as np

from .image import Image

# Categories beyond this count are drawn as a continuous variable.
_MAX_CATEGORIES = 10


def _slice(values, variable, z):
    """The 2D array (ny, nx) of ``variable`` at layer ``z`` of an Image or of an
    array of shape (nvar, nz, ny, nx), (nz, ny, nx) or (ny, nx)."""
    if isinstance(values, Image):
        values = values.values
    values = np.asarray(values, dtype=np.float64)
    values = values.reshape((1,) * (4 - values.ndim) + values.shape)
    return values[variable, z]


def _categories(layer):
    informed = layer[~np.isnan(layer)]
    codes = np.unique(informed)
    if len(codes) <= _MAX_CATEGORIES and np.array_equal(codes, np.round(codes)):
        return codes
    return None


def show(values, ax=None, variable=0, z=0, title=None, categorical=None, cmap=None):
    """Draws layer ``z`` of ``variable`` (y upwards) on ``ax`` (a new figure by
    default) and returns the axes. ``categorical``: None decides from the values
    (at most 10 distinct integers)."""
    import matplotlib.pyplot as plt
    from matplotlib.colors import BoundaryNorm, ListedColormap

    layer = _slice(values, variable, z)
    if ax is None:
        _, ax = plt.subplots()
    codes = _categories(layer) if categorical in (None, True) else None
    if codes is not None and len(codes) > 0:
        palette = ListedColormap(plt.get_cmap(cmap or "tab10").colors[:len(codes)])
        edges = np.concatenate([codes - 0.5, [codes[-1] + 0.5]])
        picture = ax.imshow(layer, origin="lower", cmap=palette, norm=BoundaryNorm(edges, len(codes)),
                            interpolation="nearest")
        ax.figure.colorbar(picture, ax=ax, ticks=codes)
    else:
        picture = ax.imshow(layer, origin="lower", cmap=cmap or "viridis", interpolation="nearest")
        ax.figure.colorbar(picture, ax=ax)
    if title:
        ax.set_title(title)
    return ax


def realizations(reals, columns=4, variable=0, z=0, size=3.0, categorical=None):
    """Draws layer ``z`` of ``variable`` of each realization of an array of shape
    (nrealization, nvar, nz, ny, nx) in a grid of panels; returns the figure."""
    import matplotlib.pyplot as plt

    reals = np.asarray(reals)
    count = len(reals)
    columns = max(1, min(columns, count))
    rows = -(-count // columns)
    figure, axes = plt.subplots(rows, columns, figsize=(size * columns, size * rows),
                                squeeze=False)
    for k, ax in enumerate(axes.flat):
        if k < count:
            show(reals[k], ax=ax, variable=variable, z=z, title=f"realization {k}",
                 categorical=categorical)
        else:
            ax.axis("off")
    figure.tight_layout()
    return figure


def curves(analysis, statistic, categories=None, ax=None):
    """Draws ``statistic`` of an :class:`~nuvosim.Analysis` against the lag (for
    example "variogram_x" or "connectivity_y"): per category the training image
    as a line, the realizations' mean dashed and their 5-95 % envelope shaded.
    ``categories``: those to draw (default: all). Returns the axes."""
    import matplotlib.pyplot as plt

    if ax is None:
        _, ax = plt.subplots()
    known = list(dict.fromkeys(row.category for row in analysis.rows
                               if row.statistic == statistic))
    if categories is not None:
        wanted = [c if isinstance(c, str) else f"{c:.0f}" for c in categories]
        known = [c for c in known if c in wanted]
    if not known:
        raise KeyError(f"no statistic {statistic!r} in the analysis")
    for k, category in enumerate(known):
        lags, ti, mean, p05, p95 = analysis.curve(statistic, category)
        colour = plt.get_cmap("tab10")(k % 10)
        label = f"category {category}" if category else "training image"
        ax.plot(lags, ti, color=colour, label=label)
        ax.plot(lags, mean, color=colour, linestyle="--")
        ax.fill_between(lags, p05, p95, color=colour, alpha=0.2)
    ax.set_xlabel("lag (nodes)")
    ax.set_ylabel(statistic)
    ax.set_title(f"{statistic}: training image (line), realizations (mean, 5-95 %)")
    ax.legend()
    return ax
