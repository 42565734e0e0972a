"""What is read from benchmark reports, which losses are named, and what the page shows of it."""

import contextlib
import io
import json
import os
import sys
import unittest

SOURCE = os.path.abspath(os.path.join(os.path.dirname(__file__), "../.."))
sys.path.insert(0, os.path.join(SOURCE, "benchmarks/peers"))

import chart  # noqa: E402
import figures  # noqa: E402
import report as program  # noqa: E402
import table  # noqa: E402

TIMES = {"pelkraft": 40.0, "plain_loop": 90.0, "memcpy": 20.0, "slow_peer": 80.0, "fast_peer": 50.0}


def measured(times, job="split", width=100):
    return [
        {
            "name": f"{job}/{width}/{entry}",
            "run_type": "iteration",
            "cpu_time": time,
            "time_unit": "ns",
            "label": "own scale" if entry == "fast_peer" else "",
            "row_bytes": 800.0,
        }
        for entry, time in times.items()
    ]


def run_of(rows, processor="this one"):
    context = {
        "date": "2026-01-02T03:04:05+00:00",
        "processor": processor,
        "compiler": "GNU 12",
        "peers": "a, b",
        "jobs": "split",
        "common jobs": "split",
        "title of split": "split it",
    }
    return json.dumps({"context": context, "benchmarks": rows})


def stored():
    return figures.figures_to_store(figures.Report([run_of(measured(TIMES))]), "a command")


def slowed(factor, processor="this one"):
    times = dict(TIMES, pelkraft=TIMES["pelkraft"] * factor)
    return figures.Report([run_of(measured(times), processor)])


def check(reports):
    with contextlib.redirect_stdout(io.StringIO()) as said:
        code = program.check(stored(), reports)
    return code, said.getvalue()


class Figures(unittest.TestCase):
    def test_are_medians_of_all_repetitions_of_all_runs(self):
        rows = [row for ours in (10.0, 12.0, 99.0) for row in measured({"pelkraft": ours})]
        runs = [run_of(rows), run_of(measured({"pelkraft": 11.0}) + measured({"pelkraft": 1.0}))]
        self.assertEqual(figures.Report(runs).time("split", 100, "pelkraft"), 11.0)

    def test_leave_out_what_the_benchmark_sums_up_itself(self):
        summary = dict(measured({"pelkraft": 7.0})[0], run_type="aggregate")
        report = figures.Report([run_of(measured(TIMES) + [summary])])
        self.assertEqual(report.time("split", 100, "pelkraft"), 40.0)

    def test_are_nanoseconds_whatever_the_unit(self):
        row = dict(measured({"pelkraft": 3.0})[0], time_unit="us")
        self.assertEqual(figures.Report([run_of([row])]).time("split", 100, "pelkraft"), 3000.0)

    def test_name_the_fastest_peer_with_its_rule_and_no_loop(self):
        row = stored()["jobs"]["split"]["rows"][0]
        self.assertEqual((row["peer"], row["peer_rule"]), ("fast_peer", "own scale"))
        self.assertEqual((row["times_as_fast_as_peer"], row["share_of_memcpy"]), (1.25, 0.5))

    def test_say_that_no_peer_does_the_job(self):
        times = {name: TIMES[name] for name in ("pelkraft", "plain_loop", "memcpy")}
        report = figures.Report([run_of(measured(times))])
        row = figures.figures_of_row(report, "split", 100)
        self.assertIsNone(row["peer"])
        self.assertIn("| none | - | - |", table.line("split it", row))

    def test_hold_the_plan_beside_the_rows(self):
        times = dict(TIMES, pelkraft_plan=30.0)
        report = figures.Report([run_of(measured(times))])
        row = figures.figures_of_row(report, "split", 100)
        self.assertEqual((row["ours"], row["planned"], row["peer"]), (40.0, 30.0, "fast_peer"))
        self.assertTrue(table.line("split it", row).startswith("| split it | 100 | 40.0 | 30.0 |"))
        stored_with_plan = figures.figures_to_store(report, "a command")
        self.assertIn("in 1 of 1 rows.\nAs a plan it is in 1 of 1 rows.", table.section(stored_with_plan))

    def test_leave_the_plan_out_where_there_is_none(self):
        self.assertIn("| split it | 100 | 40.0 | - |", table.section(stored()))

    def test_are_the_same_when_read_back(self):
        self.assertEqual(json.loads(figures.text_to_store(stored())), stored())


class Check(unittest.TestCase):
    def test_names_a_loss_on_which_three_runs_agree(self):
        code, said = check([slowed(1.2), slowed(1.25), slowed(1.3)])
        self.assertEqual(code, 1)
        self.assertIn("loss: split, 100 pixels: 0.500 of memcpy's speed before, now 0.417", said)

    def test_passes_where_one_run_of_three_disagrees(self):
        code, said = check([slowed(1.3), slowed(1.1), slowed(1.3)])
        self.assertEqual((code, said), (0, "no loss above 15% on which 3 runs agree\n"))

    def test_passes_a_loss_of_less_than_fifteen_percent(self):
        self.assertEqual(check([slowed(1 / 0.86)] * 3)[0], 0)
        self.assertEqual(check([slowed(1 / 0.84)] * 3)[0], 1)

    def test_passes_a_gain(self):
        self.assertEqual(check([slowed(0.5)] * 3)[0], 0)

    def test_takes_no_loss_for_one_where_memcpy_is_slower_too(self):
        times = {name: 2 * time for name, time in TIMES.items()}
        self.assertEqual(check([figures.Report([run_of(measured(times))])] * 3)[0], 0)

    def test_fails_where_a_job_was_not_measured(self):
        code, said = check([slowed(1), slowed(1), figures.Report([run_of([])])])
        self.assertEqual((code, said), (1, "loss: split, 100 pixels: not measured\n"))

    def test_says_that_the_stored_figures_come_from_another_processor(self):
        said = check([slowed(1, "that one")] * 3)[1]
        self.assertIn("come from another processor: this one, not that one", said)
        self.assertNotIn("processor", check([slowed(1)] * 3)[1])


class Page(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        def read(path):
            with open(os.path.join(SOURCE, path), encoding="utf-8") as file:
                return file.read()

        cls.stored = json.loads(read("benchmarks/peers/stored_ratios.json"))
        cls.page = read("docs/benchmarks.md")
        cls.picture = read("docs/pictures/benchmarks.svg")

    def test_shows_the_stored_figures(self):
        part = self.page.split("<!-- peers: begin -->\n")[1].split("<!-- peers: end -->\n")[0]
        self.assertEqual(part, table.section(self.stored))

    def test_has_the_picture_of_the_stored_figures(self):
        self.assertEqual(self.picture, chart.picture(self.stored))

    def test_covers_each_job_at_three_widths(self):
        self.assertGreaterEqual(len(self.stored["jobs"]), 24)
        self.assertEqual(len(self.stored["common"]), 9)
        for job in self.stored["jobs"].values():
            self.assertEqual([row["pixels"] for row in job["rows"]], [100, 1000, 10000])


if __name__ == "__main__":
    unittest.main()
