"""Rows of pixels converted, and dot patterns simulated, on NumPy arrays.

Format         the form of a row: width, channels, bits, planar or interleaved
Plan           a conversion from one format to another, decided once, run on arrays of rows
Constant       a sample that a plan's map puts into a channel
Needs          what a plan needs of the rows that it is run on
Pattern        a dot pattern, which turns steps of in-colours into values of out-inks
Dither         turns tones into such steps, so that even areas keep their ink
Tones          the tones of a dither's channel: the ink of each step, the samples of none and of all
dither_mask    the mask of a dither that is given no other
PelkraftError  what is raised where something can't be served, with the field that is wrong
Status         the kinds of such failures

    >>> import numpy, pelkraft
    >>> plan = pelkraft.Plan(pelkraft.Format(2, 3, 8), pelkraft.Format(2, 3, 8, planar=True))
    >>> plan(numpy.array([[[1, 2, 3], [11, 12, 13]]], numpy.uint8))
    array([[[ 1, 11],
            [ 2, 12],
            [ 3, 13]]], dtype=uint8)
"""

# SPDX-License-Identifier: Apache-2.0
from ._missing import explain as _explain

try:
    from ._core import (
        Constant,
        Dither,
        Format,
        Needs,
        Pattern,
        Plan,
        Tones,
        __version__,
        dither_mask,
    )
    from ._error import PelkraftError, Status
except ModuleNotFoundError as _lack:
    raise _explain(_lack) from None

__all__ = [
    "Constant",
    "Dither",
    "Format",
    "Needs",
    "Pattern",
    "PelkraftError",
    "Plan",
    "Status",
    "Tones",
    "__version__",
    "dither_mask",
]
