# SPDX-License-Identifier: Apache-2.0
"""LZW for a tifffile that lacks it, by Pillow, whose decoder is the one of libtiff."""

from __future__ import annotations

import io
import struct

# No code stands for more bytes, and none has less than nine bits.
LARGEST_EXPANSION = 4096
HEADER = struct.Struct("<2sHI")
SHORT, LONG = 3, 4


def is_there() -> bool:
    try:
        import PIL.TiffImagePlugin  # noqa: F401
    except ImportError:
        return False
    return True


def decompress(data: bytes, rows: int, width: int) -> bytes:
    """Bytes of a strip or tile; fewer than rows of that width where the data are damaged."""
    from PIL.TiffImagePlugin import TiffImageFile

    if rows * width > len(data) * LARGEST_EXPANSION:
        return b""
    try:
        with TiffImageFile(io.BytesIO(_gray_picture(data, rows, width))) as picture:
            return bytes(picture.tobytes())
    except OSError:
        return b""


def _gray_picture(data: bytes, rows: int, width: int) -> bytes:
    """A file of one strip, in which each byte is a pixel."""
    entries = ((256, LONG, width), (257, LONG, rows), (258, SHORT, 8), (259, SHORT, 5),
               (262, SHORT, 1), (273, LONG, HEADER.size), (277, SHORT, 1), (278, LONG, rows),
               (279, LONG, len(data)))
    strip = data + bytes(len(data) % 2)
    directory = b"".join(struct.pack("<HHII", tag, kind, 1, value) for tag, kind, value in entries)
    return HEADER.pack(b"II", 42, HEADER.size + len(strip)) + strip + \
        struct.pack("<H", len(entries)) + directory + bytes(4)
