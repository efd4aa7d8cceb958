"""Ten pictures, what `hymedian` makes of them, and how to compare it with what others make of them."""

import os
import subprocess

import numpy as np
import tifffile

RADII = range(1, 7)


def _shapes(rows, columns, channels):
    """Soft shapes, edges and hairlines, with specks: values from 0 to 1."""
    random = np.random.default_rng(7)
    y, x = np.mgrid[:rows, :columns]
    picture = np.stack([0.5 + 0.4 * np.sin(x / (9 + 4 * c)) * np.cos(y / (13 - 2 * c)) for c in range(channels)], -1)
    picture[rows // 3 : rows // 2, columns // 4 : columns // 2] = 0.9
    picture[:, columns // 5] = 0.1
    picture[(x == y) | (x == 2 * y)] = 0.95
    specks = random.random((rows, columns)) < 0.1
    picture[specks] = random.random((specks.sum(), channels))
    return picture


def _as(kind, values):
    values = values[..., 0] if values.shape[-1] == 1 else values
    return values.astype(kind) if kind == "float32" else np.rint(values * np.iinfo(kind).max).astype(kind)


def _noise(kind, shape, steps):
    return _as(kind, np.random.default_rng(3).integers(0, steps, shape) / (steps - 1))


def pictures():
    """By name; floats reach beyond 0 to 1, and some are not finite."""
    floats = {
        name: (3 * _shapes(70, 90, channels) - 0.5).astype("float32") for name, channels in (("grey", 1), ("rgb", 3))
    }
    floats["rgb"][30:36, 20:60, 1] = np.nan
    floats["rgb"][5, 5] = np.inf
    return {
        "grey8": _as("uint8", _shapes(120, 150, 1)),
        "rgb8": _as("uint8", _shapes(140, 190, 3)),
        "rgb8-few": _noise("uint8", (60, 61, 3), 3),
        "rgb8-row": _noise("uint8", (1, 47, 3), 256),
        "grey8-pixel": _noise("uint8", (1, 1, 1), 256),
        "grey16": _as("uint16", _shapes(90, 131, 1)),
        "rgb16": _as("uint16", _shapes(100, 90, 3)),
        "rgb16-noise": _noise("uint16", (64, 65, 3), 65536),
        "grey-float": floats["grey"][..., 0],
        "rgb-float": floats["rgb"],
    }


def filtered_by_program(folder, name, picture, radius, *options):
    """What hymedian, the program named by HYMEDIAN_PROGRAM, makes of a picture."""
    source, result = folder / f"{name}.tif", folder / f"{name}-{radius}.tif"
    tifffile.imwrite(source, picture, photometric="rgb" if picture.ndim == 3 else "minisblack")
    subprocess.run(
        [os.environ["HYMEDIAN_PROGRAM"], "--quiet", "--force", "--radius", str(radius), *options, source, "-o", result],
        check=True,
    )
    return tifffile.imread(result).reshape(picture.shape)


def _compared(picture, value_range):
    """On the scale on which pixels are compared."""
    if picture.dtype == np.uint8:
        return picture
    if picture.dtype == np.uint16:
        return picture // 2 + picture % 2
    least, greatest = value_range
    with np.errstate(invalid="ignore"):
        steps = np.clip((picture.astype(float) - least) / (greatest - least), 0, 1) * 32768
    return np.where(np.isnan(steps), -1, np.floor(steps + 0.5))


def _pixels(picture):
    channels = picture.shape[2] if picture.ndim == 3 else 1
    return np.ascontiguousarray(picture).reshape(-1, channels).view(f"V{channels * picture.itemsize}")


def assert_same_choice(result, expected, source, value_range=None):
    """The results are the same pixels on the scale on which they are compared, and pixels of the source."""
    assert result.dtype == source.dtype and result.shape == source.shape
    finite = source[np.isfinite(source)].astype(float)
    value_range = value_range or (finite.min(), finite.max())
    np.testing.assert_array_equal(_compared(result, value_range), _compared(expected, value_range))
    assert set(_pixels(result).ravel().tolist()) <= set(_pixels(source).ravel().tolist())
