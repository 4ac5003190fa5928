"""NUVOSim from Python: multiple-point simulation on regular 3D grids.

Images are :class:`Image` objects holding a numpy array of shape
(nvar, nz, ny, nx) with NaN for missing values; simulations return arrays of
shape (nrealization, nvar, nz, ny, nx). :func:`simulate` covers the everyday
case, :func:`run` runs a parameter file as ``nuvosim run`` does, :func:`analyze`
compares realizations with their training image. The helpers of
:mod:`nuvosim.plot` (matplotlib) and :mod:`nuvosim.distributed` (Dask) are
imported on demand.
"""

from .analysis import Analysis, analyze
from .errors import NuvoError, NuvoWarning
from .image import Image, read_image, write_image
from .simulation import SimInput, run, simulate

__all__ = ["Analysis", "Image", "NuvoError", "NuvoWarning", "SimInput", "analyze",
           "read_image", "run", "simulate", "write_image"]
