# SPDX-License-Identifier: Apache-2.0
"""The order of results, the window, retries and blame, with a runner that does as it is told."""

import os

import pytest
from conftest import check_mirrored
from fake_runner import FakeRunner, Gone, Lost

from pelkraft.pages import JobError, PageJob, run_pages


@pytest.fixture(autouse=True)
def short_waits(monkeypatch):
    monkeypatch.setattr("pelkraft.pages.driver.LONGEST_WAIT", 0.01)


def numbers(results):
    return [result.number for result in results]


def statuses(results):
    return [result.status for result in results]


def test_results_come_in_order_though_pages_end_in_another(make_jobs):
    jobs = make_jobs(7)
    runner = FakeRunner(3, lambda runner: runner.make(max(runner.under_way)))
    assert numbers(run_pages(jobs, runner)) == [1, 2, 3, 4, 5, 6, 7]
    check_mirrored(jobs)


def test_the_window_counts_pages_that_wait_for_their_turn(make_jobs):
    ends = []

    def all_but_the_first(runner):
        later = [number for number in runner.under_way if number != 1]
        ends.append(len(runner.under_way))
        runner.make(later[0] if later else 1)

    results = list(run_pages(make_jobs(9), FakeRunner(4, all_but_the_first)))
    assert numbers(results) == list(range(1, 10))
    # Page 1 keeps its place, and so do 2 to 4, so that no fifth page is begun before it ends.
    assert ends[:4] == [4, 3, 2, 1]


def test_nothing_more_is_submitted_than_is_taken(make_jobs):
    runner = FakeRunner(3, lambda runner: runner.make(min(runner.under_way)))
    results = run_pages(make_jobs(20), runner)
    assert [next(results).number for _ in range(5)] == [1, 2, 3, 4, 5]
    assert len(runner.submitted) <= 5 + 3
    results.close()
    assert runner.stopped


def test_a_page_lost_in_company_is_begun_again_alone(make_jobs):
    jobs = make_jobs(6)
    lost = []

    def lose_two_once(runner):
        if not lost and {2, 3} <= set(runner.under_way):
            lost.extend((2, 3))
            runner.end(2, Lost())
            runner.end(3, Lost())
        else:
            runner.make(min(runner.under_way))

    runner = FakeRunner(3, lose_two_once)
    results = list(run_pages(jobs, runner))
    assert statuses(results) == ["made"] * 6
    assert [result.losses for result in results] == [0, 1, 1, 0, 0, 0]
    assert [result.attempts for result in results] == [1, 2, 2, 1, 1, 1]
    again = {number: company for number, company in runner.submitted[3:] if number in (2, 3)}
    assert again == {2: {2}, 3: {3}}
    check_mirrored(jobs)


def test_nothing_is_submitted_beside_a_page_on_its_own(make_jobs):
    company = []

    def behave(runner):
        if len(runner.submitted) == 3:
            runner.end(3, Lost())
            runner.make(1)
            runner.make(2)
        elif runner.submitted[3:] == [(3, {3})] and len(company) < 3:
            company.append(set(runner.under_way))
        else:
            runner.make(min(runner.under_way))

    results = list(run_pages(make_jobs(6), FakeRunner(3, behave)))
    assert statuses(results) == ["made"] * 6
    # There was room for two more all the while.
    assert company == [{3}, {3}, {3}]


def test_a_page_that_was_made_before_its_worker_was_lost_is_made_once(make_jobs):
    jobs = make_jobs(2)
    files = []

    def behave(runner):
        if 1 in runner.under_way and not files:
            function, task, _ = runner.under_way[1]
            assert function(task).status == "made"
            files.append(os.stat(jobs[0].output).st_ino)
            runner.end(1, Lost())
        else:
            runner.make(min(runner.under_way))

    for redo in (False, True):
        files.clear()
        results = list(run_pages(jobs, FakeRunner(2, behave), redo=redo))
        assert [(result.status, result.losses) for result in results] == \
            [("made", 1), ("made", 0)]
        assert os.stat(jobs[0].output).st_ino == files[0]


def test_a_page_that_is_lost_alone_twice_is_blamed(make_jobs):
    def behave(runner):
        if 2 in runner.under_way:
            runner.end(2, Lost())
        else:
            runner.make(min(runner.under_way))

    results = list(run_pages(make_jobs(4), FakeRunner(2, behave)))
    assert statuses(results) == ["made", "failed", "made", "made"]
    assert (results[1].kind, results[1].losses, results[1].attempts) == ("lost", 3, 3)
    assert "2.tif: its worker ended, twice while no other page was under way" in results[1].message


def test_a_page_that_is_lost_alone_once_is_made(make_jobs):
    left = [2]

    def behave(runner):
        if 2 in runner.under_way and left[0]:
            left[0] -= 1
            runner.end(2, Lost())
        else:
            runner.make(min(runner.under_way))

    results = list(run_pages(make_jobs(4), FakeRunner(2, behave)))
    assert statuses(results) == ["made"] * 4
    assert (results[1].losses, results[1].attempts) == (2, 3)


@pytest.mark.parametrize("failures, retries, status, attempts", [
    (0, 0, "made", 1), (1, 0, "failed", 1), (2, 2, "made", 3), (3, 2, "failed", 3)])
def test_exceptions_are_retried_so_many_times(make_jobs, failures, retries, status, attempts):
    left = [failures]

    def behave(runner):
        if 1 in runner.under_way and left[0]:
            left[0] -= 1
            runner.end(1, RuntimeError("out of paper"))
        else:
            runner.make(min(runner.under_way))

    results = list(run_pages(make_jobs(2), FakeRunner(2, behave), retries=retries))
    assert [(result.status, result.attempts) for result in results] == \
        [(status, attempts), ("made", 1)]
    if status == "failed":
        assert results[0].kind == "error"
        assert results[0].message.endswith("1.tif: RuntimeError: out of paper")


def test_a_runner_that_retries_itself_is_believed(make_jobs):
    def behave(runner):
        if 1 in runner.under_way:
            runner.end(1, RuntimeError("out of paper"))
        else:
            runner.make(2)

    runner = FakeRunner(2, behave)
    runner.retries_itself = True
    results = list(run_pages(make_jobs(2), runner, retries=2))
    assert [(result.status, result.attempts) for result in results] == \
        [("failed", 3), ("made", 1)]
    assert len(runner.submitted) == 2


def test_a_cluster_that_goes_away_leaves_pages(make_jobs):
    def behave(runner):
        if {3, 4, 5} <= set(runner.under_way):
            # The fourth page is made, and its result comes after the news.
            runner.end(3, Gone())
            runner.make(4)
            runner.end(5, Gone())
        else:
            runner.make(min(runner.under_way))

    jobs = make_jobs(7)
    results = list(run_pages(jobs, FakeRunner(3, behave)))
    assert statuses(results) == \
        ["made", "made", "left", "made", "left", "left", "left"]
    assert results[2].message == "the scheduler went away"
    check_mirrored([jobs[0], jobs[1], jobs[3]])


def test_a_page_that_keeps_its_worker_is_ended_after_the_timeout(make_jobs):
    def behave(runner):
        if runner.unfrozen and len(runner.under_way) == 2:
            assert runner.unfrozen[0] is runner.under_way[1][2]
            runner.end(1, Lost())
        elif 2 in runner.under_way and runner.unfrozen:
            runner.make(2)
        elif len(runner.unfrozen) == 1 and 1 in runner.under_way and len(runner.submitted) > 2:
            runner.make(1)

    runner = FakeRunner(2, behave)
    results = list(run_pages(make_jobs(2), runner, timeout=0.2))
    assert statuses(results) == ["made", "made"]
    assert [result.losses for result in results] == [1, 0]
    assert len(runner.unfrozen) == 1


def test_the_timeout_counts_from_the_moment_when_a_page_is_the_oldest(make_jobs):
    turns = []

    def behave(runner):
        turns.append(1)
        # Each page takes two thirds of the timeout, all together far more.
        if len(turns) % 14 == 0:
            runner.make(min(runner.under_way))

    runner = FakeRunner(3, behave)
    assert statuses(run_pages(make_jobs(4), runner, timeout=0.3)) == ["made"] * 4
    assert runner.unfrozen == []


def test_jobs_that_write_over_one_another_are_refused(make_jobs, tmp_path):
    one, two = make_jobs(2)
    steps = one.steps
    for jobs, words in [
            ([one, PageJob(two.input, one.output, steps)], "job 2: .*1.tif is written by job 1"),
            ([one, PageJob(two.input, one.input, steps)], "is an input of the list"),
            ([PageJob(one.input, one.input, steps)], "is an input of the list"),
            ([one, PageJob(two.input, one.output + ".stamp", steps)], "is written by job 1")]:
        with pytest.raises(JobError, match=words):
            run_pages(jobs)
    (tmp_path / "link").symlink_to(tmp_path / "out")
    with pytest.raises(JobError, match="is written by job 1"):
        run_pages([one, PageJob(two.input, str(tmp_path / "link" / "1.tif"), steps)])


@pytest.mark.parametrize("options, words", [
    ({"retries": -1}, "retries is -1; 0 or more would do"),
    ({"window": 0}, "window is 0; 1 or more would do"),
    ({"timeout": 0}, "timeout is 0; more than 0 seconds would do"),
    ({"timeout": float("nan")}, "timeout is nan")])
def test_options_out_of_range_are_refused(make_jobs, options, words):
    with pytest.raises(JobError, match=words):
        run_pages(make_jobs(1), **options)


def test_an_empty_list_has_no_results():
    assert list(run_pages([])) == []
