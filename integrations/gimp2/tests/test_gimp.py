"""The plug-in in GIMP's batch mode, with a profile of its own. HYMEDIAN_GIMP_FOLDER has the folder plug-ins."""

import os
import pathlib
import subprocess
import sys

import numpy as np
import pytest
import tifffile

sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "tests"))
from pictures import RADII, assert_same_choice, filtered_by_program, pictures

PICTURES = pictures()


EVERY_RADIUS = "HYMEDIAN_EVERY_RADIUS" in os.environ
SYSTEM_FOLDER = subprocess.run(
    ["pkg-config", "--variable=gimplibdir", "gimp-2.0"], capture_output=True, text=True, check=True
).stdout.strip()


@pytest.fixture(scope="session")
def gimp(tmp_path_factory):
    """Runs commands of Script-Fu in one start of GIMP, which takes seconds. Returns what was printed; a command that
    fails ends nothing but itself."""
    profile = tmp_path_factory.mktemp("profile")
    plug_ins = profile / "plug-ins"
    plug_ins.mkdir()
    for name in ("script-fu", "file-tiff"):
        (plug_ins / name).symlink_to(f"{SYSTEM_FOLDER}/plug-ins/{name}")
    (plug_ins / "hymedian").symlink_to(f"{os.environ['HYMEDIAN_GIMP_FOLDER']}/plug-ins/hymedian")
    (profile / "gimprc").write_text(
        f'(plug-in-path "{plug_ins}")\n(color-management (mode off))\n(import-promote-float no)\n'
    )

    def run(commands):
        batch = [argument for command in (*commands, "(gimp-quit 1)") for argument in ("-b", command)]
        finished = subprocess.run(
            ["gimp-console", "-i", "-d", "-f", "-s", "-c", *batch],
            env=dict(os.environ, GIMP2_DIRECTORY=str(profile), LC_ALL="C.UTF-8"),
            capture_output=True,
            text=True,
            errors="replace",
            timeout=900 if EVERY_RADIUS else 200,
        )
        return finished.stdout + finished.stderr

    return run


def load(source):
    return f"""(let* ((image (car (gimp-file-load RUN-NONINTERACTIVE "{source}" "picture")))
        (layer (car (gimp-image-get-active-layer image)))
        (save (lambda (path) (file-tiff-save RUN-NONINTERACTIVE image layer path path 0)))"""


def write(path, picture, **options):
    tifffile.imwrite(path, picture, photometric="rgb" if picture.ndim == 3 else "minisblack", **options)


def filter_and_save(source, radius, target, between=""):
    return f"""{load(source)}) {between} (plug-in-hymedian RUN-NONINTERACTIVE image layer {radius})
        (gimp-image-resize-to-layers image) (save "{target}") (gimp-image-delete image))"""


def test_gives_what_the_program_gives(gimp, tmp_path):
    """Each picture at a radius of its own, and one at all of them, unless every radius is asked for."""
    cases = [
        (name, radius)
        for number, name in enumerate(PICTURES)
        for radius in RADII
        if EVERY_RADIUS or radius == number % 6 + 1 or name == "rgb16"
    ]
    for name, picture in PICTURES.items():
        write(tmp_path / f"{name}-in.tif", picture)
    printed = gimp(
        filter_and_save(tmp_path / f"{name}-in.tif", radius, tmp_path / f"{name}-gimp-{radius}.tif")
        for name, radius in cases
    )
    for name, radius in cases:
        picture = PICTURES[name]
        value_range = (0, 1) if picture.dtype == np.float32 else None
        path = tmp_path / f"{name}-gimp-{radius}.tif"
        assert path.exists(), printed
        expected = filtered_by_program(tmp_path, name, picture, radius, *(("--range", "0,1") if value_range else ()))
        assert_same_choice(tifffile.imread(path).reshape(picture.shape), expected, picture, value_range)


def test_selections_alpha_masks_channels_and_layers_beyond_the_image(gimp, tmp_path):
    picture = np.random.default_rng(1).integers(0, 256, (80, 90, 4), np.uint8)
    picture[30:40, :, 3] = 0
    colours = np.ascontiguousarray(picture[..., :3])
    alpha_file, file = tmp_path / "alpha.tif", tmp_path / "colours.tif"
    write(alpha_file, picture, extrasamples=["unassalpha"])
    write(file, colours)
    printed = gimp([
        filter_and_save(file, 3, tmp_path / "selected.tif",
                        "(gimp-image-select-rectangle image CHANNEL-OP-REPLACE 20 10 50 60)"),
        filter_and_save(alpha_file, 2, tmp_path / "with-alpha.tif"),
        filter_and_save(file, 4, tmp_path / "beyond.tif", "(gimp-image-resize image 50 40 -20 -10)"),
        # What is filtered becomes alpha, where it can be seen.
        f"""{load(alpha_file)} (mask (car (gimp-layer-create-mask layer ADD-MASK-ALPHA-TRANSFER))))
            (gimp-layer-add-mask layer mask) (plug-in-hymedian RUN-NONINTERACTIVE image mask 2)
            (gimp-layer-remove-mask layer MASK-APPLY) (save "{tmp_path}/mask.tif"))""",
        f"""{load(file)} (red (car (gimp-channel-new-from-component image CHANNEL-RED "red"))))
            (gimp-image-insert-channel image red 0 0) (plug-in-hymedian RUN-NONINTERACTIVE image red 2)
            (gimp-image-select-item image CHANNEL-OP-REPLACE red) (gimp-layer-add-alpha layer)
            (gimp-layer-add-mask layer (car (gimp-layer-create-mask layer ADD-MASK-SELECTION)))
            (gimp-layer-remove-mask layer MASK-APPLY) (save "{tmp_path}/channel.tif"))""",
    ])

    def program(part, radius):
        return filtered_by_program(tmp_path, "part", np.ascontiguousarray(part), radius)

    expected = colours.copy()
    expected[10:70, 20:70] = program(colours[10:70, 20:70], 3)
    np.testing.assert_array_equal(tifffile.imread(tmp_path / "selected.tif"), expected, printed)
    result = tifffile.imread(tmp_path / "with-alpha.tif")
    np.testing.assert_array_equal(result[..., 3], picture[..., 3])
    np.testing.assert_array_equal(result[..., :3], program(colours, 2))
    np.testing.assert_array_equal(tifffile.imread(tmp_path / "beyond.tif")[..., :3], program(colours, 4))
    for name, plane in (("mask", picture[..., 3]), ("channel", colours[..., 0])):
        np.testing.assert_array_equal(tifffile.imread(tmp_path / f"{name}.tif")[..., 3], program(plane, 2), printed)


def test_refuses_in_words_what_the_menu_offers_for_every_image(gimp, tmp_path):
    write(tmp_path / "picture.tif", PICTURES["rgb8"])
    in_menu = """(let ((found (gimp-plugins-query "Hybrid Median")))
        (gimp-message (string-append (car (list-ref found 1)) " for " (car (list-ref found 7)))))"""
    cases = {
        "cannot filter indexed colours": ('(gimp-image-convert-indexed image 0 0 16 FALSE FALSE "")', 2),
        "cannot filter a layer group": (
            "(set! layer (car (gimp-layer-group-new image))) (gimp-image-insert-layer image layer 0 0)", 2),
        "must be from 1 to 6": ("", 7),
        "radius must be": ("", 0),
    }
    printed = gimp([
        in_menu,
        *(filter_and_save(tmp_path / "picture.tif", radius, tmp_path / f"refused-{radius}.tif", spoil)
          for spoil, radius in cases.values()),
    ])
    assert "<Image>/Filters/Enhance/Hybrid Median... for *\n" in printed, printed
    assert printed.count("execution error") == len(cases) and all(words in printed for words in cases), printed
    assert not list(tmp_path.glob("refused*"))
