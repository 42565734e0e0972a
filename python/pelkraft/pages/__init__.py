# SPDX-License-Identifier: Apache-2.0
"""Pages of TIFF files through plans and patterns, on one machine or on a cluster.

    from pelkraft.pages import Conversion, PageJob, ProcessRunner, run_pages

    jobs = [PageJob("in/1.tif", "out/1.tif", (Conversion(layout="planar"),))]
    with ProcessRunner(2) as runner:
        for result in run_pages(jobs, runner):
            print(result.status, result.job.output)

A page job reads one page, takes it through its steps and writes one file, which appears whole or
not at all. A stamp beside the file holds digests of input, job and output, so that a rerun keeps
what is done. `python3 -m pelkraft.pages --help` tells the same for the command line.
"""

from .._missing import explain as _explain

try:
    from .driver import check_jobs, run_pages
    from .errors import ClusterLost, JobError, PageError
    from .job_list import jobs_for_files, read_job_list
    from .jobs import Conversion, PageJob, Simulation
    from .picture import Channel, Picture, Tags
    from .runners import ProcessRunner, Runner, SerialRunner, Verdict
    from .task import PageResult
except ModuleNotFoundError as _lack:
    raise _explain(_lack) from None

__all__ = [
    "Channel", "ClusterLost", "Conversion", "JobError", "PageError", "PageJob",
    "PageResult", "Picture", "ProcessRunner", "Runner", "SerialRunner", "Simulation", "Tags",
    "Verdict", "check_jobs", "jobs_for_files", "read_job_list", "run_pages",
]
