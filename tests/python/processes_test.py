"""Threads, pools of processes, interpreters, and memory over many calls."""

import concurrent.futures
import gc
import multiprocessing
import subprocess
import sys
import threading
import time

import numpy as np
import pytest

import pelkraft
from pelkraft import Dither, Format, Pattern, PelkraftError, Plan, Tones

SPLIT = Plan(Format(1000, 4, 8), Format(1000, 4, 8, planar=True))
PATTERN = Pattern(
    """DotWeavePattern VERSION 3
    BEGIN_OUT_INKS Cyan LightCyan END_OUT_INKS BEGIN_IN_COLORS Cyan END_IN_COLORS
    BEGIN_IN_COLOR Cyan BEGIN_INKS Cyan LightCyan END_INKS
    BEGIN_VALUES 1 1:3 0-255 1-255 2 1:2 0-85 0-170 END_VALUES END_IN_COLOR"""
)

DITHER = Dither([Tones([0, 10, 30])] * 4)


def picture(seed, rows=50):
    return np.random.default_rng(seed).integers(0, 256, (rows, 1000, 4), np.uint8)


def simulate_band(pattern, first, rows):
    """A task of a pool; the arguments travel to it by pickle."""
    return pattern(rows, first)


@pytest.mark.parametrize("method", ["fork", "spawn", "forkserver"])
def test_a_pool_of_processes_gives_the_same_bytes(method):
    rows = np.random.default_rng(8).integers(0, 3, (60, 200, 1), np.uint8)
    expected = PATTERN(rows)
    context = multiprocessing.get_context(method)
    with concurrent.futures.ProcessPoolExecutor(2, mp_context=context) as pool:
        firsts = range(0, 60, 10)
        bands = pool.map(
            simulate_band, [PATTERN] * 6, firsts, [rows[first : first + 10] for first in firsts]
        )
        np.testing.assert_array_equal(np.concatenate(list(bands)), expected)
        pictures = [picture(seed) for seed in range(4)]
        for rows, result in zip(pictures, pool.map(SPLIT, pictures)):
            np.testing.assert_array_equal(result, rows.transpose(0, 2, 1))
        for rows, result in zip(pictures, pool.map(DITHER, pictures)):
            np.testing.assert_array_equal(result, DITHER(rows))


def test_a_failure_of_a_pool_arrives_whole():
    context = multiprocessing.get_context("spawn")
    with concurrent.futures.ProcessPoolExecutor(1, mp_context=context) as pool:
        with pytest.raises(PelkraftError) as caught:
            pool.submit(SPLIT, np.zeros((1, 999, 4), np.uint8)).result()
    assert caught.value.field == "rows" and "(1, 999, 4)" in str(caught.value)


def test_many_threads_run_one_plan_and_one_pattern():
    steps = np.random.default_rng(9).integers(0, 3, (64, 1000, 1), np.uint8)
    expected = PATTERN(steps, 100)
    pictures = [picture(seed) for seed in range(16)]
    dithered = [DITHER(rows, 3) for rows in pictures]

    def work(number):
        for _ in range(30):
            rows = pictures[number]
            np.testing.assert_array_equal(SPLIT(rows), rows.transpose(0, 2, 1))
            np.testing.assert_array_equal(PATTERN(steps, 100), expected)
            np.testing.assert_array_equal(DITHER(rows, 3), dithered[number])
            row = number * 4
            np.testing.assert_array_equal(PATTERN(steps[row], 100 + row), expected[row])
            assert Plan.load(SPLIT.save()) == SPLIT

    with concurrent.futures.ThreadPoolExecutor(16) as pool:
        list(pool.map(work, range(16)))


@pytest.fixture
def other_thread():
    """A function that tells whether another thread could do anything during a call."""
    turns = [0]
    over = threading.Event()
    interval = sys.getswitchinterval()
    # No thread is made to give way; each does so only where it blocks.
    sys.setswitchinterval(1000)

    def take_turns():
        while not over.is_set():
            turns[0] += 1
            time.sleep(0)

    def runs_during(call):
        before = turns[0]
        call()
        return turns[0] != before

    thread = threading.Thread(target=take_turns)
    thread.start()
    yield runs_during
    over.set()
    thread.join()
    sys.setswitchinterval(interval)


def test_another_thread_goes_on_during_a_long_run(other_thread):
    rows, out = picture(3, 20_000), np.zeros((20_000, 4, 1000), np.uint8)
    assert other_thread(lambda: SPLIT(rows, out))
    steps, inks = np.zeros((20_000, 1000, 1), np.uint8), np.zeros((20_000, 1000, 2), np.uint8)
    assert other_thread(lambda: PATTERN(steps, 0, inks))
    dithered = np.zeros((20_000, 1000, 4), np.uint8)
    assert other_thread(lambda: DITHER(rows, out=dithered))
    row, planes = picture(3, 1), np.zeros((1, 4, 1000), np.uint8)
    assert not other_thread(lambda: [SPLIT(row, planes) for _ in range(100)])


def resident_bytes():
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * 4096


def calls():
    """Each kind of call, those that fail too, each of which makes and drops objects."""
    row = np.zeros((1000, 4), np.uint8)
    out = np.zeros((4, 1000), np.uint8)
    narrow = np.zeros((999, 4), np.uint8)
    record, text = SPLIT.save(), PATTERN.text
    small = Format(3, 2, 8)

    def fail(call):
        try:
            call()
        except (PelkraftError, TypeError):
            return
        raise AssertionError("nothing failed")

    return [
        lambda: SPLIT(row, out),
        lambda: SPLIT(row),
        lambda: Plan(small, small, map=[1, None], mirror=True).explain(),
        lambda: (repr(SPLIT), hash(SPLIT), SPLIT.source, SPLIT.needs, SPLIT == PATTERN),
        lambda: Plan.load(record).save(),
        lambda: (Pattern.load(PATTERN.save()), PATTERN.out_inks),
        lambda: (DITHER(row), repr(DITHER), hash(DITHER), DITHER.tones, DITHER == SPLIT),
        lambda: (PATTERN.step_inks(), PATTERN.read_step_inks("Cyan,0,0\nCyan,1,1\nCyan,2,2")),
        lambda: fail(lambda: DITHER(narrow[:, :3])),
        lambda: fail(lambda: Dither([Tones([0, 0])])),
        lambda: fail(lambda: PATTERN.read_step_inks("Cyan")),
        lambda: fail(lambda: SPLIT(narrow)),
        lambda: fail(lambda: SPLIT(row, row.reshape(4, 1000))),
        lambda: fail(lambda: SPLIT([])),
        lambda: fail(lambda: Plan(small, small, map=[2, 0])),
        lambda: fail(lambda: Pattern(text.replace("VERSION 3", "VERSION 1"))),
        lambda: fail(lambda: Plan.load(b"plkP")),
    ]


def test_memory_stays_flat():
    kinds = calls()
    cheap = kinds[:2]
    for call in kinds:
        for _ in range(300):
            call()
    gc.collect()
    before = resident_bytes()
    for call in cheap:
        for _ in range(50_000):
            call()
    for call in kinds[2:]:
        for _ in range(1_500):
            call()
    gc.collect()
    assert resident_bytes() - before < 2_000_000


def test_no_reference_is_left():
    rows, out = picture(1, 1), np.zeros((1, 4, 1000), np.uint8)
    wrong = np.zeros((1, 999, 4), np.uint8)
    before = [sys.getrefcount(thing) for thing in (rows, out, wrong, SPLIT)]
    for _ in range(100):
        SPLIT(rows, out)
        SPLIT(rows)
        with pytest.raises(PelkraftError):
            SPLIT(wrong, out)
    assert [sys.getrefcount(thing) for thing in (rows, out, wrong, SPLIT)] == before


IN_ANOTHER_INTERPRETER = """
import _xxsubinterpreters as interpreters
{first}
interpreter = interpreters.create()
interpreters.run_string(interpreter, '''
try:
    import {module}
except ImportError as error:
    assert "main interpreter only" in str(error), error
    assert "threads or processes" in str(error), error
else:
    raise AssertionError("imported")
''')
interpreters.destroy(interpreter)
import pelkraft
pelkraft.Plan(pelkraft.Format(1, 1, 8), pelkraft.Format(1, 1, 16))
"""


@pytest.mark.parametrize("module", ["pelkraft", "pelkraft._core"])
@pytest.mark.parametrize("first", ["", "import pelkraft"])
def test_another_interpreter_is_refused(first, module):
    program = IN_ANOTHER_INTERPRETER.format(first=first, module=module)
    subprocess.run([sys.executable, "-c", program], check=True, timeout=60)


def test_the_module_prints_its_versions():
    lines = subprocess.run(
        [sys.executable, "-m", "pelkraft"], check=True, capture_output=True, text=True
    ).stdout.splitlines()
    facts = dict(line.split(None, 1) for line in lines)
    assert facts["pelkraft"] == pelkraft.__version__
    assert facts["numpy"] == np.__version__
    assert "libpelkraft" in facts["library"]
