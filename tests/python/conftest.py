"""Settings for all tests of the package."""

import pathlib

import hypothesis
import pytest

SOURCES = pathlib.Path(__file__).parents[2]

# The same examples in each run, kept in no folder.
hypothesis.settings.register_profile("pelkraft", derandomize=True, database=None, deadline=None)
hypothesis.settings.load_profile("pelkraft")


@pytest.fixture
def header():
    """The text of the C interface."""
    return (SOURCES / "include/pelkraft/plan.h").read_text()


@pytest.fixture
def examples():
    """The folder of the example patterns."""
    return SOURCES / "examples/patterns"
