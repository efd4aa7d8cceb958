import pathlib
import sys

# The pictures that all integrations are tested with.
sys.path.insert(0, str(pathlib.Path(__file__).parents[2] / "tests"))
