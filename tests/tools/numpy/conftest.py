# SPDX-License-Identifier: Apache-2.0
"""The program on files of tifffile, whose samples NumPy counts by itself."""

import json
import os
import subprocess

import pytest


class Outcome:
    def __init__(self, finished):
        self.code = finished.returncode
        self.bytes = finished.stdout
        self.output = finished.stdout.decode("utf-8", "surrogateescape")
        self.errors = finished.stderr.decode("utf-8", "surrogateescape")

    @property
    def json(self):
        return json.loads(self.output)


@pytest.fixture
def run(tmp_path):
    """A function that runs the program in a folder of the test's own."""
    def run_tool(*arguments, stdin=None):
        command = [os.environ["PELKRAFT_TOOL"], *map(str, arguments)]
        return Outcome(subprocess.run(command, capture_output=True, cwd=tmp_path, check=False,
                                      input=stdin))
    return run_tool


@pytest.fixture
def succeed(run):
    """Runs the program, which must end well and have nothing to say on the error stream."""
    def run_well(*arguments, stdin=None):
        outcome = run(*arguments, stdin=stdin)
        assert (outcome.code, outcome.errors) == (0, "")
        return outcome
    return run_well


@pytest.fixture
def refuse(run):
    """Runs the program, which must refuse by one line that holds all of these words."""
    def run_badly(code, words, *arguments):
        outcome = run(*arguments)
        assert outcome.code == code, outcome.errors
        assert outcome.errors.startswith("pelkraft: ")
        assert outcome.errors.count("\n") == 1 and outcome.errors.endswith("\n"), outcome.errors
        for word in words:
            assert word in outcome.errors
        return outcome
    return run_badly
