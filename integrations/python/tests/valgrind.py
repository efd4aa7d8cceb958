"""Every way into and out of the native part, for scripts/test-integrations.sh to run under valgrind."""

import signal
import sys

import numpy as np
from hymedian import _native, hybrid_median

RANDOM = np.random.default_rng(1)


def arrays():
    for kind in ("uint8", "uint16", "float32"):
        for shape, axis in (((20, 31), None), ((20, 31, 3), 2), ((3, 20, 31), 0), ((1, 1), None)):
            array = RANDOM.integers(0, 256, shape).astype(kind)
            if kind == "float32":
                array.flat[0] = np.nan
            yield array, axis
            yield array[::-1], axis
            yield array.astype(array.dtype.newbyteorder()), axis


def refuses(error, call):
    try:
        call()
    except error:
        return
    raise AssertionError(f"no {error.__name__}")


for array, axis in arrays():
    out = np.empty_like(array)
    references = sys.getrefcount(array), sys.getrefcount(out)
    hybrid_median(array, 6, channel_axis=axis, workers=2)
    hybrid_median(array, 1, channel_axis=axis, workers=2, out=out)
    refuses(ValueError, lambda: _native.filter(array, array, 1, 1, 0, 0, False))
    assert references == (sys.getrefcount(array), sys.getrefcount(out))

large = RANDOM.integers(0, 256, (600, 600, 3), np.uint8)
signal.signal(signal.SIGALRM, signal.default_int_handler)
signal.setitimer(signal.ITIMER_REAL, 0.05)
refuses(KeyboardInterrupt, lambda: hybrid_median(large, 6, channel_axis=2, workers=2))
