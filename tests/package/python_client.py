"""Runs on the installed package: splits rows, simulates them, and reads a saved plan again."""

import sys

import numpy as np

import pelkraft

rows = np.random.default_rng(1).integers(0, 256, (20, 1000, 4), np.uint8)
plan = pelkraft.Plan(pelkraft.Format(1000, 4, 8), pelkraft.Format(1000, 4, 8, planar=True))
assert (plan(rows) == rows.transpose(0, 2, 1)).all()
assert pelkraft.Plan.load(plan.save()) == plan
pattern = pelkraft.Pattern.from_file(sys.argv[1])
dither = pelkraft.Dither([pelkraft.Tones(inks) for inks in pattern.step_inks()])
inks = pattern(dither(rows))
assert inks.shape == (20, 1000, len(pattern.out_inks)) and inks.any()
try:
    plan(rows[:, :999])
except pelkraft.PelkraftError as error:
    assert error.field == "rows"
else:
    raise AssertionError("nothing was refused")
print("the package for Python", pelkraft.__version__, "works")
