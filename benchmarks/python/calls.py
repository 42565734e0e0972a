"""Times what a call from Python costs over the library's own time, which ctypes takes.

    PYTHONPATH=build/release/python /usr/bin/python3 benchmarks/python/calls.py

Prints, for one row of 1000 pixels and for a picture of 4000 x 4000, CMYK of 8 bits split into
planes, the best of many runs; those of Python and of the library take turns.
"""

import ctypes
import timeit

import numpy as np

import pelkraft
from pelkraft import _core


class Rows(ctypes.Structure):
    """A plk_source or plk_target."""

    _fields_ = [
        ("size", ctypes.c_uint32), ("reserved", ctypes.c_int32), ("base", ctypes.c_void_p),
        ("bytes", ctypes.c_uint64), ("offset", ctypes.c_int64), ("row_stride", ctypes.c_int64),
        ("plane_stride", ctypes.c_int64),
    ]


def rows_of(array, plane_stride=0):
    """A dense array as the library sees it."""
    return Rows(
        ctypes.sizeof(Rows), 0, array.ctypes.data, array.nbytes, 0, array.strides[0], plane_stride
    )


def library_run(plan, source, target):
    """A function that runs the plan without the package."""
    library = ctypes.CDLL(_core._library)
    record, handle = plan.save(), ctypes.c_void_p()
    library.plk_plan_load(record, ctypes.c_uint64(len(record)), ctypes.byref(handle), None)
    arguments = (
        handle, ctypes.byref(rows_of(source)), ctypes.byref(rows_of(target, target.strides[1])),
        ctypes.c_uint64(len(source)), None,
    )

    def run():
        if library.plk_plan_run(*arguments) != 0:
            raise AssertionError("the library refuses")

    return run


def main():
    """Prints a line for the row and one for the picture."""
    wide = pelkraft.Plan(pelkraft.Format(4000, 4, 8), pelkraft.Format(4000, 4, 8, planar=True))
    row_plan = pelkraft.Plan(pelkraft.Format(1000, 4, 8), pelkraft.Format(1000, 4, 8, planar=True))
    row, row_out = np.ones((1000, 4), np.uint8), np.zeros((4, 1000), np.uint8)
    times = timeit.repeat(lambda: row_plan(row, row_out), number=1000, repeat=1000)
    empty = timeit.repeat(lambda: None, number=1000, repeat=1000)
    print(f"a row of 1000 pixels: {(min(times) - min(empty)) * 1e6:.0f} ns")

    picture, out = np.ones((4000, 4000, 4), np.uint8), np.zeros((4000, 4, 4000), np.uint8)
    run = library_run(wide, picture, out)
    pairs = [(timeit.timeit(lambda: wide(picture, out), number=1), timeit.timeit(run, number=1))
             for _ in range(100)]
    ours, theirs = (min(times) * 1e3 for times in zip(*pairs))
    print(f"a picture of 4000 x 4000: {ours:.2f} ms, of the library alone {theirs:.2f} ms")


if __name__ == "__main__":
    main()
