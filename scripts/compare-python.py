#!/usr/bin/python3
"""Compares hymedian in Python with the medians that Python programs have, as far as these are installed
(python3-scipy, python3-skimage, python3-opencv): speed, colours invented, hairlines kept. Prints Markdown.

    compare-python.py [FOLDER]      also writes the three pictures of docs/python.md there
"""

import sys
import time

import hymedian
import numpy as np

RADII = (1, 2, 3, 4)
LEAST_CALLS, LEAST_TIME = 5, 0.7


def filters():
    """By name: a function of a picture and a radius, and how many pixels it is measured on."""
    found = {
        "hymedian, one thread": (lambda p, r: hymedian.hybrid_median(p, r, channel_axis=-1), 12e6),
        "hymedian, two threads": (lambda p, r: hymedian.hybrid_median(p, r, channel_axis=-1, workers=2), 12e6),
    }
    try:
        import cv2

        def blur(threads):
            def call(p, r):
                cv2.setNumThreads(threads)
                return cv2.medianBlur(p, 2 * r + 1)

            return call

        found["cv2.medianBlur, one thread"] = (blur(1), 12e6)
        found["cv2.medianBlur, two threads"] = (blur(2), 12e6)
    except ImportError:
        pass
    try:
        from scipy import ndimage

        found["scipy.ndimage.median_filter"] = (
            lambda p, r: ndimage.median_filter(p, (2 * r + 1, 2 * r + 1, 1), mode="nearest"), 0.5e6)
    except ImportError:
        pass
    try:
        from skimage.filters import rank

        found["skimage.filters.rank.median"] = (
            lambda p, r: np.stack([rank.median(p[..., c], np.ones((2 * r + 1,) * 2, np.uint8)) for c in range(3)], -1), 0.5e6)
    except ImportError:
        pass
    return found


def seconds(call):
    """The least of several calls."""
    times = []
    while len(times) < LEAST_CALLS or sum(times) < LEAST_TIME:
        start = time.perf_counter()
        call()
        times.append(time.perf_counter() - start)
    return min(times)


def soft_picture(rows, columns):
    y, x = np.mgrid[:rows, :columns]
    soft = [128 + 100 * np.sin(x / (40 + 9 * c)) * np.cos(y / (53 - 7 * c)) for c in range(3)]
    return np.stack(soft, -1).astype(np.uint8)


def with_specks(picture, part):
    random = np.random.default_rng(1)
    noisy = picture.copy()
    specks = random.random(picture.shape[:2]) < part
    noisy[specks] = random.integers(0, 256, (specks.sum(), 3))
    return noisy


def invented(result, source, radius):
    """The part of the results whose colour none of the pixels around has."""
    padded = np.pad(source, ((radius, radius), (radius, radius), (0, 0)), mode="edge")
    known = np.zeros(result.shape[:2], bool)
    for dy in range(2 * radius + 1):
        for dx in range(2 * radius + 1):
            around = padded[dy : dy + result.shape[0], dx : dx + result.shape[1]]
            known |= (around == result).all(-1)
    return 1 - known.mean()


def hairlines_kept(function, radius):
    """The part of level, upright and diagonal lines of one pixel that keeps its colour."""
    picture = soft_picture(240, 240)
    y, x = np.mgrid[:240, :240]
    lines = (y == 60) | (x == 60) | (x + y == 300) | (y - x == 110)
    picture[lines] = (250, 250, 90)
    return (function(picture, radius) == picture).all(-1)[lines].mean()


def table(title, rows, cell):
    print(f"\n{title}\n\n| | " + " | ".join(f"{2 * r + 1} × {2 * r + 1}" for r in RADII) + " |")
    print("|---|" + "---|" * len(RADII))
    for name, (function, pixels) in rows.items():
        print(f"| {name} | " + " | ".join(cell(function, pixels, r) for r in RADII) + " |", flush=True)


def write_pictures(folder, functions):
    import imageio
    from skimage import data

    picture = np.ascontiguousarray(data.astronaut()[20:220, 110:330])
    for top in range(10, 200, 38):
        picture[top] = (240, 220, 60)
    noisy = with_specks(picture, 0.06)
    for name, result in (
        ("noisy", noisy),
        ("hymedian", functions["hymedian, one thread"][0](noisy, 1)),
        ("median", functions["scipy.ndimage.median_filter"][0](noisy, 1)),
    ):
        imageio.imwrite(f"{folder}/python-{name}.png", result.repeat(2, 0).repeat(2, 1))


def main():
    functions = filters()
    small = with_specks(soft_picture(500, 1000), 0.1)
    large = with_specks(soft_picture(3000, 4000), 0.1)

    def speed(function, pixels, radius):
        picture = large if pixels > 1e6 else small
        return f"{picture[..., 0].size / 1e6 / seconds(lambda: function(picture, radius)):.3g}"

    table("Megapixels per second, 8-bit RGB", functions, speed)
    one = {name.removesuffix(", one thread"): row for name, row in functions.items() if "two" not in name}
    table("Colours invented", one, lambda f, _, r: f"{100 * invented(f(small, r), small, r):.0f} %")
    table("Hairlines kept", one, lambda f, _, r: f"{100 * hairlines_kept(f, r):.0f} %")
    if len(sys.argv) > 1:
        write_pictures(sys.argv[1], functions)


if __name__ == "__main__":
    main()
