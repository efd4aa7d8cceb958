"""Filters a gigapixel on a cluster of two worker processes, kills one of them in the middle, and compares the result
with that of the whole image in one call. Prints what it took.

    python3 gigapixel.py FOLDER [SIDE [CHUNK [MEMORY]]]
"""

import json
import os
import pathlib
import signal
import sys
import time

import dask.array as da
import numpy as np
import zarr
from dask.distributed import Client, LocalCluster, wait
from hymedian import hybrid_median
from hymedian.dask import hybrid_median as hybrid_median_of_chunks

RADIUS = 2


def _resident(process):
    try:
        with open(f"/proc/{process}/status") as status:
            return sum(int(line.split()[1]) for line in status if line.startswith("VmRSS")) / 1000
    except OSError:
        return 0


def _noise_chunk(block_id, chunk):
    return np.random.default_rng(block_id[0] * 10007 + block_id[1]).integers(0, 256, (chunk, chunk), np.uint8)


def _differing_rows(source, target, side):
    """Compares bands with the library's own call."""
    differing = 0
    for top in range(0, side, 2048):
        above, below = max(top - RADIUS, 0), min(top + 2048 + RADIUS, side)
        bottom = min(top + 2048, side)
        expected = hybrid_median(source[above:below], RADIUS, workers=2)[top - above : bottom - above]
        differing += int((expected != target[top:bottom]).any(1).sum())
    return differing


def run(folder, side=32768, chunk=2048, memory="1GB"):
    """Returns the figures, by name."""
    noisy, clean = (str(pathlib.Path(folder) / name) for name in ("noisy.zarr", "clean.zarr"))
    blocks = -(-side // chunk)
    noise = da.map_blocks(_noise_chunk, chunk=chunk, chunks=((chunk,) * blocks,) * 2, dtype=np.uint8)[:side, :side]
    figures = {"side": side, "chunk": chunk, "killed": False, "peak_mb_of_a_worker": 0.0}
    with LocalCluster(
        n_workers=2, threads_per_worker=1, processes=True, memory_limit=memory, dashboard_address=None
    ) as cluster, Client(cluster) as client:
        noise.rechunk(chunk).to_zarr(noisy, overwrite=True)
        result = hybrid_median_of_chunks(da.from_zarr(noisy), RADIUS)
        start = time.monotonic()
        written = client.compute(result.to_zarr(clean, overwrite=True, compute=False))
        target = zarr.open(clean, mode="r")
        while not written.done():
            processes = [worker.pid for worker in cluster.workers.values()]
            figures["peak_mb_of_a_worker"] = max([figures["peak_mb_of_a_worker"], *map(_resident, processes)])
            if not figures["killed"] and target.nchunks_initialized > target.nchunks / 3:
                figures["chunks_written_before_the_kill"] = target.nchunks_initialized
                os.kill(processes[0], signal.SIGKILL)
                figures["killed"] = True
            time.sleep(0.05)
        wait(written)
        written.result()
        figures["seconds"] = round(time.monotonic() - start, 1)
    figures["chunks"] = target.nchunks
    figures["equal"] = _differing_rows(zarr.open(noisy, mode="r"), target, side) == 0
    return figures


if __name__ == "__main__":
    arguments = sys.argv[1:]
    print(json.dumps(run(arguments[0], *map(int, arguments[1:3]), *arguments[3:4]), indent=4))
