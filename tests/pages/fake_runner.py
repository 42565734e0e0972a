# SPDX-License-Identifier: Apache-2.0
"""A runner whose futures end when and as the test says."""

from concurrent.futures import Future

from pelkraft.pages import Runner, Verdict


class Lost(Exception):
    pass


class Gone(Exception):
    pass


class FakeRunner(Runner):
    """`behaviour` is called whenever the driver has submitted all that it wants to and waits; it
    gets the runner and ends futures of `under_way`, which are in order of their submission."""

    def __init__(self, window, behaviour):
        self.window = window
        self.behaviour = behaviour
        self.under_way = {}
        self.submitted = []
        self.most = 0
        self.stopped = False
        self.unfrozen = []

    def submit(self, function, task, retries):
        future = Future()
        self.under_way[task.number] = (function, task, future)
        self.submitted.append((task.number, frozenset(self.under_way)))
        self.most = max(self.most, len(self.under_way))
        return future

    def check(self):
        self.behaviour(self)

    def verdict(self, future):
        error = future.exception()
        if isinstance(error, Lost):
            return Verdict.WORKER_LOST, "its worker ended"
        if isinstance(error, Gone):
            return Verdict.CLUSTER_LOST, "the scheduler went away"
        return super().verdict(future)

    def unfreeze(self, future, seconds):
        self.unfrozen.append(future)

    def stop(self):
        self.stopped = True

    def make(self, number):
        function, task, future = self.under_way.pop(number)
        future.set_result(function(task))

    def end(self, number, error):
        self.under_way.pop(number)[2].set_exception(error)
