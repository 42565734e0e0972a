"""Draws the spectrum of a mask: ranks of 16 bits from the standard input stream, an SVG to standard
output. For each frequency in cycles a pixel it shows the mean power of all directions, and the
highest, as multiples of the mean power of all frequencies."""
import sys

import numpy

SIDE = 256
WIDTH, HEIGHT = 640, 320
LEFT, TOP, RIGHT, BOTTOM = 64, 16, 16, 48
LOWEST, HIGHEST = -60, 20  # decibels
LAST = 0.7  # cycles a pixel


def place(frequency, power):
    decibels = numpy.clip(10 * numpy.log10(power), LOWEST, HIGHEST)
    x = LEFT + frequency / LAST * (WIDTH - LEFT - RIGHT)
    y = TOP + (HIGHEST - decibels) / (HIGHEST - LOWEST) * (HEIGHT - TOP - BOTTOM)
    return f"{x:.1f},{y:.1f}"


def main():
    ranks = numpy.frombuffer(sys.stdin.buffer.read(), "<u2").reshape(SIDE, SIDE).astype(float)
    power = numpy.abs(numpy.fft.fft2(ranks - ranks.mean())) ** 2
    power /= power.mean()
    frequency = numpy.fft.fftfreq(SIDE)
    rings = numpy.rint(numpy.hypot(*numpy.meshgrid(frequency, frequency)) * SIDE).astype(int)
    lines = {"mean": [], "highest": []}
    for ring in range(2, int(LAST * SIDE) + 1):
        here = power[rings == ring]
        lines["mean"].append(place(ring / SIDE, here.mean()))
        lines["highest"].append(place(ring / SIDE, here.max()))
    print(f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" '
          'font-family="sans-serif" font-size="12">')
    print(f'<rect width="{WIDTH}" height="{HEIGHT}" fill="white"/>')
    for decibels in range(LOWEST, HIGHEST + 1, 20):
        y = place(0, 10 ** (decibels / 10)).split(",")[1]
        print(f'<path d="M{LEFT},{y}H{WIDTH - RIGHT}" stroke="#ddd"/>')
        print(f'<text x="{LEFT - 8}" y="{y}" dy="4" text-anchor="end">{decibels} dB</text>')
    for tenth in range(0, 8):
        x = place(tenth / 10, 1).split(",")[0]
        print(f'<text x="{x}" y="{HEIGHT - 28}" text-anchor="middle">0.{tenth}</text>')
    print(f'<text x="{WIDTH / 2}" y="{HEIGHT - 10}" text-anchor="middle">cycles a pixel</text>')
    for name, colour in (("highest", "#e2007a"), ("mean", "#009ee0")):
        print(f'<polyline points="{" ".join(lines[name])}" fill="none" stroke="{colour}" '
              'stroke-width="1.5"/>')
        y = HEIGHT - BOTTOM - (32 if name == "highest" else 14)
        print(f'<text x="{WIDTH - 150}" y="{y}" fill="{colour}">{name} of a ring</text>')
    print("</svg>")


main()
