"""Builds the package: CMake compiles its native part. Needs no network."""

import os
import re
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))


class CMakeBuild(build_ext):
    def build_extension(self, extension):
        def configure(*options):
            subprocess.run(["cmake", "--preset", "integrations", *options], cwd=ROOT, check=True)

        configure("-DHYMEDIAN_PYTHON=ON", f"-DPython_EXECUTABLE={sys.executable}")
        subprocess.run(
            ["cmake", "--build", "--preset", "integrations", "--target", "hymedian_python"], cwd=ROOT, check=True
        )
        # Others who build there need not have this interpreter, which may be gone by then.
        configure("-DHYMEDIAN_PYTHON=OFF", "-UPython_EXECUTABLE")
        target = self.get_ext_fullpath(extension.name)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        self.copy_file(os.path.join(ROOT, "build/integrations/python", os.path.basename(target)), target)


with open(os.path.join(ROOT, "CMakeLists.txt")) as lists:
    version = re.search(r"project\(hymedian VERSION ([0-9.]+)", lists.read()).group(1)

setup(
    name="hymedian",
    version=version,
    description="Hybrid vector median filter for images",
    python_requires=">=3.9",
    install_requires=["numpy"],
    extras_require={"dask": ["dask[array]"]},
    packages=["hymedian"],
    package_data={"hymedian": ["py.typed", "*.pyi"]},
    ext_modules=[Extension("hymedian._native", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
    zip_safe=False,
)
