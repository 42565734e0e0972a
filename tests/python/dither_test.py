"""Dithers on arrays, against the formulas sample by sample."""

import copy
import itertools
import pickle

import numpy as np
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st
from naive_dither import dither as naive_dither

import pelkraft
from pelkraft import Dither, Pattern, PelkraftError, Status, Tones, dither_mask

MASK = dither_mask()
LOW = Tones([0, 10, 25, 26, 400])
HIGH = Tones([0, 7], 200, 30)
DITHER = Dither([LOW, HIGH])


def fields(tones):
    return tones.inks, tones.no_ink, tones.full_ink


def pixels(rows, width, channels, bits=8, seed=3):
    kind = np.uint16 if bits == 16 else np.uint8
    return np.random.default_rng(seed).integers(0, 1 << bits, (rows, width, channels), kind)


@st.composite
def tones(draw, bits):
    distances = draw(st.lists(st.integers(1, 1 << 20), max_size=12))
    samples = st.integers(0, (1 << bits) - 1)
    none = draw(samples)
    return Tones(np.cumsum([0, *distances]), none, draw(samples.filter(lambda full: full != none)))


@st.composite
def jobs(draw):
    bits = draw(st.sampled_from([8, 16]))
    mask = None
    if draw(st.booleans()):
        seed = draw(st.integers(0, 2**32 - 1))
        mask = np.random.default_rng(seed).integers(0, 65536, (256, 256), np.uint16)
    return (draw(st.lists(tones(bits), max_size=4)), bits, mask,
            draw(st.sampled_from(["automatic", "portable"])))


PLACES = st.integers(-(2**63), 2**63 - 1)


@settings(max_examples=200)
@given(jobs(), PLACES, PLACES, st.integers(0, 4), st.integers(0, 9), st.integers(0, 2**32 - 1))
def test_a_step_is_that_of_the_formulas(job, x, y, rows, width, seed):
    channels, bits, mask, road = job
    dither = Dither(channels, bits, mask=mask, road=road)
    picture = pixels(rows, width, len(channels), bits, seed)
    steps = dither(picture, x, y)
    assert steps.dtype == np.uint8
    np.testing.assert_array_equal(
        steps, naive_dither(picture, [fields(one) for one in channels],
                            MASK if mask is None else mask, x, y))
    for again in (eval(repr(dither), vars(pelkraft)) if mask is None else dither,
                  *(pickle.loads(pickle.dumps(dither, protocol)) for protocol in range(6))):
        assert again == dither and hash(again) == hash(dither)
        np.testing.assert_array_equal(again(picture, x, y), steps)


@pytest.mark.parametrize("bits", [8, 16])
def test_parts_of_a_page_fit_together(bits):
    dither = Dither([LOW, HIGH], bits)
    page = pixels(40, 300, 2, bits)
    whole = dither(page, x=5, y=-9)
    np.testing.assert_array_equal(dither(page[11:30], x=5, y=2), whole[11:30])
    np.testing.assert_array_equal(dither(page[:, 77:200], x=82, y=-9), whole[:, 77:200])
    np.testing.assert_array_equal(dither(page[7], x=5, y=-2), whole[7])
    np.testing.assert_array_equal(dither(page, x=5 + 256, y=-9 - 512), whole)
    assert (dither(page) != whole).any()


def test_an_even_area_keeps_its_ink():
    inks = np.array(LOW.inks)
    for sample in (0, 1, 90, 128, 254, 255):
        steps = Dither([LOW])(np.full((256, 256, 1), sample, np.uint8))
        wanted = sample / 255 * inks[-1]
        assert abs(inks[steps].mean() - wanted) <= np.diff(inks).max() / 65536
    assert (steps == len(inks) - 1).all()


def test_the_mask_has_each_rank_once():
    assert (MASK.shape, MASK.dtype) == ((256, 256), np.uint16)
    np.testing.assert_array_equal(np.sort(MASK, axis=None), np.arange(65536))
    with pytest.raises(ValueError):
        MASK[0, 0] = 1
    assert not np.shares_memory(MASK, dither_mask())


def test_the_own_mask_given_is_none():
    assert Dither([LOW], mask=MASK) == Dither([LOW]) and Dither([LOW], mask=MASK).mask is None
    other = Dither([LOW], mask=MASK[::-1, :])
    assert other != Dither([LOW])
    np.testing.assert_array_equal(other.mask, MASK[::-1])
    copied = other.mask
    copied.flags.writeable = True
    copied[...] = 0
    np.testing.assert_array_equal(other.mask, MASK[::-1])
    assert "mask=<256 x 256 ranks>" in repr(other)


@pytest.mark.parametrize("mask, words", [
    (MASK.astype(np.uint8), "mask has dtype uint8; it must be uint16"),
    (MASK.astype(">u2"), "in the byte order of this machine"),
    (MASK[:255], "mask has shape (255, 256)"), (MASK[:, :255], "mask has shape (256, 255)"),
    (MASK[None], "mask has shape (1, 256, 256)"), (MASK.ravel(), "mask has shape (65536,)"),
    (MASK.T, "mask has strides (2, 512)")])
def test_another_mask_is_refused(mask, words):
    with pytest.raises(PelkraftError) as caught:
        Dither([LOW], mask=mask)
    assert caught.value.field == "mask" and words in str(caught.value)


def test_dithers_of_other_arguments_are_others():
    dithers = [DITHER, Dither([HIGH, LOW]), Dither([LOW]), Dither([]), Dither([LOW, HIGH], 16),
               Dither([LOW, HIGH], mask=MASK[::-1]), Dither([LOW, HIGH], mask=MASK ^ 1),
               Dither([LOW, HIGH], road="portable"), Dither([LOW, Tones([0, 7], 200, 31)]),
               Dither([LOW, Tones([0, 8], 200, 30)]), Dither([LOW, Tones([0, 7], 201, 30)])]
    for one, other in itertools.combinations(dithers, 2):
        assert one != other and hash(one) != hash(other)
    assert DITHER == Dither((LOW, HIGH)) and DITHER != "text"
    assert (DITHER.tones, DITHER.bits, DITHER.mask, DITHER.road) == \
        ((LOW, HIGH), 8, None, "automatic")


def test_dask_knows_dithers_by_their_content():
    from dask.base import tokenize

    assert tokenize(DITHER) == tokenize(Dither([LOW, HIGH]))
    assert tokenize(DITHER) != tokenize(Dither([LOW, HIGH], road="portable"))


def test_tones_are_shown_and_pickled_whole():
    for one in (LOW, HIGH, Tones(np.arange(3, dtype=np.uint8), np.int64(4), full_ink=65535)):
        assert eval(repr(one), vars(pelkraft)) == one
        for protocol in range(6):
            again = pickle.loads(pickle.dumps(one, protocol))
            assert again == one and hash(again) == hash(one)
        assert copy.copy(one) is one and copy.deepcopy(one) is one
    assert copy.deepcopy(DITHER) is DITHER
    assert LOW != HIGH and LOW != (LOW.inks, 0, 255)


@pytest.mark.parametrize("make, field, given, words", [
    (lambda: Tones([]), "inks", 0, "inks has 0 entries"),
    (lambda: Tones(range(257)), "inks", 257, "inks has 257 entries"),
    (lambda: Tones([0, -1]), "inks[1]", -1, "it must be from 0 to 1073741824"),
    (lambda: Tones([0, 2**30 + 1]), "inks[1]", 2**30 + 1, "it must be from 0 to 1073741824"),
    (lambda: Tones([0], 2**31), "no_ink", 2**31, "32 bits must hold it"),
    (lambda: Dither([LOW, Tones([1])]), "tones[1].inks[0]", 1, "must have no ink"),
    (lambda: Dither([Tones([0, 5, 5])]), "tones[0].inks[2]", 5, "it must be more than"),
    (lambda: Dither([Tones([0], 0, 256)]), "tones[0].full_ink", 256, "go from 0 to 255"),
    (lambda: Dither([Tones([0], -1)], 16), "tones[0].no_ink", -1, "go from 0 to 65535"),
    (lambda: Dither([Tones([0], 9, 9)]), "tones[0].full_ink", 9, "they must differ"),
    (lambda: Dither([LOW], 10), "bits", 10, "it must be 8 or 16"),
    (lambda: Dither([LOW], road="sse"), "road", 0, "'automatic', 'portable'")])
def test_wrong_values_are_refused_by_name(make, field, given, words):
    with pytest.raises(PelkraftError) as caught:
        make()
    error = caught.value
    assert (error.field, error.status, error.given) == (field, Status.INVALID, given)
    assert field in str(error) and words in str(error)


@pytest.mark.parametrize("make, words", [
    (lambda: Tones(3), "inks must be a sequence of integers, not int"),
    (lambda: Tones("01"), "inks must be a sequence of integers, not str"),
    (lambda: Tones([0, 1.5]), "inks[1] must be an integer, not float"),
    (lambda: Tones([0], None), "no_ink must be an integer"),
    (lambda: Dither(LOW), "tones must be a sequence of Tones, not "),
    (lambda: Dither([LOW, [0, 1]]), "tones[1] must be Tones, not list"),
    (lambda: Dither([LOW], "8"), "bits must be an integer"),
    (lambda: Dither([LOW], mask="mask"), "mask must be a numpy.ndarray"),
    (lambda: DITHER([1, 2]), "rows must be a numpy.ndarray"),
    (lambda: DITHER(pixels(1, 1, 2), "0"), "x must be an integer"),
    (lambda: DITHER(pixels(1, 1, 2), 0, 1.0), "y must be an integer")])
def test_other_types_are_refused(make, words):
    with pytest.raises(TypeError) as caught:
        make()
    assert words in str(caught.value)


@pytest.mark.parametrize("field, rows, out", [
    ("rows", np.zeros((2, 3), np.uint8), None),
    ("rows", np.zeros((4, 5, 2), np.uint16), None),
    ("rows", np.zeros((4, 5, 2), np.int8), None),
    ("rows", np.zeros((4, 5, 4), np.uint8)[:, :, ::2], None),
    ("rows", np.zeros((4, 10, 2), np.uint8)[:, ::2], None),
    ("out", np.zeros((4, 5, 2), np.uint8), np.full((4, 6, 2), 9, np.uint8)),
    ("out", np.zeros((4, 5, 2), np.uint8), np.full((3, 5, 2), 9, np.uint8)),
    ("out", np.zeros((4, 5, 2), np.uint8), np.full((4, 5, 2), 9, np.uint16)),
    ("out", np.zeros((4, 5, 2), np.uint8), np.broadcast_to(np.uint8(9), (4, 5, 2)))])
def test_arrays_that_do_not_fit_are_refused(field, rows, out):
    with pytest.raises(PelkraftError) as caught:
        DITHER(rows, out=out)
    assert caught.value.field == field
    assert out is None or (out == 9).all()


def test_rows_of_any_stride_are_read_and_written():
    rows = pixels(18, 40, 2, 16)[::-2, 7:27]
    dither = Dither([LOW, HIGH], 16)
    frame = np.full((9, 25, 2), 0xA5, np.uint8)
    out = frame[::-1, 2:22]
    assert dither(rows, 3, 4, out) is out
    np.testing.assert_array_equal(
        out, naive_dither(rows, [fields(LOW), fields(HIGH)], MASK, 3, 4))
    out[...] = 0xA5
    assert (frame == 0xA5).all()


def test_steps_may_take_the_place_of_their_samples():
    rows = pixels(6, 30, 2)
    wanted = DITHER(rows)
    np.testing.assert_array_equal(DITHER(rows, out=rows), wanted)
    np.testing.assert_array_equal(rows, wanted)
    frame = np.zeros(200, np.uint8)
    with pytest.raises(PelkraftError) as caught:
        DITHER(frame[:40].reshape(4, 5, 2), out=frame[30:70].reshape(4, 5, 2))
    assert (caught.value.status, caught.value.field) == (Status.OVERLAP, "out")


@pytest.mark.parametrize("shape", [(0, 5, 2), (4, 0, 2), (0, 0, 2), (0, 2)])
def test_empty_pages_are_dithered(shape):
    assert DITHER(np.zeros(shape, np.uint8)).shape == shape
    assert Dither([])(np.zeros((3, 4, 0), np.uint8)).shape == (3, 4, 0)


TEXT = """DotWeavePattern VERSION 3
BEGIN_OUT_INKS Cyan "light-cyan" Silver END_OUT_INKS
BEGIN_IN_COLORS Cyan Spare Silver END_IN_COLORS
BEGIN_IN_COLOR Cyan BEGIN_INKS Cyan "light-cyan" END_INKS
BEGIN_VALUES 1 1 1-64 2 1:3 1-128 0-40 3 1 0-200 END_VALUES END_IN_COLOR
BEGIN_IN_COLOR Silver BEGIN_INKS Silver END_INKS
BEGIN_VALUES 1 1 0-3 END_VALUES END_IN_COLOR
"""


def test_inks_of_steps_are_those_of_the_text():
    pattern = Pattern(TEXT)
    assert pattern.top_steps == (3, 255, 1) and pattern.full_ink == 200
    # A quarter of 128 by 0.4, and three quarters of 40.
    assert pattern.step_inks() == ((0, 25600, 42800, 200000), (0,), (0, 3000))
    assert pattern.step_inks(tone="equal") == ((0, 1, 2, 3), (0,), (0, 1))
    table = "# ink\n\nSPARE,0,0\nSilver,1, 7.25\r\nsilver,0,0\n" + \
        "".join(f"cyan,{step},{step * step}\n" for step in range(4))
    for text in (table, table.encode()):
        assert pattern.read_step_inks(text) == ((0, 1000, 4000, 9000), (0,), (0, 7250))
    silent = TEXT.replace("64", "0").replace("128", "0").replace("40", "0").replace("200", "0")
    assert Pattern(silent.replace("0-3", "0-0")).full_ink == 255


@pytest.mark.parametrize("table, words", [
    ("", "table: has no line for step 0 of Cyan"),
    ("Cyan,0,0\nGold,1,1", 'table: line 2 names the in-colour "Gold"'),
    ("Cyan,4,0", 'table: line 1 has the step "4"; Cyan has the steps 0 to 3')])
def test_a_table_that_does_not_fit_is_refused(table, words):
    with pytest.raises(PelkraftError) as caught:
        Pattern(TEXT).read_step_inks(table)
    assert caught.value.field == "table" and str(caught.value).startswith(words)


@pytest.mark.parametrize("call", [lambda pattern: pattern.step_inks("even"),
                                  lambda pattern: pattern.step_inks(None),
                                  lambda pattern: pattern.read_step_inks(None)])
def test_other_tones_are_refused(call):
    with pytest.raises((PelkraftError, TypeError), match="^(tone|table) "):
        call(Pattern(TEXT))
