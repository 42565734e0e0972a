"""Plans against the naive conversion."""

import itertools

import formats
import naive
import numpy as np
import pytest
from hypothesis import given, settings

import pelkraft

EXAMPLES = 400


@settings(max_examples=EXAMPLES)
@given(formats.jobs())
def test_a_new_array_holds_what_the_reference_makes(job):
    rows = job.source_rows()
    result = job.plan()(rows)
    expected = job.expected(rows)
    assert result.dtype == expected.dtype
    np.testing.assert_array_equal(result, expected)


@settings(max_examples=EXAMPLES)
@given(formats.jobs())
def test_a_given_array_holds_what_the_reference_makes_and_is_returned(job):
    rows = job.source_rows()
    out = job.old_target()
    assert job.plan()(rows, out=out) is out
    np.testing.assert_array_equal(out, job.expected(rows))


@settings(max_examples=EXAMPLES)
@given(formats.jobs(clip=True))
def test_a_clipped_row_keeps_what_has_no_counterpart(job):
    rows = job.source_rows()
    out = job.old_target()
    expected = job.expected(rows, out)
    np.testing.assert_array_equal(job.plan()(rows, out), expected)


ALL_PAIRS = [
    (old, new, samples)
    for old, new, samples in itertools.product(formats.KINDS, formats.KINDS, naive.WAYS)
    if samples != "tones" or (formats.has_full_scale(old) and formats.has_full_scale(new))
]


@pytest.mark.parametrize("old, new, samples", ALL_PAIRS)
def test_every_sample_of_every_depth_comes_out_as_in_the_reference(old, new, samples):
    count = 65536
    source, target = (count, 1, *old), (count, 1, *new)
    values = np.arange(count).reshape(1, count, 1)
    if naive.memory_bits(*old) < 16:
        values %= 1 << naive.memory_bits(*old)
    rows = naive.write(values, *old)
    plan = pelkraft.Plan(pelkraft.Format(*source), pelkraft.Format(*target), samples=samples)
    expected = naive.convert(rows, source, target, samples=samples)
    np.testing.assert_array_equal(plan(rows), expected)


def test_a_single_row_gives_a_single_row():
    plan = pelkraft.Plan(pelkraft.Format(3, 2, 8), pelkraft.Format(3, 2, 16, planar=True))
    row = np.array([[1, 2], [3, 4], [5, 6]], np.uint8)
    expected = [[257, 3 * 257, 5 * 257], [2 * 257, 4 * 257, 6 * 257]]
    np.testing.assert_array_equal(plan(row), expected)
    out = np.zeros((1, 2, 3), np.uint16)
    np.testing.assert_array_equal(plan(row, out)[0], expected)


@pytest.mark.parametrize("planar", [False, True])
def test_rows_of_one_channel_do_without_its_axis(planar):
    one = pelkraft.Format(5, 1, 8, planar)
    wide = pelkraft.Format(5, 1, 16, not planar)
    rows = np.arange(15, dtype=np.uint8).reshape(3, 5)
    result = pelkraft.Plan(one, wide)(rows)
    assert result.shape == (3, 5)
    np.testing.assert_array_equal(result, rows.astype(np.uint16) * 257)
    # A band of one row comes out as such, whatever the format.
    assert pelkraft.Plan(one, wide)(rows[:1]).shape == (1, 5)
    two = pelkraft.Plan(one, pelkraft.Format(5, 2, 8), map=[0, None])
    assert two(rows).shape == (3, 5, 2)
    assert two(rows[:1]).shape == (1, 5, 2)


def test_packed_rows_of_one_channel_have_an_axis_of_bytes():
    plan = pelkraft.Plan(pelkraft.Format(10, 1, 8), pelkraft.Format(10, 1, 1, planar=True))
    rows = np.tile(np.array([1, 0, 1, 1, 0, 0, 0, 1, 1, 1], np.uint8), (2, 1))
    np.testing.assert_array_equal(plan(rows), [[0b10110001, 0b11000000]] * 2)
    assert plan(rows[:, :, np.newaxis]).shape == (2, 1, 2)


@pytest.mark.parametrize("rows, width", [(0, 0), (0, 3), (3, 0)])
def test_empty_pictures_convert(rows, width):
    for old, new in itertools.product(formats.KINDS, formats.KINDS):
        for channels in (0, 2):
            source, target = (width, channels, *old), (width, channels, *new)
            plan = pelkraft.Plan(pelkraft.Format(*source), pelkraft.Format(*target))
            result = plan(np.zeros(naive.shape_of(rows, *source), naive.dtype_of(old[0])))
            assert result.shape == naive.shape_of(rows, *target)
            assert result.dtype == naive.dtype_of(new[0])


def test_a_streamed_plan_gives_the_same_bytes():
    source, target = pelkraft.Format(4001, 4, 8), pelkraft.Format(4001, 4, 8, planar=True)
    rows = np.random.default_rng(1).integers(0, 256, (40, 4001, 4), np.uint8)
    streamed = pelkraft.Plan(source, target, stream=True)
    np.testing.assert_array_equal(streamed(rows), rows.transpose(0, 2, 1))


def test_a_plan_that_allows_it_runs_in_place():
    form = pelkraft.Format(7, 3, 8)
    plan = pelkraft.Plan(form, form, invert=True)
    assert plan.needs.in_place
    rows = np.random.default_rng(2).integers(0, 256, (4, 7, 3), np.uint8)
    expected = 255 - rows
    plan(rows, out=rows)
    np.testing.assert_array_equal(rows, expected)
