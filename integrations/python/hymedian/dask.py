"""The hybrid vector median of Dask arrays: images that are larger than memory, on many processors or machines."""

from __future__ import annotations

from typing import Any, Optional, Tuple

import dask.array as da
import numpy as np

from . import _check_axes, _check_kind, _check_radius, _check_range
from . import hybrid_median as _hybrid_median

__all__ = ["hybrid_median"]


def _filter_chunk(
    chunk: np.ndarray[Any, Any],
    radius: int,
    channel_axis: Optional[int],
    value_range: Any,
) -> np.ndarray[Any, Any]:
    if chunk.size == 0:
        return chunk
    if value_range is not None and not value_range[0] < value_range[1]:
        # One value alone, or none at all: no range tells pixels apart.
        value_range = (0, 1)
    return _hybrid_median(chunk, radius, channel_axis=channel_axis, value_range=value_range)


def _finite_range(array: da.Array) -> Any:
    finite = da.isfinite(array)
    return da.stack([da.where(finite, array, np.inf).min(), da.where(finite, array, -np.inf).max()])


def hybrid_median(
    array: da.Array,
    radius: int = 2,
    *,
    channel_axis: Optional[int] = None,
    value_range: Optional[Tuple[float, float]] = None,
) -> da.Array:
    """Replace every pixel by the hybrid vector median of the pixels around it, chunk by chunk.

    The result has the bits of `hymedian.hybrid_median` over the whole image, however it is cut into chunks and
    wherever these are computed. Parameters are as there. Nothing is computed before the result is.

    Chunks that are smaller than the radius are merged with their neighbours, and channels that are chunks of
    their own with each other. An image of floats is cut into whole rows, since a pixel that is not finite takes
    part as the nearest finite one of its row; without `value_range`, it is read once more for its least and
    greatest samples.
    """
    if not isinstance(array, da.Array):
        raise TypeError(f"the image must be a Dask array, not {type(array).__name__}")
    radius = _check_radius(radius)
    _check_kind(array.dtype)
    axis = _check_axes(array.shape, channel_axis)
    _check_range(value_range)
    if array.size == 0 or np.isnan(array.size):
        raise ValueError("the image is empty, or its size is not known")
    # What is not cut into chunks needs no overlap; Dask refuses overlaps that are wider than the array.
    depth = {i: radius if i != axis and array.shape[i] > radius else 0 for i in range(array.ndim)}
    array = array.rechunk({i: -1 for i in depth if depth[i] == 0})
    rows, columns = (i for i in range(array.ndim) if i != axis)
    ends: Any = value_range
    if array.dtype.kind == "f":
        array = array.rechunk({rows: "auto" if depth[rows] else -1, columns: -1})
        if ends is None:
            ends = _finite_range(array)
    return da.map_overlap(
        _filter_chunk,
        array,
        depth=depth,
        boundary="none",
        dtype=array.dtype,
        meta=np.empty((0,) * array.ndim, array.dtype),
        radius=radius,
        channel_axis=axis,
        value_range=ends,
    )
