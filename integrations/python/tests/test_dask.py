import pathlib
import runpy

import dask
import dask.array as da
import numpy as np
import pytest
import zarr
from hymedian import hybrid_median
from hymedian.dask import hybrid_median as hybrid_median_of_chunks

EXAMPLES = pathlib.Path(__file__).parents[1] / "examples"


def noise(kind, shape):
    return np.random.default_rng(2).integers(0, 50, shape).astype(kind)


@pytest.mark.parametrize("kind", ["uint8", "uint16", "float32"])
@pytest.mark.parametrize("chunks", [(40, 33), (200, 7), (1, 50), ((5, 1, 94), (2, 2, 2, 74))])
def test_chunks_give_the_bits_of_the_whole(kind, chunks):
    image = noise(kind, (100, 80))
    if kind == "float32":
        image[3] = np.nan
        image[20:30, 5:60] = np.inf
        image[90:] *= 1000
    for radius in (1, 6):
        with dask.config.set({"array.chunk-size": "4KiB", "scheduler": "threads"}):
            result = hybrid_median_of_chunks(da.from_array(image, chunks), radius).compute()
        np.testing.assert_array_equal(result, hybrid_median(image, radius))


@pytest.mark.parametrize("shape", [(3, 40), (40, 1), (1, 1), (5, 4)])
def test_images_smaller_than_the_radius(shape):
    image = noise("uint8", shape)
    np.testing.assert_array_equal(hybrid_median_of_chunks(da.from_array(image, 2), 6).compute(), hybrid_median(image, 6))


def test_channels_are_kept_together():
    image = noise("uint8", (3, 60, 50))
    chunked = da.from_array(image, (1, 20, 20))
    result = hybrid_median_of_chunks(chunked, channel_axis=0)
    assert result.dtype == image.dtype and result.shape == image.shape
    np.testing.assert_array_equal(result.compute(), hybrid_median(image, channel_axis=0))


def test_a_picture_of_one_value_has_a_range_too():
    for value in (7, np.nan):
        image = np.full((9, 9), value, "float32")
        np.testing.assert_array_equal(hybrid_median_of_chunks(da.from_array(image, 3)).compute(), image)


@pytest.mark.parametrize(
    "error, array, options",
    [
        (ValueError, np.zeros((5, 5), "uint8"), {"radius": 7}),
        (TypeError, np.zeros((5, 5)), {}),
        (ValueError, np.zeros((5, 5, 2), "uint8"), {"channel_axis": 2}),
        (ValueError, np.zeros((0, 5), "uint8"), {}),
        (TypeError, None, {}),
        (ValueError, np.zeros((5, 5), "float32"), {"value_range": (1, 0)}),
    ],
)
def test_refuses_before_anything_is_computed(error, array, options):
    with pytest.raises(error):
        hybrid_median_of_chunks(array if array is None else da.from_array(array), **options)


@pytest.mark.filterwarnings("ignore")
def test_a_cluster_that_loses_a_worker_writes_the_same_store(tmp_path):
    """Two processes, a store that is read and written chunk by chunk, and a worker killed in the middle."""
    figures = runpy.run_path(str(EXAMPLES / "gigapixel.py"))["run"](tmp_path, side=3000, chunk=500)
    assert figures["killed"] and figures["equal"]


@pytest.mark.filterwarnings("ignore")
def test_the_example_filters_a_store(tmp_path, capsys):
    image = noise("uint8", (70, 60))
    zarr.save_array(str(tmp_path / "noisy.zarr"), image)
    main = runpy.run_path(str(EXAMPLES / "filter_zarr.py"))["main"]
    main([str(tmp_path / "noisy.zarr"), str(tmp_path / "clean.zarr"), "--radius", "3"])
    np.testing.assert_array_equal(zarr.open(str(tmp_path / "clean.zarr"))[:], hybrid_median(image, 3))
    assert "Completed" in capsys.readouterr().out
    with pytest.raises(SystemExit):
        main([str(tmp_path / "clean.zarr"), str(tmp_path / "noisy.zarr")])
    assert "noisy.zarr is there already" in capsys.readouterr().err
    np.testing.assert_array_equal(zarr.open(str(tmp_path / "noisy.zarr"))[:], image)
