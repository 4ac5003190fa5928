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
