# SPDX-License-Identifier: Apache-2.0
"""python3 -m pelkraft.pages.digest FILE... prints a digest of each file's pixels.

Two files with the same digest have the same width, height, channels, depth, layout and samples,
whatever their tags, strips and compression are.
"""

from __future__ import annotations

import hashlib
import sys
from typing import Optional, Sequence

import numpy

from .errors import PageError
from .picture import Picture, unpack_samples
from .tiff_reader import TiffPage


def pixel_digest(picture: Picture) -> str:
    layout = "planar" if picture.planar else "interleaved"
    form = f"{picture.width} {picture.height} {len(picture.channels)} {picture.bits} {layout}\n"
    digest = hashlib.sha256(form.encode())
    pixels = picture.pixels
    if picture.bits < 8:
        # The unused bits of a plane's last byte may be anything.
        pixels = unpack_samples(pixels, picture.width, picture.bits)
    pixels = pixels.astype(pixels.dtype.newbyteorder("<"), copy=False)
    digest.update(numpy.ascontiguousarray(pixels))
    return digest.hexdigest()


def main(paths: Optional[Sequence[str]] = None) -> int:
    paths = sys.argv[1:] if paths is None else paths
    if not paths:
        print(__doc__, file=sys.stderr)
        return 2
    for path in paths:
        try:
            with TiffPage(path, None) as page:
                print(f"{pixel_digest(page.read()[0])}  {path}")
        except PageError as error:
            print(f"pelkraft.pages.digest: {error}", file=sys.stderr)
            return 3
    return 0


if __name__ == "__main__":
    sys.exit(main())
