"""Each refusal tells the field, what it was and what would do."""

import pickle

import pytest

import pelkraft
from pelkraft import Constant, Format, PelkraftError, Plan, Status

SOURCE, TARGET = Format(5, 3, 8), Format(5, 3, 8, planar=True)


def refusal(*args, **options):
    with pytest.raises(PelkraftError) as caught:
        Plan(*args, **options)
    error = caught.value
    assert isinstance(error, ValueError) and error.field in str(error)
    assert (error.line, error.column) == (0, 0)
    return error.field, error.status, error.given, error.needed


@pytest.mark.parametrize(
    "source, target, options, expected",
    [
        (Format(-1, 3, 8), TARGET, {}, ("source.width", Status.INVALID, -1, 0)),
        (SOURCE, Format(5, -2, 8), {}, ("target.channels", Status.INVALID, -2, 0)),
        (SOURCE, Format(5, 3, 3), {}, ("target.bits", Status.INVALID, 3, 8)),
        (SOURCE, Format(6, 3, 8), {}, ("target.width", Status.UNSUPPORTED, 6, 5)),
        (SOURCE, Format(5, 4, 8), {}, ("target.channels", Status.UNSUPPORTED, 4, 3)),
        (SOURCE, TARGET, {"repeat": 3}, ("repeat", Status.INVALID, 3, 1)),
        (SOURCE, TARGET, {"repeat": 0}, ("repeat", Status.INVALID, 0, 1)),
        (SOURCE, TARGET, {"map": [0, 1, 3]}, ("map[2]", Status.UNSUPPORTED, 3, 2)),
        (SOURCE, TARGET, {"map": [0, -1, 0]}, ("map[1]", Status.INVALID, -1, 0)),
        (SOURCE, TARGET, {"map": [-(10**6)] * 3}, ("map[0]", Status.INVALID, -(10**6), 0)),
        (SOURCE, TARGET, {"samples": "tone"}, ("samples", Status.INVALID, 0, 0)),
        (SOURCE, TARGET, {"road": ""}, ("road", Status.INVALID, 0, 0)),
    ],
    ids=str,
)
def test_a_plan_refuses(source, target, options, expected):
    assert refusal(source, target, **options) == expected


@pytest.mark.parametrize("entries", [[], [0], [0, 1, 2, 0]])
def test_a_map_of_other_length_is_refused(entries):
    with pytest.raises(PelkraftError) as caught:
        Plan(SOURCE, TARGET, map=entries)
    assert (caught.value.given, caught.value.needed) == (len(entries), 3)


def test_a_constant_beyond_the_depth_is_refused():
    assert Plan(SOURCE, TARGET, map=[Constant(255)] * 3).map == (Constant(255),) * 3
    field, status, given, needed = refusal(SOURCE, TARGET, map=[0, Constant(256), 0])
    assert field == "map[1]"
    for sample in (-1, 65536, 2**70):
        with pytest.raises(PelkraftError, match="^sample is "):
            Constant(sample)


@pytest.mark.parametrize("kind, bits", [("tones", 10), ("tones", 1), ("levels", 3)])
def test_samples_without_a_full_scale_are_no_tones(kind, bits):
    with pytest.raises(PelkraftError) as caught:
        Plan(SOURCE, Format(5, 3, bits), samples=kind)
    assert caught.value.field in ("samples", "target.bits")


@pytest.mark.parametrize("value", [2**63, -(2**63) - 1, 10**30])
def test_numbers_beyond_64_bits_are_refused(value):
    with pytest.raises(PelkraftError) as caught:
        Format(value, 1, 8)
    assert str(caught.value) == f"width is {value}; 64 bits must hold it"


def test_numbers_beyond_32_bits_are_refused():
    with pytest.raises(PelkraftError) as caught:
        Format(1, 2**31, 8)
    assert (caught.value.field, caught.value.given) == ("channels", 2**31)
    with pytest.raises(PelkraftError, match="^map\\[0\\] is 4294967296; 32 bits"):
        Plan(Format(1, 1, 8), Format(1, 1, 8), map=[2**32])


@pytest.mark.parametrize(
    "call, words",
    [
        (lambda: Format("5", 3, 8), "width must be an integer, not str"),
        (lambda: Format(5.0, 3, 8), "width must be an integer, not float"),
        (lambda: Format(5, 3, None), "bits must be an integer, not NoneType"),
        (lambda: Format(5, 3, 8, planar=2), "planar must be True or False, not 2"),
        (lambda: Plan(SOURCE, (5, 3, 8)), "target must be a Format, not tuple"),
        (lambda: Plan(None, TARGET), "source must be a Format, not NoneType"),
        (lambda: Plan(SOURCE, TARGET, mirror="no"), "mirror must be True or False, not 'no'"),
        (lambda: Plan(SOURCE, TARGET, samples=1), "samples must be one of 'fill', 'tones', "),
        (lambda: Plan(SOURCE, TARGET, map="012"), "map must be a list of channels, "),
        (lambda: Plan(SOURCE, TARGET, map=3), "map must be a list of channels, "),
        (lambda: Plan(SOURCE, TARGET, map=[0, 1.5, 2]), "map[1] must be an integer, not float"),
        (lambda: Constant("1"), "sample must be an integer, not str"),
    ],
)
def test_an_argument_of_another_type_is_named(call, words):
    with pytest.raises(TypeError) as caught:
        call()
    assert str(caught.value).startswith(words)


@pytest.mark.parametrize(
    "call",
    [
        lambda: Plan(SOURCE),
        lambda: Plan(SOURCE, TARGET, [0, 1, 2]),
        lambda: Plan(SOURCE, TARGET, turned=True),
        lambda: Plan(SOURCE, TARGET)(),
        lambda: Plan(SOURCE, TARGET).explain(xml=True),
        lambda: Format(1, 2),
    ],
)
def test_missing_and_unknown_arguments_are_refused(call):
    with pytest.raises(TypeError):
        call()


def test_an_exception_of_an_argument_comes_through():
    class Number:
        def __index__(self):
            raise KeyError("of its own")

    with pytest.raises(KeyError, match="of its own"):
        Format(Number(), 1, 8)
    with pytest.raises(KeyError, match="of its own"):
        Plan(SOURCE, TARGET, map=[0, 1, Number()])


def test_an_error_survives_a_pickle():
    with pytest.raises(PelkraftError) as caught:
        Plan(SOURCE, Format(6, 3, 8))
    error = pickle.loads(pickle.dumps(caught.value))
    assert str(error) == str(caught.value) and vars(error) == vars(caught.value)
    assert (error.field, error.status, error.needed) == ("target.width", Status.UNSUPPORTED, 5)


def test_sizes_beyond_any_memory_are_refused():
    for form in (Format(2**62, 4, 16), Format(2**63 - 1, 2**31 - 1, 1, planar=True)):
        with pytest.raises(PelkraftError) as caught:
            Plan(form, form)
        assert caught.value.field.startswith("source.")


def test_the_statuses_are_those_of_the_header(header):
    for status in Status:
        assert f"PLK_{status.name} = {int(status)}" in header
    assert header.count("PLK_BAD_RECORD = 8\n") == 1 and len(pelkraft.Status) == 9
