# SPDX-License-Identifier: Apache-2.0
"""A sample of what scripts/evidence/pages.sh does with ten thousand pages."""

import pytest
from many_pages import try_many


@pytest.mark.parametrize("kind", ["processes", "dask"])
def test_each_page_is_made_once_though_workers_are_killed(kind):
    if kind == "dask":
        pytest.importorskip("distributed")
    wrong, kills, _ = try_many(300, 50, kind)
    assert wrong == []
    assert kills == 5
