# SPDX-License-Identifier: Apache-2.0
"""Files that appear whole or not at all."""

from __future__ import annotations

import os
import re
import secrets
from contextlib import contextmanager
from typing import BinaryIO, Iterable, Iterator, Sequence

from .errors import WRITE, PageError
from .file_digest import digest_of, file_digest
from .tiff_writer import Piece

# A worker that was killed leaves a file of such a name.
LEFTOVER = re.compile(r"\.(.+)\.[0-9a-f]{12}\.part", re.DOTALL)


@contextmanager
def new_file(path: str, pieces: Sequence[Piece]) -> Iterator[str]:
    """Writes a file beside its place, forces it to the disk and compares it with what was meant.
    The context has the digest of its bytes; at its end the file takes its place."""
    temporary = _temporary_name(path)
    try:
        with open(temporary, "xb", buffering=0) as file:
            for piece in pieces:
                _write_all(file, piece)
            os.fsync(file.fileno())
        digest = digest_of(pieces)
        if file_digest(temporary) != digest:
            raise PageError(WRITE, f"{path}: reads back otherwise than it was written")
        yield digest
        os.replace(temporary, path)
        _sync_folder(path)
    except OSError as error:
        raise PageError(WRITE, f"{path}: cannot be written: {making_words(error, path)}") from error
    finally:
        _remove(temporary)


def making_words(error: OSError, path: str) -> str:
    """Says why a file could not be made: its folder may be missing."""
    folder = os.path.dirname(path)
    if isinstance(error, FileNotFoundError) and folder and not os.path.exists(folder):
        return f"there is no folder {folder}; make it first"
    return str(error.strerror)


def write_note(path: str, text: bytes) -> None:
    """Writes a small file that may be lost with the power, but is torn by nothing less."""
    temporary = _temporary_name(path)
    try:
        with open(temporary, "xb", buffering=0) as file:
            _write_all(file, text)
        os.replace(temporary, path)
    finally:
        _remove(temporary)


def remove_leftovers(paths: Iterable[str]) -> int:
    """Removes what killed workers have left beside these files. Answers how many there were."""
    wanted: dict[str, set[str]] = {}
    for path in paths:
        folder, name = os.path.split(path)
        wanted.setdefault(folder or ".", set()).add(name)
    count = 0
    for folder, names in wanted.items():
        try:
            with os.scandir(folder) as entries:
                found = [entry.path for entry in entries
                         if (match := LEFTOVER.fullmatch(entry.name)) and match[1] in names]
        except OSError:
            continue
        for leftover in found:
            count += _remove(leftover)
    return count


def _temporary_name(path: str) -> str:
    folder, name = os.path.split(path)
    return os.path.join(folder, f".{name}.{secrets.token_hex(6)}.part")


def _sync_folder(path: str) -> None:
    folder = os.open(os.path.dirname(path) or ".", os.O_RDONLY | os.O_DIRECTORY)
    try:
        os.fsync(folder)
    finally:
        os.close(folder)


def _write_all(file: BinaryIO, piece: Piece) -> None:
    view = memoryview(piece)
    done = 0
    while done < len(view):
        done += file.write(view[done:])


def _remove(path: str) -> bool:
    try:
        os.unlink(path)
        return True
    except OSError:
        return False
