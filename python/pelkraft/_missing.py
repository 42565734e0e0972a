"""Says in a sentence which module this Python lacks."""

# SPDX-License-Identifier: Apache-2.0
import sys

PACKAGES = {
    "numpy": "python3-numpy",
    "tifffile": "python3-tifffile",
    "xxhash": "python3-xxhash",
}
USAGE = 2


def explain(error: ModuleNotFoundError) -> ModuleNotFoundError:
    """The error in words for people; ends the program where it is run by python3 -m."""
    name = error.name or ""
    if name in PACKAGES:
        words = (
            f"this Python, {sys.executable}, has no module {name}; Debian's package "
            f"{PACKAGES[name]} gives it to /usr/bin/python3, and pip to any other"
        )
    elif name == "pelkraft._core":
        words = f"this package is built for another Python than {sys.executable}"
    else:
        return error
    # Python says so while it looks for the module that -m names; nobody could catch an error.
    if sys.argv[:1] == ["-m"]:
        print(f"pelkraft: {words}", file=sys.stderr)
        sys.exit(USAGE)
    return ModuleNotFoundError(words, name=name)
