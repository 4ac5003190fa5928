"""Simulations from Python: a parameter file run as ``nuvosim run`` runs it, and
the everyday case described by keyword arguments.

:class:`SimInput` mirrors the library's simulation input for the everyday case:
it writes its images and points to a folder with the parameter file that names
them, and the library reads, validates and simulates that file exactly as the
command line would. Everything else the library offers (constraints, pyramids,
transforms, additional maps) is reached through a parameter file and :func:`run`,
or through the raw sections ``constraints`` and ``pyramids``.
"""

import os
import tempfile

import numpy as np

from . import _nuvosim
from .image import Image, write_image
from .progress import progress_function

# Values of the files handed to the library keep every double exactly.
_EXACT = "%.17g"

_KEYWORDS = {
    "normalizing": ("NORMALIZING_", ("LINEAR", "UNIFORM", "NORMAL")),
    "simulation_type": ("SIM_", ("ONE_BY_ONE", "VARIABLE_VECTOR")),
    "path": ("PATH_", ("RANDOM", "RANDOM_HD_DISTANCE_PDF", "RANDOM_HD_DISTANCE_SORT",
                       "RANDOM_HD_DISTANCE_SUM_PDF", "RANDOM_HD_DISTANCE_SUM_SORT",
                       "UNILATERAL")),
}


def run(parameter_file, progress=True, threads=None):
    """Runs a parameter file as ``nuvosim run`` does (relative names from the
    file's folder, output files written as the file says; a run that fails or is
    interrupted removes the files it wrote) and returns the realizations, shape
    (nrealization, nvar, nz, ny, nx), NaN for missing values. ``progress``: True
    for a tqdm bar, False, or a callable (see :mod:`nuvosim.progress`). Ctrl-C
    stops the run and raises KeyboardInterrupt; failures raise NuvoError.
    ``threads``: of the simulation, None for every hardware thread, 1 for the
    serial engine; the realizations are the same for any number."""
    with progress_function(progress) as report:
        return _nuvosim.run_file(os.fspath(parameter_file), -1, True, report, _threads(threads))


def simulate(training_image, grid, *, conditioning=None, progress=True, threads=None,
             **settings):
    """Simulates on ``grid`` with the patterns of ``training_image`` and returns
    the realizations, shape (nrealization, nvar, nz, ny, nx).

    ``training_image``: an Image or an array (or a list of them for several
    training images); ``grid``: an Image (its grid is used) or (nx, ny, nz);
    ``conditioning``: points as an (n, 3 + nvar) array (x, y, z, values) or a
    dict of columns ("x", "y", "z" and variable names); ``settings``: the
    keyword arguments of :class:`SimInput` (nneighbors, threshold,
    max_scan_fraction, nrealization, seed, ...); ``threads``: as for :func:`run`.
    Files are not written.
    """
    sim_input = SimInput(training_image, grid, conditioning=conditioning, **settings)
    return sim_input.simulate(progress=progress, threads=threads)


class SimInput:
    """The input of a simulation, for what :func:`simulate` names.

    Per-variable settings take one value for all variables or a sequence with one
    per variable; ``max_scan_fraction`` takes one per training image.
    ``distance_type``: 0 categorical (fraction of differing nodes), 1 L1, 2 L2,
    4 L-inf. ``search``: the search neighbourhood section of a variable in the
    parameter file's words. ``constraints`` and ``pyramids``: the raw text of those
    sections (file names in them absolute). ``ti_probabilities``: with several
    training images, an image (or array) holding per node the probability of each
    training image (uniform by default).
    """

    def __init__(self, training_image, grid, *, conditioning=None, names=None,
                 spacing=(1.0, 1.0, 1.0), origin=(0.0, 0.0, 0.0), ti_probabilities=None,
                 mask=None, nneighbors=30, density=1.0, distance_type=0, threshold=0.03,
                 max_scan_fraction=0.5, relative_distance=0, weight_factor=1.0,
                 search=("SEARCHNEIGHBORHOOD_RADIUS_LARGE_DEFAULT "
                         "SEARCHNEIGHBORHOOD_ANISOTROPY_RATIO_ONE "
                         "SEARCHNEIGHBORHOOD_ROTATION_OFF -1.0"),
                 value_range_extension=0.0, normalizing="LINEAR",
                 simulation_type="VARIABLE_VECTOR", path="RANDOM", constraints="0 0 0",
                 pyramids="0", tolerance=0.5, post_processing=1, seed=1, seed_increment=1,
                 nrealization=1):
        tis = training_image if isinstance(training_image, (list, tuple)) else [training_image]
        if not tis:
            raise ValueError("at least one training image is needed")
        first = tis[0] if isinstance(tis[0], Image) else Image(tis[0])
        self.names = list(names) if names is not None else list(first.names)
        self.training_images = [ti if isinstance(ti, Image) else Image(ti, names=self.names)
                                for ti in tis]
        if isinstance(grid, Image):
            self.grid = grid.shape[::-1]
            spacing, origin = grid.spacing, grid.origin
        else:
            self.grid = tuple(int(n) for n in grid) + (1,) * (3 - len(grid))
        if len(self.grid) != 3 or min(self.grid) < 1:
            raise ValueError(f"grid needs 1 to 3 positive node counts, not {grid}")
        self.spacing, self.origin = tuple(map(float, spacing)), tuple(map(float, origin))
        self.conditioning = _points(conditioning, self.names, self.origin, self.spacing)
        self.ti_probabilities = ti_probabilities
        self.mask = mask
        nvar, nti = len(self.names), len(self.training_images)
        self.settings = {
            "nneighbors": _each(nneighbors, nvar, int, "nneighbors"),
            "density": _each(density, nvar, float, "density"),
            "relative_distance": _each(relative_distance, nvar, int, "relative_distance"),
            "distance_type": _each(distance_type, nvar, int, "distance_type"),
            "weight_factor": _each(weight_factor, nvar, float, "weight_factor"),
            "threshold": _each(threshold, nvar, float, "threshold"),
            "max_scan_fraction": _each(max_scan_fraction, nti, float, "max_scan_fraction"),
            "search": _each(search, nvar, str, "search"),
        }
        self.keywords = {key: _keyword(key, value) for key, value in
                         (("normalizing", normalizing), ("simulation_type", simulation_type),
                          ("path", path))}
        self.value_range_extension = float(value_range_extension)
        self.constraints, self.pyramids = constraints, pyramids
        self.tolerance, self.post_processing = float(tolerance), int(post_processing)
        self.seed, self.seed_increment = int(seed), int(seed_increment)
        self.nrealization = int(nrealization)

    def write(self, folder):
        """Writes the images, the points and "sim.in" (realizations kept in memory,
        no output file) to ``folder``; returns the parameter file's path."""
        nti = len(self.training_images)
        for k, ti in enumerate(self.training_images):
            write_image(ti, os.path.join(folder, f"ti{k}.gslib"), "gslib", _EXACT)
        files = [f"ti{k}.gslib" for k in range(nti)]
        if nti > 1:
            probabilities = self.ti_probabilities
            if probabilities is None:
                probabilities = np.full((nti,) + self.grid[::-1], 1.0 / nti)
            write_image(self._on_grid(probabilities, [f"P{k}" for k in range(nti)]),
                        os.path.join(folder, "pdfti.gslib"), "gslib", _EXACT)
            files.append("pdfti.gslib")
        points = "0"
        if self.conditioning is not None:
            _write_points(os.path.join(folder, "points.txt"), self.conditioning, self.names)
            points = "1 points.txt"
        mask = "0"
        if self.mask is not None:
            write_image(self._on_grid(self.mask, ["mask"]), os.path.join(folder, "mask.gslib"),
                        "gslib", _EXACT)
            mask = "1 mask.gslib"
        s = self.settings
        nx, ny, nz = self.grid
        lines = [
            f"{nx} {ny} {nz}", _join(self.spacing), _join(self.origin),
            str(len(self.names)),
            *(f"{name} 1 DEFAULT_FORMAT" for name in self.names),
            "OUTPUT_SIM_NO_FILE", "0 0 0 0", "0",
            str(nti), *files,
            "0", points, mask, "0", "0",
            repr(self.value_range_extension), self.keywords["normalizing"],
            *s["search"],
            _join(s["nneighbors"]), _join(s["density"]),
            " ".join("RESCALING_NONE" for _ in self.names),
            _join(s["relative_distance"]), _join(s["distance_type"]),
            _join(s["weight_factor"]),
            self.keywords["simulation_type"], self.keywords["path"],
            _join(s["threshold"]),
            self.constraints, _join(s["max_scan_fraction"]), self.pyramids,
            repr(self.tolerance),
            f"{self.post_processing} POST_PROCESSING_PARAMETERS_DEFAULT"
            if self.post_processing > 0 else "0",
            f"{self.seed} {self.seed_increment}", str(self.nrealization), "END", ""]
        path = os.path.join(folder, "sim.in")
        with open(path, "w", encoding="ascii") as stream:
            stream.write("\n".join(lines))
        return path

    def simulate(self, realization=-1, progress=True, threads=None):
        """Runs the simulation (only realization ``realization`` when it is not
        negative, as the library runs it inside the whole job) on ``threads``
        threads (as for :func:`run`) and returns the realizations, shape
        (nrealization, nvar, nz, ny, nx)."""
        with tempfile.TemporaryDirectory(prefix="nuvosim-") as folder:
            path = self.write(folder)
            with progress_function(progress) as report:
                return _nuvosim.run_file(path, realization, False, report, _threads(threads))

    def _on_grid(self, values, names):
        if isinstance(values, Image):
            return values
        image = Image(values, self.spacing, self.origin, names)
        if image.shape != self.grid[::-1]:
            raise ValueError(f"an image of shape {image.shape} on a grid of shape "
                             f"{self.grid[::-1]}")
        return image


def _threads(threads):
    if threads is None:
        return 0
    if int(threads) < 1:
        raise ValueError(f"threads: {threads} is not a positive number")
    return int(threads)


def _join(values):
    return " ".join(repr(v) if isinstance(v, float) else str(v) for v in values)


def _each(value, n, kind, what):
    values = [value] if isinstance(value, (str, int, float, np.number)) else list(value)
    if len(values) == 1:
        values = values * n
    if len(values) != n:
        raise ValueError(f"{what}: {len(values)} values for {n}")
    return [kind(v) for v in values]


def _keyword(key, value):
    prefix, words = _KEYWORDS[key]
    word = str(value).upper().removeprefix(prefix)
    if word not in words:
        raise ValueError(f"{key}: {value!r} is not one of {', '.join(words)}")
    return prefix + word


def _points(conditioning, names, origin, spacing):
    """Conditioning points as a float64 (n, 3 + nvar) array, or None."""
    if conditioning is None:
        return None
    if isinstance(conditioning, dict):
        columns = dict(conditioning)
        count = len(np.atleast_1d(next(iter(columns.values()))))
        for axis, k in (("x", 0), ("y", 1), ("z", 2)):
            columns.setdefault(axis, np.full(count, origin[k] + 0.5 * spacing[k]))
        missing = [name for name in ["x", "y", "z"] + names if name not in columns]
        if missing:
            raise ValueError(f"conditioning: no column {', '.join(missing)}")
        conditioning = np.column_stack([np.asarray(columns[name], dtype=np.float64)
                                        for name in ["x", "y", "z"] + names])
    points = np.asarray(conditioning)
    if not np.issubdtype(points.dtype, np.number):
        raise TypeError(f"conditioning points must be numbers, not {points.dtype}")
    points = np.atleast_2d(points).astype(np.float64)
    if points.ndim != 2 or points.shape[1] != 3 + len(names) or len(points) == 0:
        raise ValueError(f"conditioning points need shape (n, {3 + len(names)}), "
                         f"not {points.shape}")
    if not np.isfinite(points[:, :3]).all():
        raise ValueError("conditioning points need finite coordinates")
    return points


def _write_points(path, points, names):
    values = np.where(np.isnan(points), -9999999.0, points)
    with open(path, "w", encoding="ascii") as stream:
        stream.write(f"{len(points)}\n{3 + len(names)}\nx\ny\nz\n")
        stream.writelines(f"{name}\n" for name in names)
        stream.writelines(" ".join(repr(float(v)) for v in row) + "\n" for row in values)
