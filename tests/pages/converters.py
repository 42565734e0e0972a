# SPDX-License-Identifier: Apache-2.0
"""Stand-ins for the steps of a job that do to their worker what no page should.

Each lets a page misbehave on its first `times` attempts, which are counted by files in a folder
that all processes share, and then does the job's own steps.
"""

import ctypes
import os
import signal
import time
from dataclasses import dataclass

from pelkraft.pages.convert import convert_page


@dataclass(frozen=True)
class Misbehaves:
    folder: str
    # Names of the inputs that misbehave.
    names: frozenset
    times: int = 1000
    # For how long each page works, so that several are under way.
    seconds: float = 0.0

    def __call__(self, job, picture):
        name = os.path.basename(job.input)
        attempt = self._count(name)
        time.sleep(self.seconds)
        if name in self.names and attempt <= self.times:
            self.misbehave()
        return convert_page(job, picture)

    def misbehave(self):
        pass

    def _count(self, name):
        attempt = 1
        while True:
            try:
                os.close(os.open(os.path.join(self.folder, f"{name}.{attempt}"),
                                 os.O_CREAT | os.O_EXCL))
                return attempt
            except FileExistsError:
                attempt += 1


class Killed(Misbehaves):
    def misbehave(self):
        os.kill(os.getpid(), signal.SIGKILL)


class Segfaulting(Misbehaves):
    def misbehave(self):
        ctypes.string_at(0)


class Frozen(Misbehaves):
    def misbehave(self):
        os.kill(os.getpid(), signal.SIGSTOP)


class Raising(Misbehaves):
    def misbehave(self):
        raise RuntimeError("out of paper")


def attempts(folder, name):
    return len([entry for entry in os.listdir(folder) if entry.rsplit(".", 1)[0] == name])
