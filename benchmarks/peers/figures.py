"""Figures of bench_peers: read from its reports, stored, and compared with those of later runs."""

import json
import statistics
from collections import defaultdict

OURS, PLAN, PLAIN, MEMCPY = "pelkraft", "pelkraft_plan", "plain_loop", "memcpy"
LARGEST_LOSS = 0.15
NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


class Report:
    """One or several runs: for each job, width and entry the times, rule and bytes of a row."""

    def __init__(self, texts):
        self.times = defaultdict(list)
        self.rules = {}
        self.row_bytes = {}
        for text in texts:
            content = json.loads(text)
            self.context = content["context"]
            for row in content["benchmarks"]:
                if row["run_type"] == "iteration":
                    self._add(row)

    def _add(self, row):
        job, width, entry = row["name"].split("/")[:3]
        key = job, int(width), entry
        self.times[key].append(row["cpu_time"] * NANOSECONDS[row["time_unit"]])
        self.rules[key] = row.get("label", "")
        self.row_bytes[job, int(width)] = int(row["row_bytes"])

    def time(self, job, width, entry):
        """The median, or nothing where the entry wasn't measured."""
        times = self.times.get((job, width, entry))
        return statistics.median(times) if times else None

    def share_of_memcpy(self, job, width):
        ours, copy = self.time(job, width, OURS), self.time(job, width, MEMCPY)
        return copy / ours if ours and copy else None

    def fastest_peer(self, job, width):
        """Time and name of the fastest that is neither ours nor a loop, or nothing."""
        entries = [key[2] for key in self.times if key[:2] == (job, width)]
        peers = [e for e in entries if e not in (OURS, PLAN, PLAIN, MEMCPY)]
        return min(((self.time(job, width, e), e) for e in peers), default=(None, None))


def figures_of_row(report, job, width):
    ours = report.time(job, width, OURS)
    planned = report.time(job, width, PLAN)
    peer_time, peer = report.fastest_peer(job, width)
    return {
        "pixels": width,
        "row_bytes": report.row_bytes[job, width],
        "ours": round(ours, 1),
        "planned": round(planned, 1) if planned else None,
        "peer": peer,
        "peer_rule": report.rules.get((job, width, peer), ""),
        "peer_time": round(peer_time, 1) if peer else None,
        "plain": round(report.time(job, width, PLAIN), 1),
        "memcpy": round(report.time(job, width, MEMCPY), 1),
        "times_as_fast_as_peer": round(peer_time / ours, 3) if peer else None,
        "share_of_memcpy": round(report.share_of_memcpy(job, width), 4),
    }


def figures_to_store(report, command):
    context = report.context
    jobs = {}
    for job in context["jobs"].split():
        widths = sorted(width for name, width in report.row_bytes if name == job)
        rows = [figures_of_row(report, job, width) for width in widths]
        jobs[job] = {"title": context[f"title of {job}"], "rows": rows}
    return {
        "date": context["date"][:10],
        "command": command,
        "processor": context["processor"],
        "compiler": context["compiler"],
        "peers": context["peers"],
        "common": context["common jobs"].split(),
        "jobs": jobs,
    }


def text_to_store(stored):
    """JSON with a line for each row, so that a change shows as one."""
    head = {name: value for name, value in stored.items() if name != "jobs"}
    lines = [f" {json.dumps(name)}: {json.dumps(value)}," for name, value in head.items()]
    jobs = []
    for name, job in stored["jobs"].items():
        rows = ",\n".join("   " + json.dumps(row) for row in job["rows"])
        title = json.dumps(job["title"])
        jobs.append(f'  {json.dumps(name)}: {{"title": {title}, "rows": [\n{rows}\n  ]}}')
    return "{\n" + "\n".join(lines) + '\n "jobs": {\n' + ",\n".join(jobs) + "\n }\n}\n"


def find_losses(stored, reports):
    """What the common jobs have lost in all reports, and what a report lacks, in words."""
    losses = []
    for job in stored["common"]:
        for row in stored["jobs"][job]["rows"]:
            width, before = row["pixels"], row["share_of_memcpy"]
            shares = [report.share_of_memcpy(job, width) for report in reports]
            if None in shares:
                losses.append(f"{job}, {width} pixels: not measured")
            elif all(share < before * (1 - LARGEST_LOSS) for share in shares):
                after = ", ".join(f"{share:.3f}" for share in shares)
                losses.append(
                    f"{job}, {width} pixels: {before:.3f} of memcpy's speed before, now {after}"
                )
    return losses
