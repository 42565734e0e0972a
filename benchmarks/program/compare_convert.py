# SPDX-License-Identifier: Apache-2.0
"""Times pelkraft convert beside other programs that copy TIFF files.

    compare_convert.py PELKRAFT [FOLDER [MEGABYTES]]

makes a picture of CMYK in the folder, or in that for temporary files, and prints a table in Markdown
for each job: the wall clock and the processor time of each program, the median of seven runs. Runs
take turns, so that other work on the machine meets all alike. pelkraft stores its file before it
appears; after the others, which don't, `sync` does it within the same times.
"""

import os
import pathlib
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

import numpy
import tifffile

ROUNDS = 7
ROWS_OF_STRIP = 8


def make_picture(path, megabytes, **form):
    """Smooth tones with some noise."""
    side = round((megabytes * 1e6 / 4) ** 0.5) // 16 * 16
    random = numpy.random.default_rng(3)
    ramp = numpy.linspace(0, 220, side, dtype=numpy.uint8)[None, :, None]
    picture = ramp + random.integers(0, 30, (side, side, 4), numpy.uint8)
    tifffile.imwrite(path, picture, photometric="separated", metadata=None, **form)


def commands(pelkraft, source, target, planar, compression):
    """The same job in the words of each program that knows it."""
    layout = "planar" if planar else "interleaved"
    ours = [pelkraft, "convert", source, target, "--layout", layout, "--compress", compression]
    programs = {"pelkraft": ours,
                "tiffcp": ["tiffcp", "-s", "-r", str(ROWS_OF_STRIP), "-c", compression,
                           "-p", "separate" if planar else "contig", source, target]}
    if not planar:
        scheme = {"zip": "deflate"}.get(compression, compression)
        programs["libvips"] = ["vips", "tiffsave", source, target, "--compression", scheme]
    gm_scheme = {"none": "None", "lzw": "LZW", "zip": "Zip"}[compression]
    programs["GraphicsMagick"] = ["gm", "convert", source, "-compress", gm_scheme, "-interlace",
                                  "Plane" if planar else "None", target]
    return {name: command for name, command in programs.items() if shutil.which(command[0])}


def time_run(name, command, target):
    """Seconds of wall clock and of the processor; none if the program can't do it."""
    pathlib.Path(target).unlink(missing_ok=True)
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    start = time.monotonic()
    done = subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
    if done.returncode != 0:
        return None
    if name != "pelkraft":
        subprocess.run(["sync", target], check=True)
    wall = time.monotonic() - start
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return wall, sum(after[:2]) - sum(before[:2])


def compare(title, programs, target):
    runs = {name: [] for name in programs}
    for _ in range(ROUNDS):
        for name, command in programs.items():
            runs[name].append(time_run(name, command, target))
    print(f"\n{title}\n\n| program | wall, s | processor, s |\n|---|---|---|")
    for name, times in runs.items():
        if None in times:
            continue
        wall, processor = (statistics.median(column) for column in zip(*times))
        print(f"| {name} | {wall:.2f} | {processor:.2f} |", flush=True)


def main():
    pelkraft = sys.argv[1]
    megabytes = float(sys.argv[3]) if len(sys.argv) > 3 else 300
    with tempfile.TemporaryDirectory(dir=sys.argv[2] if len(sys.argv) > 2 else None) as name:
        folder = pathlib.Path(name)
        strips, tiles = str(folder / "strips.tif"), str(folder / "tiles.tif")
        make_picture(strips, megabytes, rowsperstrip=ROWS_OF_STRIP)
        make_picture(tiles, megabytes, tile=(256, 256))
        target = str(folder / "out.tif")
        jobs = [("strips to strips", strips, False, "none"),
                ("strips to planes", strips, True, "none"),
                ("tiles to strips", tiles, False, "none")]
        for scheme in ("lzw", "zip"):
            packed = str(folder / f"{scheme}.tif")
            subprocess.run(["tiffcp", "-c", scheme, strips, packed], check=True)
            jobs += [(f"{scheme} to {scheme}", packed, False, scheme),
                     (f"{scheme} to planes of {scheme}", packed, True, scheme)]
        os.sync()
        for title, source, planar, compression in jobs:
            compare(title, commands(pelkraft, source, target, planar, compression), target)


if __name__ == "__main__":
    main()
