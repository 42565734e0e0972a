"""Patterns on arrays."""

import itertools
import pickle

import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st

import pelkraft
from pelkraft import Pattern, PelkraftError, Status

# Each step of each in-colour has one alternative, so there is nothing to draw.
CERTAIN = """DotWeavePattern
VERSION 2
BEGIN_OUT_INKS Cyan LightCyan Black END_OUT_INKS
BEGIN_IN_COLORS Cyan Black END_IN_COLORS
BEGIN_IN_COLOR Cyan
BEGIN_INKS Cyan LightCyan END_INKS
BEGIN_VALUES
1 1 1-64
2 1 0-40
3 1 0-255
END_VALUES
END_IN_COLOR
BEGIN_IN_COLOR Black
BEGIN_INKS Black END_INKS
BEGIN_VALUES 1 1 0-255 END_VALUES
END_IN_COLOR
"""
CYAN = np.array([[0, 0, 0], [0, 64, 0], [40, 0, 0], [255, 0, 0]], np.uint8)
BLACK = np.array([[0, 0, 0], [0, 0, 255]], np.uint8)

# A quarter of the pixels of step 2 get a light drop, the others a small one.
DRAWN = CERTAIN.replace("2 1 0-40", "2 1:3 1-128 0-40").replace("VERSION 2", "VERSION 3")


def steps(rows, width, seed=5):
    random = np.random.default_rng(seed)
    cyan, black = random.integers(0, 4, (rows, width)), random.integers(0, 2, (rows, width))
    return np.stack([cyan, black], axis=2).astype(np.uint8)


@pytest.mark.parametrize("engine", ["automatic", "x86", "sse"])
def test_what_is_certain_is_what_the_text_says(engine):
    rows = steps(6, 501)
    result = Pattern(CERTAIN, engine)(rows, first_row=65530)
    assert result.dtype == np.uint8
    np.testing.assert_array_equal(result, CYAN[rows[..., 0]] | BLACK[rows[..., 1]])


def test_what_is_drawn_is_one_of_the_alternatives_as_often_as_its_weight():
    rows = np.zeros((400, 1000, 2), np.uint8)
    rows[..., 0] = 2
    result = Pattern(DRAWN)(rows)
    light = (result == [0, 128, 0]).all(axis=2)
    small = (result == [40, 0, 0]).all(axis=2)
    assert (light | small).all()
    assert abs(light.mean() - 0.25) < 0.005


@given(
    st.integers(0, 200_000), st.integers(1, 12), st.integers(0, 50), st.integers(0, 2**32 - 1)
)
def test_a_row_depends_on_its_number_alone(first, count, width, seed):
    pattern = Pattern(DRAWN)
    rows = steps(count, width, seed)
    whole = pattern(rows, first)
    order = np.random.default_rng(seed).permutation(count)
    for row in order:
        np.testing.assert_array_equal(pattern(rows[row], first_row=first + row), whole[row])
    middle = count // 2
    np.testing.assert_array_equal(pattern(rows[middle:], first + middle), whole[middle:])
    np.testing.assert_array_equal(pattern(rows[::-1], first)[0], pattern(rows[-1], first))


def test_rows_differ_and_come_again_after_65536():
    pattern = Pattern(DRAWN)
    row = np.full((300, 2), (2, 0), np.uint8)
    assert (pattern(row, 0) != pattern(row, 1)).any()
    np.testing.assert_array_equal(pattern(row, 7), pattern(row, 7 + 65536 * 12345))


def test_facts_tell_what_stands_in_the_text():
    pattern = Pattern(DRAWN)
    assert pattern.in_colours == ("Cyan", "Black")
    assert pattern.out_inks == ("Cyan", "LightCyan", "Black")
    assert pattern.top_steps == (3, 1)
    assert (pattern.version, pattern.engine, pattern.text) == (3, "automatic", DRAWN)
    assert pattern.field_size > 0
    # Only one step has two alternatives; all others have one.
    assert pattern.combinations == 2
    assert Pattern(CERTAIN).combinations == 1


@pytest.mark.parametrize("engine", ["automatic", "x86", "sse"])
def test_a_pattern_is_shown_saved_and_pickled_whole(engine):
    pattern = Pattern(DRAWN, engine)
    rows = steps(3, 40)
    for again in (
        eval(repr(pattern), vars(pelkraft)),
        Pattern.load(pattern.save()),
        *(pickle.loads(pickle.dumps(pattern, protocol)) for protocol in range(6)),
    ):
        assert again == pattern and hash(again) == hash(pattern)
        assert (again.text, again.engine) == (DRAWN, engine)
        np.testing.assert_array_equal(again(rows, 3), pattern(rows, 3))


def test_patterns_of_another_text_or_engine_are_others():
    patterns = [
        Pattern(text, engine)
        for text, engine in itertools.product([CERTAIN, DRAWN], ["automatic", "x86", "sse"])
    ]
    assert len(set(patterns)) == 6
    assert patterns[0] != CERTAIN and patterns[0] == Pattern(CERTAIN.encode())


def test_a_pattern_is_read_from_a_file(tmp_path, examples):
    path = tmp_path / "pattern.txt"
    path.write_text(DRAWN)
    for name in (path, str(path), bytes(path)):
        assert Pattern.from_file(name, engine="x86") == Pattern(DRAWN, "x86")
    with pytest.raises(FileNotFoundError):
        Pattern.from_file(tmp_path / "none.txt")
    for example in examples.glob("*.txt"):
        assert Pattern.from_file(example).text == example.read_text()


def test_names_of_any_encoding_come_through():
    text = CERTAIN.replace("LightCyan", '"Hell Türkis"')
    assert Pattern(text).out_inks[1] == "Hell Türkis"
    pattern = Pattern(text.encode("latin-1"))
    name = pattern.out_inks[1].encode("utf-8", "surrogateescape")
    assert name == "Hell Türkis".encode("latin-1")
    assert eval(repr(pattern), vars(pelkraft)) == pattern


@pytest.mark.parametrize(
    "text, place",
    [
        ("", (0, 0)),
        ("Other VERSION 2", None),
        (CERTAIN.replace("VERSION 2", "VERSION 1"), None),
        (CERTAIN.replace("2 1 0-40", "9 1 0-40"), (9, 1)),
        (CERTAIN.replace("2 1 0-40", "2 1 16-40"), (9, 5)),
        (CERTAIN + "\0" + CERTAIN, (17, 1)),
    ],
)
def test_a_text_that_breaks_a_rule_is_refused_with_the_place(text, place):
    with pytest.raises(PelkraftError) as caught:
        Pattern(text)
    error = caught.value
    assert (error.status, error.field) == (Status.BAD_TEXT, "text")
    assert place is None or (error.line, error.column) == place
    if place != (0, 0):
        assert f"line {error.line}, column {error.column}" in str(error)


@pytest.mark.parametrize("engine", ["reference", "Sse", ""])
def test_other_engines_are_refused(engine):
    with pytest.raises(PelkraftError) as caught:
        Pattern(CERTAIN, engine)
    assert caught.value.field == "engine"
    with pytest.raises(TypeError):
        Pattern(CERTAIN, 3)


@pytest.mark.parametrize("text", [None, 3, ["DotWeavePattern"]])
def test_a_text_of_another_type_is_refused(text):
    with pytest.raises(TypeError, match="text must be str or bytes, not "):
        Pattern(text)


@pytest.mark.parametrize("first", [-1, 2**63, "3", 1.0, None])
def test_other_numbers_of_rows_are_refused(first):
    with pytest.raises((PelkraftError, TypeError), match="^first_row "):
        Pattern(CERTAIN)(steps(1, 2), first)


@pytest.mark.parametrize(
    "field, rows, out",
    [
        ("rows", np.zeros((2, 3), np.uint8), None),
        ("rows", np.zeros((4, 5, 3), np.uint8), None),
        ("rows", np.zeros((4, 5, 2), np.int8), None),
        ("rows", np.zeros((4, 5, 4), np.uint8)[:, :, ::2], None),
        ("rows", np.zeros(4, np.uint8), None),
        ("out", np.zeros((4, 5, 2), np.uint8), np.zeros((4, 5, 2), np.uint8)),
        ("out", np.zeros((4, 5, 2), np.uint8), np.zeros((4, 6, 3), np.uint8)),
        ("out", np.zeros((4, 5, 2), np.uint8), np.zeros((3, 5, 3), np.uint8)),
        ("out", np.zeros((4, 5, 2), np.uint8), np.zeros((4, 5, 3), np.uint16)),
    ],
)
def test_arrays_that_do_not_fit_are_refused(field, rows, out):
    with pytest.raises(PelkraftError) as caught:
        Pattern(CERTAIN)(rows, out=out)
    assert caught.value.field == field


def test_overlap_is_refused():
    frame = np.zeros(200, np.uint8)
    with pytest.raises(PelkraftError) as caught:
        Pattern(CERTAIN)(frame[:40].reshape(4, 5, 2), out=frame[30:90].reshape(4, 5, 3))
    assert (caught.value.status, caught.value.field) == (Status.OVERLAP, "out")
    Pattern(CERTAIN)(frame[:40].reshape(4, 5, 2), out=frame[40:100].reshape(4, 5, 3))


def test_rows_of_any_stride_are_read_and_written():
    rows = np.concatenate([steps(9, 20)] * 2, axis=1)[::-2, 7:27]
    frame = np.full((5, 25, 3), 0xA5, np.uint8)
    out = frame[::-1, 2:22]
    pattern = Pattern(DRAWN)
    assert pattern(rows, 11, out) is out
    np.testing.assert_array_equal(out, pattern(rows.copy(), 11))
    out[...] = 0xA5
    assert (frame == 0xA5).all()


@pytest.mark.parametrize("shape", [(0, 5, 2), (4, 0, 2), (0, 0, 2), (0, 2)])
def test_empty_pictures_are_simulated(shape):
    assert Pattern(DRAWN)(np.zeros(shape, np.uint8)).shape == (*shape[:-1], 3)
