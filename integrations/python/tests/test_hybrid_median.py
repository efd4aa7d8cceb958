import doctest
import os
import signal
import threading
import time

import hymedian
import numpy as np
import pytest
from hymedian import hybrid_median

from pictures import RADII, assert_same_choice, filtered_by_program, pictures

PICTURES = pictures()
NOISE = np.random.default_rng(1).integers(0, 256, (60, 70, 3), np.uint8)


def filtered(picture, radius=2, **options):
    return hybrid_median(picture, radius, channel_axis=-1 if picture.ndim == 3 else None, **options)


@pytest.mark.parametrize("name", PICTURES)
def test_gives_what_the_program_gives(name, tmp_path):
    picture = PICTURES[name]
    before = picture.copy()
    for radius in RADII:
        result = filtered(picture, radius, workers=1 + radius % 2)
        assert_same_choice(result, filtered_by_program(tmp_path, name, picture, radius), picture)
    np.testing.assert_array_equal(picture, before)


@pytest.mark.parametrize("kind", ["uint8", "uint16", "float32"])
def test_takes_arrays_however_they_lie_in_memory(kind):
    noise = NOISE.astype(kind)
    expected = filtered(noise)
    wide = np.zeros((60, 140, 5), kind)
    wide[:, ::2, 1:4] = noise
    upside_down = np.ascontiguousarray(noise[::-1, ::-1, ::-1])[::-1, ::-1, ::-1]
    swapped = noise.astype(noise.dtype.newbyteorder())
    unaligned = np.frombuffer(b"x" + noise.tobytes(), kind, offset=1).reshape(noise.shape)
    for array in (wide[:, ::2, 1:4], upside_down, np.asfortranarray(noise), swapped, unaligned):
        for out in (None, np.zeros_like(array), np.zeros((60, 70, 6), array.dtype)[:, :, ::2]):
            result = filtered(array, out=out)
            assert result.dtype == array.dtype and (out is None or result is out)
            np.testing.assert_array_equal(result, expected)
    for axis in (0, 1, 2, -1, -3):
        moved = np.moveaxis(noise, -1, axis)
        np.testing.assert_array_equal(hybrid_median(moved, channel_axis=axis), np.moveaxis(expected, -1, axis))
    np.testing.assert_array_equal(hybrid_median(noise[..., :1], channel_axis=2)[..., 0], hybrid_median(noise[..., 0]))
    np.testing.assert_array_equal(filtered(np.broadcast_to(noise[:1], noise.shape)), np.broadcast_to(noise[:1], noise.shape))


def test_a_range_makes_parts_of_floats_comparable():
    noise = NOISE[..., 0].astype("float32")
    noise[0, 0] = 1e6
    whole = hybrid_median(noise, value_range=(0, 255))
    np.testing.assert_array_equal(hybrid_median(noise[20:40], value_range=(0, 255))[2:-2], whole[22:38])
    assert (hybrid_median(noise) != whole).any()


GRAY = NOISE[..., 0]


@pytest.mark.parametrize(
    "error, words, call",
    [
        (ValueError, "radius .* from 1 to 6, not 0", lambda: hybrid_median(GRAY, 0)),
        (ValueError, "radius .* not 7", lambda: hybrid_median(GRAY, 7)),
        (ValueError, "radius .* not nan", lambda: hybrid_median(GRAY, float("nan"))),
        (ValueError, "radius .* not 2.5", lambda: hybrid_median(GRAY, 2.5)),
        (TypeError, "radius .* not str", lambda: hybrid_median(GRAY, "2")),
        (ValueError, "workers .* at least 1, not 0", lambda: hybrid_median(GRAY, workers=0)),
        (ValueError, "workers .* not inf", lambda: hybrid_median(GRAY, workers=float("inf"))),
        (TypeError, "float64 would lose bits", lambda: hybrid_median(GRAY / 255)),
        (TypeError, "not int64", lambda: hybrid_median(GRAY.astype("int64"))),
        (TypeError, "masked", lambda: hybrid_median(np.ma.masked_less(GRAY, 9))),
        (ValueError, "2 axes, not 3", lambda: hybrid_median(NOISE)),
        (ValueError, "3 axes, not 2", lambda: hybrid_median(GRAY, channel_axis=-1)),
        (ValueError, "channel_axis .* from -3 to 2, not 3", lambda: hybrid_median(NOISE, channel_axis=3)),
        (TypeError, "channel_axis .* not str", lambda: hybrid_median(NOISE, channel_axis="last")),
        (ValueError, "1 or 3 channels, not 2", lambda: hybrid_median(NOISE[..., :2], channel_axis=2)),
        (ValueError, "1 or 3 channels, not 60", lambda: hybrid_median(NOISE, channel_axis=0)),
        (ValueError, "empty", lambda: hybrid_median(GRAY[:0])),
        (ValueError, "value_range", lambda: hybrid_median(GRAY.astype("f4"), value_range=(1, 1))),
        (ValueError, "value_range", lambda: hybrid_median(GRAY.astype("f4"), value_range=(0, float("inf")))),
        (TypeError, "value_range must be two", lambda: hybrid_median(GRAY.astype("f4"), value_range=1)),
        (TypeError, "value_range must be two", lambda: hybrid_median(GRAY.astype("f4"), value_range=(1, "b"))),
        (TypeError, "value_range must be two", lambda: hybrid_median(GRAY.astype("f4"), value_range=(1, 2, 3))),
        (TypeError, "out must be an array", lambda: hybrid_median(GRAY, out=[])),
        (ValueError, "out must be of shape", lambda: hybrid_median(GRAY, out=np.empty_like(GRAY.T))),
        (ValueError, "out must be of shape .* and uint8", lambda: hybrid_median(GRAY, out=np.empty(GRAY.shape, "u2"))),
        (ValueError, "overlap", lambda: (lambda a: hybrid_median(a, out=a))(GRAY.copy())),
        (ValueError, "overlap", lambda: (lambda a: hybrid_median(a[1:], out=a[:-1]))(GRAY.copy())),
        (ValueError, "overlap", lambda: (lambda a: hybrid_median(a, out=a))(GRAY.astype(">u2"))),
        (ValueError, "share bytes", lambda: hybrid_median(GRAY, out=np.lib.stride_tricks.as_strided(
            np.empty(70, np.uint8), GRAY.shape, (0, 1)))),
        (ValueError, "read-only", lambda: hybrid_median(GRAY, out=np.broadcast_to(np.uint8(0), GRAY.shape))),
    ],
)
def test_refuses_in_words(error, words, call):
    with pytest.raises(error, match=words):
        call()


def test_is_free_for_other_threads_and_ctrl_c_cancels():
    big = np.random.default_rng(1).integers(0, 256, (6000, 3000), np.uint8)
    out = np.full_like(big, 90)
    ticks = []
    # Shells start what runs in the background without it.
    signal.signal(signal.SIGINT, signal.default_int_handler)

    def interrupt():
        for _ in range(20):
            time.sleep(0.001)
            ticks.append(time.monotonic())
        os.kill(os.getpid(), signal.SIGINT)

    helper = threading.Thread(target=interrupt)
    helper.start()
    with pytest.raises(KeyboardInterrupt):
        hybrid_median(big, 6, out=out, workers=2)
    assert len(ticks) == 20 and time.monotonic() - ticks[-1] < 1
    helper.join()
    assert (out == 90).all()


def test_examples_in_the_help_are_true():
    result = doctest.testmod(hymedian)
    assert result.attempted > 4 and result.failed == 0
