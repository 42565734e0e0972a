"""A program as users write it, which mypy --strict must accept, and which runs."""

import numpy as np
from numpy.typing import NDArray

import pelkraft


def split(picture: NDArray[np.uint8]) -> NDArray[np.uint8]:
    """The planes of an interleaved picture."""
    _, width, channels = picture.shape
    source = pelkraft.Format(width, channels, 8)
    target = pelkraft.Format(width, channels, 8, planar=True)
    plan = pelkraft.Plan(source, target, map=[0, None, pelkraft.Constant(3)], samples="tones")
    planes: NDArray[np.uint8] = plan(picture)
    return planes


def dithered(picture: NDArray[np.uint8], pattern: pelkraft.Pattern) -> NDArray[np.uint8]:
    """The steps of a picture's tones."""
    tones = [pelkraft.Tones(inks, full_ink=255) for inks in pattern.step_inks("coverage")]
    return pelkraft.Dither(tones, mask=pelkraft.dither_mask())(picture, x=3)


def describe(error: pelkraft.PelkraftError) -> str:
    """A failure in one line."""
    return f"{error.status.name} {error.field} {error.given} {error.needed}"


def main() -> None:
    """Runs all of it."""
    planes = split(np.zeros((2, 5, 3), np.uint8))
    print(planes.shape, planes[0, 2, 0])
    form = pelkraft.Format(1, 1, 8)
    plan = pelkraft.Plan.load(pelkraft.Plan(form, form).save())
    entries: tuple[int | pelkraft.Constant | None, ...] | None = plan.map
    print(entries, plan.needs.in_place, {plan: plan.samples})
    pattern = pelkraft.Pattern(
        "DotWeavePattern VERSION 2 BEGIN_OUT_INKS Black END_OUT_INKS "
        "BEGIN_IN_COLORS Black END_IN_COLORS BEGIN_IN_COLOR Black BEGIN_INKS Black END_INKS "
        "BEGIN_VALUES 1 1 0-255 END_VALUES END_IN_COLOR"
    )
    assert dithered(np.full((2, 2, 1), pattern.full_ink, np.uint8), pattern).min() == 1
    try:
        pelkraft.Pattern("", engine="sse")
    except pelkraft.PelkraftError as error:
        print(describe(error))


if __name__ == "__main__":
    main()
