# SPDX-License-Identifier: Apache-2.0
"""The exceptions of page jobs, and the kinds of failed pages."""

# The kinds of failed pages, as a report names them.
INPUT = "input"
PATTERN = "pattern"
UNSUPPORTED = "unsupported"
READ = "read"
WRITE = "write"
MEMORY = "memory"
LOST = "lost"
ERROR = "error"


class JobError(ValueError):
    """A job, a list of jobs or an option says something that cannot be done."""


class PageError(Exception):
    """A page cannot be made. `kind` is one of the words above."""

    def __init__(self, kind: str, message: str) -> None:
        super().__init__(kind, message)
        self.kind = kind
        self.message = message

    def __str__(self) -> str:
        return self.message


class ClusterLost(RuntimeError):
    """The cluster could not be reached, or went away with pages that are not done."""
