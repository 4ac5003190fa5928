"""Realizations spread over a Dask cluster.

Realization r of a job depends only on seed + r * seed_increment, so each task
runs one realization alone and the gathered array is, bit for bit, what the
serial call returns. The inputs travel once to every worker (scattered with
broadcast), then one realization comes back per task.

Point a client at a real cluster with its scheduler address::

    from dask.distributed import Client
    client = Client("tcp://scheduler-host:8786")
    realizations = nuvosim.distributed.simulate(ti, (200, 200, 1), nrealization=100,
                                                client=client)

Every worker needs nuvosim installed. Each task runs its realization on one
thread, the cluster's processes being the parallelism: give workers one thread
each and several processes (runs started from several threads of one process
take their turns).
:func:`run` reads the parameter file and the
files it names on the workers, at the same absolute path (a shared file
system), and writes no output file.
"""

import os

import numpy as np

from . import _nuvosim
from .simulation import SimInput


def simulate(training_image, grid, *, client, conditioning=None, **settings):
    """:func:`nuvosim.simulate` with its realizations run as tasks of ``client``
    (a ``dask.distributed.Client``); same arguments, same result."""
    sim_input = SimInput(training_image, grid, conditioning=conditioning, **settings)
    [shared] = client.scatter([sim_input], broadcast=True)
    futures = client.map(_input_realization, [shared] * sim_input.nrealization,
                         range(sim_input.nrealization))
    return np.stack(client.gather(futures))


def run(parameter_file, *, client):
    """The realizations of a parameter file (see :func:`nuvosim.run`) run as tasks
    of ``client``; no output file is written."""
    path = os.path.abspath(parameter_file)
    count = _nuvosim.realization_count(path)
    futures = client.map(_file_realization, [path] * count, range(count))
    return np.stack(client.gather(futures))


def _input_realization(sim_input, realization):
    return sim_input.simulate(realization=realization, progress=False, threads=1)[0]


def _file_realization(path, realization):
    return _nuvosim.run_file(path, realization, False, None, 1)[0]
