# SPDX-License-Identifier: Apache-2.0
"""Digests that say whether bytes are still the same.

XXH3 of 128 bits, as `xxhsum -H2` prints it: nobody attacks a stamp, and a cryptographic digest would
take longer than all other work on a page.
"""

from __future__ import annotations

import os
from typing import Iterable, Union

import xxhash

READ_BYTES = 1 << 20


def digest_of(pieces: Iterable[Union[bytes, memoryview]]) -> str:
    digest = xxhash.xxh3_128()
    for piece in pieces:
        digest.update(piece)
    return digest.hexdigest()


def file_digest(path: str) -> str:
    """The digest of a file's bytes, or OSError."""
    digest = xxhash.xxh3_128()
    with open(path, "rb", buffering=0) as file:
        # The copy stays in the processor's cache until it is digested.
        part = memoryview(bytearray(min(READ_BYTES, max(os.fstat(file.fileno()).st_size, 1))))
        while count := file.readinto(part):
            digest.update(part[:count])
    return digest.hexdigest()
