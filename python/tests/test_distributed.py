import numpy as np
import pytest

import nuvosim
import nuvosim.distributed
from conftest import copy_of

distributed = pytest.importorskip("dask.distributed")


def test_two_worker_processes_give_the_serial_realizations(channels, tmp_path):
    folder = copy_of(channels, tmp_path)
    ti = nuvosim.read_image(channels / "ti.gslib")
    settings = dict(seed=5, seed_increment=3, nrealization=4, threshold=0.1)
    serial = nuvosim.simulate(ti, (30, 20), progress=False, **settings)
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                  dashboard_address=None) as cluster, \
            distributed.Client(cluster) as client:
        spread = nuvosim.distributed.simulate(ti, (30, 20), client=client, **settings)
        from_file = nuvosim.distributed.run(folder / "channels.in", client=client)
    assert np.array_equal(spread, serial)
    assert np.array_equal(from_file, nuvosim.run(folder / "channels.in", progress=False))
