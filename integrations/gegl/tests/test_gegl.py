"""The operation in the `gegl` command. HYMEDIAN_GEGL_FOLDER is where the module is."""

import os
import pathlib
import subprocess
import sys

import numpy as np
import pytest
import tifffile

sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "tests"))
from pictures import RADII, assert_same_choice, filtered_by_program, pictures

OPERATION = "hymedian:hybrid-median"
PICTURES = pictures()
SYSTEM_FOLDER = subprocess.run(
    ["pkg-config", "--variable=pluginsdir", "gegl-0.4"], capture_output=True, text=True, check=True
).stdout.strip()


def gegl(*arguments, threads=1):
    environment = dict(os.environ, GEGL_PATH=f"{os.environ['HYMEDIAN_GEGL_FOLDER']}:{SYSTEM_FOLDER}")
    environment.update(GEGL_THREADS=str(threads), GEGL_USE_OPENCL="no")
    finished = subprocess.run(["gegl", *map(str, arguments)], env=environment, capture_output=True, text=True)
    assert finished.returncode == 0 and "WARNING" not in finished.stderr, finished.stderr
    return finished.stdout


@pytest.fixture(autouse=True, scope="session")
def the_operation_exists():
    """Pictures pass through an unknown operation with status 0."""
    assert OPERATION in gegl("--list-all").split()


def filtered(folder, picture, radius, *before, after=(), threads=1):
    source, result = folder / "source.tif", folder / f"gegl-{radius}-{threads}.tif"
    tifffile.imwrite(source, picture, photometric="rgb" if picture.ndim == 3 else "minisblack")
    gegl(source, "--", *before, OPERATION, f"radius={radius}", *after, "gegl:tiff-save",
         f"path={result}", f"bitdepth={8 * picture.itemsize}", threads=threads)
    result = tifffile.imread(result)
    return result.reshape(picture.shape) if result.size == picture.size else result


@pytest.mark.parametrize("name", PICTURES)
def test_gives_what_the_program_gives(name, tmp_path):
    picture = PICTURES[name]
    value_range = (0, 1) if picture.dtype == np.float32 else None
    options = ("--range", "0,1") if value_range else ()
    for radius in RADII:
        expected = filtered_by_program(tmp_path, name, picture, radius, *options)
        result = filtered(tmp_path, picture, radius, threads=1 + radius % 2)
        assert_same_choice(result, expected, picture, value_range)


def test_threads_and_parts_change_nothing(tmp_path):
    picture = np.tile(PICTURES["rgb-float"], (9, 11, 1))
    one = filtered(tmp_path, picture, 3, threads=1)
    np.testing.assert_array_equal(filtered(tmp_path, picture, 3, threads=2), one)
    # Only a part is asked for, of an operation before it that computes only what is asked of that. What stands in for
    # the pixels there that are not finite is far to the left and right.
    for name, before in (("rgb-float", "gegl:nop"), ("rgb-float", "gegl:invert"), ("rgb8", "gegl:nop")):
        whole = filtered(tmp_path, PICTURES[name], 3, before)
        part = filtered(tmp_path, PICTURES[name], 3, before, after=["gegl:crop", *"x=28 y=25 width=20 height=9".split()])
        np.testing.assert_array_equal(part, whole[25:34, 28:48])


def test_alpha_passes_by(tmp_path):
    picture = np.random.default_rng(1).integers(0, 256, (50, 60, 4), np.uint8)
    picture[10:20, :, 3] = 0
    source, result = tmp_path / "alpha.tif", tmp_path / "alpha-gegl.tif"
    tifffile.imwrite(source, picture, photometric="rgb", extrasamples=["unassalpha"])
    gegl(source, "--", OPERATION, "radius=2", "gegl:tiff-save", f"path={result}", "bitdepth=8")
    filtered_picture = tifffile.imread(result)
    np.testing.assert_array_equal(filtered_picture[..., 3], picture[..., 3])
    expected = filtered_by_program(tmp_path, "colours", np.ascontiguousarray(picture[..., :3]), 2)
    np.testing.assert_array_equal(filtered_picture[..., :3], expected)


def test_pictures_without_end_and_radii_beyond_the_limits(tmp_path):
    pattern = ["gegl:checkerboard", "x=7", "y=3", "color1=rgb(0.2,0.4,0.6)", "gegl:noise-rgb", "red=0.5", "seed=3"]
    inner, outer = (["gegl:crop", *f"x={x} y={x} width={w} height={w}".split()] for x, w in ((-40, 90), (-60, 130)))
    results = []
    for number, chain in enumerate(
        ([OPERATION, "radius=6"], [*outer, OPERATION, "radius=6"], [OPERATION])
    ):
        path = tmp_path / f"{number}.tif"
        gegl("--", *pattern, *chain, *inner, "gegl:tiff-save", f"path={path}", "bitdepth=32", threads=2)
        results.append(tifffile.imread(path))
    np.testing.assert_array_equal(results[0], results[1])
    assert (results[0] != results[2]).any()
    with pytest.raises(AssertionError, match="out of range"):
        gegl("--", *pattern, OPERATION, "radius=7", *inner, "gegl:tiff-save", f"path={path}")
