"""python3 -m pelkraft prints the versions that a report of a failure should contain."""

# SPDX-License-Identifier: Apache-2.0
import platform
import sys

import numpy

import pelkraft
from pelkraft import _core


def main() -> None:
    """Print a line for each part that has a version of its own."""
    facts = {
        "pelkraft": pelkraft.__version__,
        "extension": _core.__file__,
        "compiler": _core._compiler,
        "library": _core._library,
        "python": sys.version.split()[0],
        "numpy": numpy.__version__,
        "system": platform.platform(),
    }
    for name, value in facts.items():
        print(f"{name:<10} {value}")


if __name__ == "__main__":
    main()
