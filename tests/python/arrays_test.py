"""What arrays may be: dtypes, shapes, strides, subclasses, overlap."""

import formats
import numpy as np
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st
from numpy.lib.stride_tricks import as_strided

import pelkraft
from pelkraft import Format, PelkraftError, Plan, Status

SPLIT = Plan(Format(5, 3, 8), Format(5, 3, 8, planar=True))
MERGE = Plan(Format(5, 3, 16, planar=True), Format(5, 3, 16))
PACK = Plan(Format(5, 3, 8), Format(5, 3, 2, planar=True))


def refused(field, plan, rows, out=None):
    """The error of a call that must leave `out` as it is."""
    before = None if out is None else bytes(memoryview(out.tobytes()))
    with pytest.raises(PelkraftError) as caught:
        plan(rows, out)
    assert caught.value.field == field
    assert out is None or out.tobytes() == before
    return caught.value


def pixels(rows=4, plan=SPLIT):
    return formats.random_rows(rows, tuple(formats_of(plan.source)), 7)


def formats_of(form):
    return form.width, form.channels, form.bits, form.planar


@pytest.mark.parametrize(
    "dtype", ["int8", "bool", "uint16", "int16", "float32", "S1", "V1", "O", "uint64"]
)
def test_only_the_exact_dtype_is_taken(dtype):
    rows = np.zeros((4, 5, 3), dtype)
    error = refused("rows", SPLIT, rows)
    assert error.status is Status.INVALID
    assert str(error) == f"rows has dtype {rows.dtype}; it must be uint8"
    out = np.zeros((4, 3, 5), dtype)
    if dtype != "O":
        refused("out", SPLIT, pixels(), out)


def test_words_of_another_byte_order_are_refused():
    rows = pixels(plan=MERGE)
    swapped = rows.astype(rows.dtype.newbyteorder())
    error = refused("rows", MERGE, swapped)
    assert str(error) == "rows has dtype >u2; it must be uint16 in the byte order of this machine"
    np.testing.assert_array_equal(MERGE(rows), rows.transpose(0, 2, 1))


@pytest.mark.parametrize(
    "shape",
    [(), (5,), (15,), (3, 5), (4, 5), (4, 5, 4), (4, 4, 3), (4, 3, 5), (1, 4, 5, 3), (0, 0, 0)],
)
def test_other_shapes_are_refused(shape):
    error = refused("rows", SPLIT, np.zeros(shape, np.uint8))
    assert str(error) == f"rows has shape {shape}; it must be (rows, 5, 3), or (5, 3) for one row"


@pytest.mark.parametrize("shape", [(), (5, 3), (4, 5, 3), (4, 3, 4), (4, 3, 6)])
def test_other_shapes_of_out_are_refused(shape):
    error = refused("out", SPLIT, pixels(), np.zeros(shape, np.uint8))
    assert str(error) == f"out has shape {shape}; it must be (rows, 3, 5), or (3, 5) for one row"


@pytest.mark.parametrize("rows", [0, 3, 5])
def test_out_of_other_rows_is_refused(rows):
    error = refused("out", SPLIT, pixels(4), np.zeros((rows, 3, 5), np.uint8))
    assert (error.given, error.needed) == (rows, 4)
    assert str(error) == f"out has {rows} rows, but 4 are converted"


@pytest.mark.parametrize("rows", [None, 3, [[1]], b"bytes", bytearray(15), "text", object()])
def test_what_is_no_array_is_refused(rows):
    with pytest.raises(TypeError, match="^rows must be a numpy.ndarray, not "):
        SPLIT(rows)
    if rows is not None:
        with pytest.raises(TypeError, match="^out must be a numpy.ndarray, not "):
            SPLIT(pixels(), rows)


def test_subclasses_are_taken_as_arrays():
    class Picture(np.ndarray):
        pass

    rows = pixels()
    expected = rows.transpose(0, 2, 1)
    result = SPLIT(rows.view(Picture))
    assert type(result) is np.ndarray
    np.testing.assert_array_equal(result, expected)
    out = np.zeros((4, 3, 5), np.uint8).view(Picture)
    assert SPLIT(rows, out) is out
    np.testing.assert_array_equal(out, expected)


def test_a_mapped_file_is_taken_as_an_array(tmp_path):
    rows = pixels()
    (tmp_path / "rows").write_bytes(rows.tobytes())
    source = np.memmap(tmp_path / "rows", np.uint8, "r", shape=rows.shape)
    target = np.memmap(tmp_path / "out", np.uint8, "w+", shape=(4, 3, 5))
    SPLIT(source, target)
    target.flush()
    assert (tmp_path / "out").read_bytes() == rows.transpose(0, 2, 1).tobytes()


def test_masked_arrays_are_refused():
    rows = np.ma.array(pixels(), mask=False)
    with pytest.raises(TypeError, match="rows is a masked array"):
        SPLIT(rows)
    with pytest.raises(TypeError, match="out is a masked array"):
        SPLIT(pixels(), np.ma.zeros((4, 3, 5), np.uint8))


def test_a_read_only_source_is_taken_and_a_read_only_out_refused():
    rows = pixels()
    rows.flags.writeable = False
    result = SPLIT(rows)
    np.testing.assert_array_equal(result, rows.transpose(0, 2, 1))
    result.flags.writeable = False
    assert "read-only" in str(refused("out", SPLIT, rows, result))


ROW_VIEWS = {
    "every other row": lambda array: array[::2],
    "from the last row on": lambda array: array[::-1],
    "every third, from the last on": lambda array: array[::-3],
    "a band": lambda array: array[2:5],
    "a column of a wider picture": lambda array: np.concatenate([array, array], axis=1)[
        :, array.shape[1] :
    ],
    "one row for all": lambda array: np.broadcast_to(array[3], array.shape),
}


@pytest.mark.parametrize("view", ROW_VIEWS.values(), ids=ROW_VIEWS)
@pytest.mark.parametrize("plan", [SPLIT, MERGE, PACK], ids=["split", "merge", "pack"])
def test_any_stride_between_rows_is_read(plan, view):
    rows = view(pixels(8, plan))
    np.testing.assert_array_equal(plan(rows), plan(rows.copy()))


PLANE_VIEWS = {
    "planes from the last on": lambda array: array[:, ::-1],
    "rows inside planes": lambda array: array.transpose(1, 0, 2).copy().transpose(1, 0, 2),
    "rows and planes from the last on": lambda array: array[::-1, ::-1],
    "one plane for all": lambda array: np.broadcast_to(array[:, :1], array.shape),
    "one line for all": lambda array: np.broadcast_to(array[0, 0], array.shape),
    "some of more planes": lambda array: np.concatenate([array] * 3, axis=1)[:, 1:8:3],
}


@pytest.mark.parametrize("view", PLANE_VIEWS.values(), ids=PLANE_VIEWS)
def test_any_stride_between_planes_is_read(view):
    rows = view(pixels(4, MERGE))
    assert rows.shape == (4, 3, 5)
    np.testing.assert_array_equal(MERGE(rows), rows.transpose(0, 2, 1))


@pytest.mark.parametrize(
    "rows, strides",
    [
        (np.zeros((4, 10, 3), np.uint8)[:, ::2], "(30, 6, 1)"),
        (np.zeros((4, 5, 6), np.uint8)[:, :, ::2], "(30, 6, 2)"),
        (np.zeros((4, 5, 3), np.uint8)[:, ::-1], "(15, -3, 1)"),
        (np.zeros((4, 5, 3), np.uint8)[:, :, ::-1], "(15, 3, -1)"),
        (np.zeros((4, 5, 3), np.uint8, order="F"), "(1, 4, 20)"),
        (np.zeros((4, 3, 5), np.uint8).transpose(0, 2, 1), "(15, 1, 5)"),
        (np.broadcast_to(np.zeros((1, 3), np.uint8), (4, 5, 3)), "(0, 0, 1)"),
        (np.broadcast_to(np.zeros((4, 5, 1), np.uint8), (4, 5, 3)), "(5, 1, 0)"),
    ],
)
def test_pixels_that_do_not_stand_side_by_side_are_refused(rows, strides):
    error = refused("rows", SPLIT, rows)
    assert str(error) == (
        f"rows has strides {strides}; the last two must be 3 and 1, as in a C-contiguous array"
    )


def test_the_second_sample_of_a_pixel_stands_beside_the_first():
    plan = Plan(Format(5, 2, 8), Format(5, 2, 8, planar=True))
    error = refused("rows", plan, as_strided(np.zeros(80, np.uint8), (4, 5, 2), (20, 2, 7)))
    assert "the last two must be 2 and 1" in str(error)


def test_samples_of_a_plane_that_do_not_stand_side_by_side_are_refused():
    rows = np.zeros((4, 3, 10), np.uint16)[:, :, ::2]
    error = refused("rows", MERGE, rows)
    assert "the last two must be any and 2" in str(error)
    refused("rows", MERGE, np.zeros((4, 3, 5), np.uint16, order="F"))
    refused("out", MERGE, pixels(4, MERGE), np.zeros((4, 5, 3), np.uint16, order="F"))


def test_fortran_order_is_taken_where_it_is_no_other():
    one = Plan(Format(5, 1, 8), Format(5, 1, 8, planar=True))
    rows = np.asfortranarray(np.arange(5, dtype=np.uint8).reshape(1, 5, 1))
    np.testing.assert_array_equal(one(rows)[0, 0], np.arange(5))
    single = np.asfortranarray(np.zeros((4, 1, 3), np.uint8))
    with pytest.raises(PelkraftError):
        Plan(Format(1, 3, 8), Format(1, 3, 8))(single)
    planes = np.asfortranarray(np.arange(12, dtype=np.uint8).reshape(4, 3, 1))
    np.testing.assert_array_equal(
        Plan(Format(1, 3, 8, planar=True), Format(1, 3, 8))(planes), planes.transpose(0, 2, 1)
    )


@pytest.mark.parametrize("shift", range(1, 4))
def test_any_address_is_read_and_written(shift):
    rows = pixels(4, MERGE)
    odd = np.zeros(rows.nbytes + shift, np.uint8)[shift:].view(np.uint16).reshape(rows.shape)
    odd[...] = rows
    out = np.zeros(rows.nbytes + shift, np.uint8)[shift:].view(np.uint16).reshape(4, 5, 3)
    MERGE(odd, out)
    np.testing.assert_array_equal(out, rows.transpose(0, 2, 1))


def test_out_of_any_stride_between_rows_and_planes_is_written_and_no_byte_beside_it():
    rows = pixels(4)
    frame = np.full((9, 7, 11), 0xA5, np.uint8)
    out = frame[7:0:-2, 5:2:-1, 3:8]
    SPLIT(rows, out)
    np.testing.assert_array_equal(out, rows.transpose(0, 2, 1))
    out[...] = 0xA5
    assert (frame == 0xA5).all()


def laid(frame, offset, strides, shape):
    return as_strided(frame[offset:], shape, strides)


@settings(max_examples=500)
@given(
    st.integers(0, 60), st.integers(-20, 20), st.integers(-20, 20),
    st.integers(0, 60), st.integers(-20, 20),
    st.integers(1, 3), st.integers(1, 3), st.integers(1, 4),
)
def test_overlap_is_refused_where_a_map_of_bytes_shows_it(
    at, row_step, plane_step, source_at, source_step, rows, planes, width
):
    """A merge of planes, laid anywhere into one piece of memory, against the bytes that it uses."""
    size = 400
    frame = np.random.default_rng(3).integers(0, 256, size, np.uint8)
    plan = Plan(Format(width, planes, 8), Format(width, planes, 8, planar=True))
    source = laid(frame, 200 + source_at, (source_step, planes, 1), (rows, width, planes))
    target = laid(frame, 200 + at, (row_step, plane_step, 1), (rows, planes, width))
    read = {200 + source_at + source_step * r + i for r in range(rows)
            for i in range(width * planes)}
    written = [200 + at + row_step * r + plane_step * p + i for r in range(rows)
               for p in range(planes) for i in range(width)]
    expected = source.transpose(0, 2, 1).copy()
    before = frame.copy()
    if len(set(written)) == len(written) and not read & set(written):
        plan(source, target)
        np.testing.assert_array_equal(target, expected)
        frame[written] = before[written]
    elif not plan.needs.in_place:
        with pytest.raises(PelkraftError) as caught:
            plan(source, target)
        assert (caught.value.status, caught.value.field) == (Status.OVERLAP, "out")
    else:
        return
    np.testing.assert_array_equal(frame, before)


def test_a_new_array_belongs_to_the_caller():
    first, second = SPLIT(pixels()), SPLIT(pixels())
    assert first.flags.owndata and first.flags.c_contiguous and first.flags.writeable
    assert not np.shares_memory(first, second)


def test_an_array_that_no_memory_holds_is_refused():
    rows = np.broadcast_to(np.zeros((5, 3), np.uint8), (1 << 40, 5, 3))
    with pytest.raises(MemoryError):
        SPLIT(rows)
    wide = pelkraft.Plan(Format(5, 3, 8), Format(20, 3, 16), repeat=4)
    with pytest.raises((MemoryError, ValueError)):
        wide(np.broadcast_to(np.zeros((5, 3), np.uint8), (1 << 59, 5, 3)))
