"""Plans, formats and constants as Python objects."""

import copy
import doctest
import inspect
import json
import pickle

import numpy as np
import pytest
from hypothesis import given, settings

import formats
import pelkraft
from pelkraft import Constant, Dither, Format, PelkraftError, Plan, Status, Tones

SOURCE, TARGET = Format(5, 3, 8), Format(5, 3, 8, planar=True)
PLAN = Plan(SOURCE, TARGET)
NAMES = vars(pelkraft)


@settings(max_examples=300)
@given(formats.jobs())
def test_a_plan_is_shown_saved_and_pickled_whole(job):
    plan = job.plan()
    rows = job.source_rows()
    expected = job.expected(rows)
    for again in (
        eval(repr(plan), NAMES),
        Plan.load(plan.save()),
        *(pickle.loads(pickle.dumps(plan, protocol)) for protocol in range(6)),
    ):
        assert again == plan and hash(again) == hash(plan)
        assert again.save() == plan.save() and repr(again) == repr(plan)
        np.testing.assert_array_equal(again(rows), expected)


@pytest.mark.parametrize(
    "value", [SOURCE, TARGET, Format(np.int64(5), np.uint8(3), True), Constant(7)], ids=repr
)
def test_a_format_is_shown_and_pickled_whole(value):
    assert eval(repr(value), NAMES) == value
    for protocol in range(6):
        assert pickle.loads(pickle.dumps(value, protocol)) == value
    assert hash(copy.deepcopy(value)) == hash(value)


def test_fields_tell_what_was_asked_for():
    plan = Plan(
        Format(3, 2, 16, planar=True), Format(6, 4, 8), map=[1, None, Constant(200), 0],
        repeat=2, mirror=True, samples="levels", invert=True, stream=True, road="portable",
    )
    for each in (plan, Plan.load(plan.save())):
        assert each.source == Format(3, 2, 16, planar=True)
        assert each.target == Format(6, 4, 8)
        assert each.map == (1, None, Constant(200), 0)
        assert (each.repeat, each.mirror, each.samples) == (2, True, "levels")
        assert (each.invert, each.clip, each.stream, each.road) == (True, False, True, "portable")
    form = plan.source
    assert (form.width, form.channels, form.bits, form.planar) == (3, 2, 16, True)
    needs = plan.needs
    assert (needs.source_plane_bytes, needs.source_row_bytes) == (6, 12)
    assert (needs.target_plane_bytes, needs.target_row_bytes) == (24, 24)
    assert needs.in_place is False


def test_plans_that_convert_alike_are_equal():
    assert Plan(SOURCE, TARGET, map=[0, 1, 2]) == PLAN
    assert Plan(SOURCE, TARGET, samples="tones") == PLAN
    assert Plan(SOURCE, TARGET, clip=True) == PLAN
    same = {PLAN, Plan(SOURCE, TARGET), Plan(SOURCE, TARGET, map=range(3))}
    assert len(same) == 1


@pytest.mark.parametrize(
    "other",
    [
        Plan(SOURCE, SOURCE),
        Plan(SOURCE, TARGET, map=[0, 2, 1]),
        Plan(SOURCE, TARGET, mirror=True),
        Plan(SOURCE, TARGET, invert=True),
        Plan(SOURCE, TARGET, stream=True),
        Plan(SOURCE, TARGET, road="portable"),
        Plan(SOURCE, Format(5, 3, 1, planar=True)),
        SOURCE,
        None,
        "text",
    ],
    ids=repr,
)
def test_others_are_not_equal(other):
    assert PLAN != other and not PLAN == other
    assert SOURCE != PLAN


@pytest.mark.parametrize(
    "value, name",
    [(PLAN, name) for name in ("source", "map", "repeat", "needs", "new", "__call__", "__dict__")]
    + [(SOURCE, name) for name in ("width", "planar", "new")]
    + [(Constant(3), "sample"), (PLAN.needs, "in_place"), (Tones([0]), "inks")]
    + [(Dither([Tones([0])]), name) for name in ("tones", "mask", "new", "__call__")],
    ids=str,
)
def test_nothing_can_be_set_or_deleted(value, name):
    with pytest.raises(AttributeError):
        setattr(value, name, 1)
    with pytest.raises(AttributeError):
        delattr(value, name)


def test_a_second_init_changes_nothing():
    plan, form = Plan(SOURCE, TARGET), Format(5, 3, 8)
    plan.__init__(SOURCE, SOURCE)
    form.__init__(1, 2, 3)
    assert plan == PLAN and form == SOURCE


@pytest.mark.parametrize(
    "kind", [Plan, Format, Constant, pelkraft.Pattern, pelkraft.Needs, Dither, Tones]
)
def test_there_is_no_object_without_content(kind):
    for make in (lambda: kind.__new__(kind), lambda: object.__new__(kind), kind):
        with pytest.raises(TypeError):
            make()
    with pytest.raises(TypeError):
        type("Derived", (kind,), {})


def test_a_copy_is_the_object_itself():
    assert copy.copy(PLAN) is PLAN and copy.deepcopy([PLAN])[0] is PLAN
    assert copy.copy(SOURCE) is SOURCE and copy.deepcopy(SOURCE) is SOURCE


def test_dask_knows_plans_by_their_content():
    from dask.base import tokenize

    assert tokenize(PLAN) == tokenize(Plan(SOURCE, TARGET)) == tokenize(Plan.load(PLAN.save()))
    assert tokenize(PLAN) != tokenize(Plan(SOURCE, SOURCE))


# The plan below as the first version of records saves it.
OLD_RECORD = bytes.fromhex(
    "706c6b50 01000000 6000000000000000"  # "plkP", version, bytes of the content
    "0400000000000000 03000000 10000000 00000000"  # source: width, channels, bits, planar
    "0800000000000000 04000000 08000000 01000000"  # target
    "02000000 01000000 02000000 01000000"  # repeat, mirror, samples, invert
    "00000000 00000000 00000000"  # clip, stream, road
    "01000000 0400000000000000 02000000 ffffffff f5ffffff 00000000"  # the map
    "2fc49150"  # the check
)


def test_a_record_of_the_first_version_loads():
    plan = Plan.load(OLD_RECORD)
    assert plan == Plan(
        Format(4, 3, 16), Format(8, 4, 8, planar=True), map=[2, None, Constant(9), 0], repeat=2,
        mirror=True, samples="levels", invert=True,
    )
    assert plan.save() == OLD_RECORD


def test_a_pickle_of_the_first_version_loads():
    made = (
        b"\x80\x04\x95\xb7\x00\x00\x00\x00\x00\x00\x00\x8c\x08operator\x94\x8c\x0cmethodcaller\x94"
        b"\x93\x94\x8c\x04load\x94Ct" + OLD_RECORD + b"\x94\x86\x94R\x94\x8c\x08pelkraft\x94"
        b"\x8c\x04Plan\x94\x93\x94\x85\x94R\x94."
    )
    assert pickle.loads(made) == Plan.load(OLD_RECORD)


@pytest.mark.parametrize("kind", [bytes, bytearray, memoryview])
def test_a_record_may_be_any_kind_of_bytes(kind):
    assert Plan.load(kind(PLAN.save())) == PLAN


@pytest.mark.parametrize("at", range(len(PLAN.save())))
def test_a_damaged_record_is_refused(at):
    record = bytearray(PLAN.save())
    record[at] ^= 0x40
    with pytest.raises(PelkraftError) as caught:
        Plan.load(record)
    assert caught.value.status in (Status.BAD_RECORD, Status.TOO_NEW)
    with pytest.raises(PelkraftError):
        Plan.load(PLAN.save()[:at])


@pytest.mark.parametrize("record", [None, "text", 3, [1, 2]])
def test_a_record_of_another_type_is_refused(record):
    with pytest.raises(TypeError, match="record must be bytes, not"):
        Plan.load(record)


def test_signatures_are_told():
    assert str(inspect.signature(Plan)).startswith("(source, target, *, map=None, repeat=1, ")
    assert str(inspect.signature(Plan.__call__)) == "(self, rows, out=None)"
    assert str(inspect.signature(PLAN.explain)) == "(json=False)"
    assert str(inspect.signature(Dither)) == "(tones, bits=8, *, mask=None, road='automatic')"
    assert str(inspect.signature(Dither.__call__)) == "(self, rows, x=0, y=0, out=None)"
    assert str(inspect.signature(Tones)) == "(inks, no_ink=0, full_ink=255)"
    assert str(inspect.signature(Format)) == "(width, channels, bits, planar=False)"


@pytest.mark.parametrize(
    "kind", [Plan, Format, Constant, pelkraft.Needs, pelkraft.Pattern, Dither, Tones]
)
def test_everything_public_is_documented(kind):
    for name, value in {"": kind, **vars(kind)}.items():
        if not name.startswith("_") or name == "__call__":
            assert (value.__doc__ or "").strip(), name
    assert kind.__module__ == "pelkraft"


def test_the_example_of_the_package_runs():
    result = doctest.testmod(pelkraft)
    assert result.attempted > 0 and result.failed == 0


def test_an_explanation_names_road_and_level_and_bytes():
    text = PLAN.explain()
    assert "15 bytes" in text and not text.endswith("\n")
    facts = json.loads(PLAN.explain(json=True))
    assert facts["source"] == {"width": 5, "channels": 3, "bits": 8, "planar": False}
    assert facts["bytes_read"] == facts["bytes_written"] == 15
    assert facts["level"] in text
