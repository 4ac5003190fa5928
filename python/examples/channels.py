"""The channels example from Python: simulate, plot, then the same realizations on
a local Dask cluster.

Run from the repository's root after `make demo` (which makes the training image
and the points) and with the package installed or built:
    PYTHONPATH=build/release/python /usr/bin/python3 python/examples/channels.py
It writes examples/channels2d/output/python_channels.png.
"""

import pathlib
import time

import numpy as np

import nuvosim
import nuvosim.distributed
import nuvosim.plot

FOLDER = pathlib.Path(__file__).resolve().parents[2] / "examples" / "channels2d"


def main():
    ti = nuvosim.read_image(FOLDER / "ti.gslib")
    points = np.loadtxt(FOLDER / "points.txt", skiprows=6)  # x, y, z, facies
    settings = dict(conditioning=points, nneighbors=30, threshold=0.03, max_scan_fraction=0.5,
                    nrealization=3, seed=20240)

    start = time.perf_counter()
    reals = nuvosim.simulate(ti, (200, 200, 1), **settings)
    print(f"{len(reals)} realizations in {time.perf_counter() - start:.1f} s")

    # The same realizations as `nuvosim run examples/channels2d/channels2d.in`.
    figure = nuvosim.plot.realizations(reals, columns=3)
    (FOLDER / "output").mkdir(exist_ok=True)
    figure.savefig(FOLDER / "output" / "python_channels.png", dpi=80)

    # Connectivity along the channels: the training image against the realizations.
    analysis = nuvosim.analyze(ti, reals, lags=40)
    print(f"pattern divergence {analysis.divergence:.4f} bits")
    ax = nuvosim.plot.curves(analysis, "connectivity_y", categories=[1])
    ax.figure.savefig(FOLDER / "output" / "python_connectivity_y.png", dpi=80)

    from dask.distributed import Client, LocalCluster

    with LocalCluster(n_workers=2, threads_per_worker=1) as cluster, Client(cluster) as client:
        start = time.perf_counter()
        spread = nuvosim.distributed.simulate(ti, (200, 200, 1), client=client, **settings)
        print(f"on 2 workers in {time.perf_counter() - start:.1f} s, "
              f"same values: {np.array_equal(spread, reals)}")


if __name__ == "__main__":
    main()
