"""The dither sample by sample, from its formulas and without the package but for the mask."""

import numpy as np

WORD = 1 << 32


def step_of(sample, inks, no_ink, full_ink, channel, x, y, mask):
    """The step of a sample at a place of the page."""
    whole = abs(full_ink - no_ink)
    amount = sample - no_ink if full_ink > no_ink else no_ink - sample
    amount = min(max(amount, 0), whole)
    step = max(s for s, ink in enumerate(inks) if ink * whole <= amount * inks[-1])
    if step == len(inks) - 1:
        return step
    above = amount * inks[-1] - inks[step] * whole
    distance = (inks[step + 1] - inks[step]) * whole
    places = (2 * 65536 * above + distance - 1) // (2 * distance)
    right = channel * 0xC13FA9A9 % WORD >> 24
    down = channel * 0x91E10DA6 % WORD >> 24
    return step + (int(mask[(y + down) & 255, (x + right) & 255]) < places)


def dither(rows, tones, mask, x=0, y=0):
    """The steps of rows of pixels; tones are (inks, no_ink, full_ink) by channel."""
    steps = np.zeros(rows.shape, np.uint8)
    for row, column, channel in np.ndindex(rows.shape):
        steps[row, column, channel] = step_of(int(rows[row, column, channel]), *tones[channel],
                                              channel, x + column, y + row, mask)
    return steps
