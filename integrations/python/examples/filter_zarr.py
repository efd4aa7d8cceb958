"""Filters a Zarr store into another one, chunk by chunk, with a progress bar: on this machine's processors, or
on a cluster whose scheduler's address is given.

    python3 filter_zarr.py noisy.zarr clean.zarr --radius 2
    python3 filter_zarr.py noisy.zarr clean.zarr --radius 2 --cluster tcp://head-node:8786
"""

import argparse

import dask.array as da
import zarr
from dask.diagnostics import ProgressBar
from hymedian.dask import hybrid_median


def main(arguments=None):
    parser = argparse.ArgumentParser(description="Filters a Zarr store into another one.")
    parser.add_argument("source")
    parser.add_argument("target")
    parser.add_argument("--radius", type=int, default=2)
    parser.add_argument("--channel-axis", type=int)
    parser.add_argument("--cluster", metavar="ADDRESS", help="of a Dask scheduler; without it, this machine alone")
    options = parser.parse_args(arguments)

    noisy = da.from_zarr(options.source)
    clean = hybrid_median(noisy, options.radius, channel_axis=options.channel_axis)
    # A store's chunks are all of one size: those of the source.
    try:
        written = clean.rechunk(noisy.chunksize).to_zarr(options.target, compute=False)
    except zarr.errors.ContainsArrayError:
        parser.error(f"{options.target} is there already; remove it, or choose another target")
    if options.cluster is None:
        with ProgressBar():
            written.compute()
        return
    from dask.distributed import Client, progress

    with Client(options.cluster) as client:
        result = client.compute(written)
        progress(result, notebook=False)
        result.result()  # raises what went wrong


if __name__ == "__main__":
    main()
