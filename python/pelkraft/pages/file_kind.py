# SPDX-License-Identifier: Apache-2.0
"""Names a file that is no TIFF file, in the words of the program."""

from __future__ import annotations

from typing import Optional

OURS = (b"II*\0", b"MM\0*", b"II+\0", b"MM\0+")
OTHERS = ((b"\x89PNG", "a PNG file"), (b"\xff\xd8\xff", "a JPEG file"), (b"GIF8", "a GIF file"),
          (b"%PDF", "a PDF file"), (b"%!PS", "a PostScript file"), (b"8BPS", "a file of layers"),
          (b"BM", "a BMP file"), (b"RIFF", "a RIFF file, such as WebP"),
          (b"PK\3\4", "a ZIP archive"), (b"\x1f\x8b", "a gzip archive"),
          (b"DotWeavePattern", "a pattern text"))
WANTED = "; supported are TIFF and BigTIFF"
START_BYTES = 16


def words_of_other(start: bytes) -> Optional[str]:
    """What the first bytes of a file tell, unless they are or may become those of a TIFF file."""
    if not start:
        return "is not a TIFF file, since it is empty" + WANTED
    if any(magic.startswith(start[:4]) for magic in OURS):
        return None
    for magic, name in OTHERS:
        if start.startswith(magic):
            return f"is not a TIFF file but {name}{WANTED}"
    digits = " ".join(f"{byte:02X}" for byte in start[:4])
    return f"is not a TIFF file, since it begins with the bytes {digits} instead of 49 49 or " \
        f"4D 4D{WANTED}"
