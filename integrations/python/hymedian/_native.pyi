from typing import Any

import numpy as np

version: str

def filter(
    input: np.ndarray[Any, Any],
    output: np.ndarray[Any, Any],
    radius: int,
    workers: int,
    least: float,
    greatest: float,
    partial: bool,
) -> None: ...
