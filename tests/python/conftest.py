"""Settings for all tests of the package."""

import hypothesis

# The same examples in each run, kept in no folder.
hypothesis.settings.register_profile("pelkraft", derandomize=True, database=None, deadline=None)
hypothesis.settings.load_profile("pelkraft")
