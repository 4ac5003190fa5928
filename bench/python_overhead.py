"""The cost of the Python package over the C call, on the channels example
(3 realizations of a 200 x 200 grid, 250 x 250 training image, 25 points), and the
same realizations spread over 1 and 2 local Dask workers.

    PYTHONPATH=build/release/python /usr/bin/python3 bench/python_overhead.py

The C and Python runs are compared by processor time (user + system, of this
process or of the child), the best of four interleaved rounds, which other work
on the machine disturbs less than wall-clock time; the Dask runs by wall-clock
time. "C" runs examples/simulate (the C interface from end to end, reading the
parameter file, one thread); "run" is nuvosim.run on the same file and
"simulate" is nuvosim.simulate with the training image and points as arrays
(its files are written and read back by the library), both on one thread.
"""

import pathlib
import resource
import shutil
import subprocess
import sys
import tempfile
import time

import numpy as np

import nuvosim
import nuvosim.distributed

ROOT = pathlib.Path(__file__).resolve().parents[1]
BUILD = ROOT / "build" / "release"


def processor_seconds():
    own = resource.getrusage(resource.RUSAGE_SELF)
    children = resource.getrusage(resource.RUSAGE_CHILDREN)
    return own.ru_utime + own.ru_stime + children.ru_utime + children.ru_stime


def best(actions, repeat=3, clock=processor_seconds):
    """The shortest time of each action over `repeat` rounds of all of them."""
    times = [[] for _ in actions]
    for _ in range(repeat):
        for action, spent in zip(actions, times):
            start = clock()
            action()
            spent.append(clock() - start)
    return [min(spent) for spent in times]


def main():
    folder = pathlib.Path(tempfile.mkdtemp(prefix="nuvosim-bench-"))
    try:
        cli = str(BUILD / "apps" / "nuvosim")
        shutil.copy(ROOT / "examples" / "channels2d" / "channels2d.in", folder)
        (folder / "output").mkdir()
        for command in (["generate", "channels", "ti.gslib", "--nx", "250", "--ny", "250",
                         "--seed", "1"],
                        ["generate", "channels", "ref.gslib", "--nx", "200", "--ny", "200",
                         "--seed", "7"],
                        ["sample", "ref.gslib", "25", "points.txt", "--seed", "3"]):
            subprocess.run([cli, *command], cwd=folder, check=True, capture_output=True)
        ti = nuvosim.read_image(folder / "ti.gslib")
        points = np.loadtxt(folder / "points.txt", skiprows=6)
        settings = dict(conditioning=points, seed=20240, nrealization=3)
        simulate = str(BUILD / "examples" / "simulate")
        # Interleaved, so that the load of the machine weighs alike on the three.
        c_time, run_time, sim_time = best([
            lambda: subprocess.run([simulate, "channels2d.in"], cwd=folder, check=True,
                                   capture_output=True),
            lambda: nuvosim.run(folder / "channels2d.in", progress=False, threads=1),
            lambda: nuvosim.simulate(ti, (200, 200), progress=False, threads=1, **settings)],
            repeat=4)
        print(f"processor time: C {c_time:.3f} s, "
              f"run {run_time:.3f} s ({100 * (run_time / c_time - 1):+.1f} %), "
              f"simulate {sim_time:.3f} s ({100 * (sim_time / c_time - 1):+.1f} %)")

        from dask.distributed import Client, LocalCluster
        settings["nrealization"] = 8
        for workers in (1, 2):
            with LocalCluster(n_workers=workers, threads_per_worker=1, dashboard_address=None) \
                    as cluster, Client(cluster) as client:
                [spread] = best([lambda: nuvosim.distributed.simulate(
                    ti, (200, 200), client=client, **settings)], repeat=1, clock=time.perf_counter)
            print(f"8 realizations on {workers} Dask worker(s)  {spread:7.3f} s")
    finally:
        shutil.rmtree(folder)


if __name__ == "__main__":
    sys.exit(main())
