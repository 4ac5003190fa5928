"""Images: named variables on a regular grid, read from and written to the
library's file formats."""

import numpy as np

from . import _nuvosim


class Image:
    """Variables on a regular 3D grid.

    ``values``: float64 array of shape (nvar, nz, ny, nx), NaN where a value is
    missing (a 2D array (ny, nx) or a 3D array (nz, ny, nx) is taken as one
    variable). ``spacing`` and ``origin``: (x, y, z) cell sizes and the corner
    of the grid. ``names``: one per variable (default "V0", "V1", ...).
    """

    def __init__(self, values, spacing=(1.0, 1.0, 1.0), origin=(0.0, 0.0, 0.0), names=None):
        values = np.asarray(values)
        if not (np.issubdtype(values.dtype, np.number) or values.dtype == bool):
            raise TypeError(f"image values must be numbers, not {values.dtype}")
        if values.ndim in (2, 3):
            values = values.reshape((1,) * (4 - values.ndim) + values.shape)
        if values.ndim != 4:
            raise ValueError(f"image values need 2 to 4 axes, not shape {values.shape}")
        self.values = np.ascontiguousarray(values, dtype=np.float64)
        self.spacing = _triple(spacing, "spacing")
        self.origin = _triple(origin, "origin")
        if names is None:
            names = [f"V{k}" for k in range(self.nvar)]
        self.names = [str(name) for name in names]
        if len(self.names) != self.nvar:
            raise ValueError(f"{len(self.names)} names for {self.nvar} variable(s)")

    @property
    def nvar(self):
        return self.values.shape[0]

    @property
    def shape(self):
        """(nz, ny, nx)."""
        return self.values.shape[1:]

    def __repr__(self):
        nz, ny, nx = self.shape
        return (f"Image({nx} x {ny} x {nz} nodes, spacing {self.spacing}, origin "
                f"{self.origin}, variables {self.names})")


def _triple(values, what):
    triple = tuple(float(v) for v in values)
    if len(triple) != 3:
        raise ValueError(f"{what} needs 3 numbers (x, y, z)")
    return triple


def read_image(path, format=None):
    """Reads an image file. ``format``: "gslib", "vtk", "pgm", "ppm" or "bin"
    (GSLIB binary); by default the extension tells it (.gslib, .dat, .txt, .vtk,
    .pgm, .ppm, .bin, .gslibbin). Raises NuvoError for a file that cannot be
    opened or read."""
    values, spacing, origin, names = _nuvosim.read_image(str(path), format or "")
    return Image(values, spacing, origin, names)


def write_image(image, path, format=None, value_format="%.10g"):
    """Writes ``image`` (an Image, or an array taken as one) to ``path``;
    ``format`` as for :func:`read_image`. ``value_format``: printf conversions of
    the values of text formats, ";"-separated, reused over the variables
    ("%.17g" keeps every double exactly). A failed write leaves no file."""
    if not isinstance(image, Image):
        image = Image(image)
    _nuvosim.write_image(image.values, image.spacing, image.origin, image.names, str(path),
                         format or "", value_format)
