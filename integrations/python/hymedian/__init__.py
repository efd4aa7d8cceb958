"""The hybrid vector median: removes specks and dust from images and keeps edges, corners and fine lines.

>>> import numpy, hymedian
>>> image = numpy.zeros((7, 7), numpy.uint8)
>>> image[:, 3] = 200           # a line of one pixel
>>> image[1, 5] = 255           # a speck
>>> clean = hymedian.hybrid_median(image, radius=1)
>>> int(clean[1, 5]), clean[:, 3].tolist()
(0, [200, 200, 200, 200, 200, 200, 200])

hymedian.dask has the same function for arrays that are larger than memory.
"""

from __future__ import annotations

import math
import numbers
from typing import Any, Optional, Tuple

import numpy as np
import numpy.typing as npt

from . import _native

__all__ = ["hybrid_median"]
__version__ = _native.version

_KINDS = ("uint8", "uint16", "float32")


def _whole(value: Any, name: str, least: int, greatest: float) -> int:
    if not isinstance(value, numbers.Real):
        raise TypeError(f"{name} must be a whole number, not {type(value).__name__}")
    # NaN and infinity are multiples of nothing.
    if value % 1 != 0 or not least <= int(value) <= greatest:
        limits = f"from {least} to {greatest}" if greatest < math.inf else f"of at least {least}"
        raise ValueError(f"{name} must be a whole number {limits}, not {value}")
    return int(value)


def _check_radius(radius: Any) -> int:
    return _whole(radius, "radius", 1, 6)


def _check_kind(dtype: np.dtype[Any]) -> None:
    if dtype == np.float64:
        raise TypeError("float64 would lose bits as float32; convert with image.astype(numpy.float32) if that is no loss")
    if dtype.newbyteorder("=").name not in _KINDS:
        raise TypeError(f"the image must be of {', '.join(_KINDS[:-1])} or {_KINDS[-1]}, not {dtype}")


def _check_axes(shape: Tuple[int, ...], channel_axis: Optional[int]) -> Optional[int]:
    """The channel axis, counted from the front; None for a grey image."""
    if channel_axis is None:
        if len(shape) != 2:
            raise ValueError(f"an image without channel_axis must have 2 axes, not {len(shape)}")
        return None
    if len(shape) != 3:
        raise ValueError(f"an image with channel_axis must have 3 axes, not {len(shape)}")
    axis = _whole(channel_axis, "channel_axis", -3, 2) % 3
    if shape[axis] not in (1, 3):
        raise ValueError(f"there must be 1 or 3 channels, not {shape[axis]}")
    return axis


def _check_range(value_range: Optional[Tuple[float, float]]) -> Tuple[float, float]:
    if value_range is None:
        return 0, 0
    sentence = f"value_range must be two finite numbers, the lesser one first, not {value_range}"
    try:
        least, greatest = value_range
        least, greatest = float(np.float32(least)), float(np.float32(greatest))
    except (TypeError, ValueError):
        raise TypeError(sentence) from None
    if not (np.isfinite(least) and np.isfinite(greatest) and least < greatest):
        raise ValueError(sentence)
    return least, greatest


def hybrid_median(
    image: npt.ArrayLike,
    radius: int = 2,
    *,
    channel_axis: Optional[int] = None,
    out: Optional[np.ndarray[Any, Any]] = None,
    workers: int = 1,
    value_range: Optional[Tuple[float, float]] = None,
) -> np.ndarray[Any, Any]:
    """Replace every pixel by the hybrid vector median of the pixels around it.

    Each result is one of the image's own pixels, with all its bits: colours are points in space, and nothing
    is mixed. Beyond the edges the outermost pixels repeat.

    Parameters
    ----------
    image : array of uint8, uint16 or float32
        Grey: (rows, columns). With `channel_axis`: (rows, columns, 1 or 3) or with the channels elsewhere. Any
        strides and either byte order; it is only read. uint16 is compared in 32769 steps from 0 to 65535.
    radius : int
        How far the filter looks, 1 to 6. Begin with 1.
    channel_axis : int, optional
        The axis of the channels; without it the image is grey.
    out : array, optional
        Takes the result: of the image's shape and dtype, and apart from it in memory.
    workers : int
        How many threads may work at once. The result is the same for any number.
    value_range : (float, float), optional
        Floats are compared in 32769 steps between these, and those beyond as these; without it, between the
        least and greatest finite sample of the image. Give it when an image is filtered in parts.

    Returns
    -------
    array
        `out`, or a new array of the image's shape and dtype. Pixels that are not finite stay as they are and
        are chosen nowhere else.

    Raises
    ------
    TypeError, ValueError
        In words: a dtype, shape or argument that is not taken, or an `out` that overlaps the image.

    The interpreter is free for other threads meanwhile. Ctrl-C cancels, and `out` is then as it was.
    To show progress, filter bands of rows with `radius` more rows above and below.

    >>> import numpy
    >>> hybrid_median(numpy.uint8([[9, 9, 9], [9, 0, 9], [9, 9, 9]]), 1).tolist()
    [[9, 9, 9], [9, 9, 9], [9, 9, 9]]
    """
    if isinstance(image, np.ma.MaskedArray):
        raise TypeError("a masked array would lose its mask; give its data, and mask the result")
    source = np.asarray(image)
    radius = _check_radius(radius)
    workers = _whole(workers, "workers", 1, float("inf"))
    _check_kind(source.dtype)
    axis = _check_axes(source.shape, channel_axis)
    least, greatest = _check_range(value_range)
    if source.size == 0:
        raise ValueError("the image is empty")
    fresh = out is None
    if out is None:
        out = np.empty_like(source, subok=False)
    elif not isinstance(out, np.ndarray):
        raise TypeError(f"out must be an array, not {type(out).__name__}")
    elif out.shape != source.shape or out.dtype != source.dtype:
        raise ValueError(f"out must be of shape {source.shape} and {source.dtype}, not {out.shape} and {out.dtype}")
    elif not out.flags.writeable:
        raise ValueError("out is read-only")
    elif np.may_share_memory(source, out):
        raise ValueError("image and out overlap")

    swapped = not source.dtype.isnative
    native = source.astype(source.dtype.newbyteorder("=")) if swapped else source
    result = np.empty_like(native) if swapped else out

    def rows_first(array: np.ndarray[Any, Any]) -> np.ndarray[Any, Any]:
        return array if axis is None else np.moveaxis(array, axis, -1)

    _native.filter(
        rows_first(native), rows_first(result), radius, min(workers, 256), least, greatest, fresh or swapped
    )
    if swapped:
        out[...] = result
    return out
