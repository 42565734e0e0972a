"""The common jobs as bars: ours, the fastest peer and memcpy."""

from xml.sax.saxutils import escape

PIXELS = 10000
JOBS = 8
BARS = (
    ("ours", "Pelkraft", "#2563a8"),
    ("peer_time", "fastest peer", "#d97a1e"),
    ("memcpy", "memcpy of as many bytes", "#9aa5b1"),
)
WIDTH, LEFT, RIGHT, TOP = 900, 220, 70, 100
BAR, GROUP = 13, 52


def text(x, y, words, size=12, anchor="start"):
    return (
        f'<text x="{x:.0f}" y="{y:.0f}" font-size="{size}" text-anchor="{anchor}">'
        f"{escape(words)}</text>\n"
    )


def rectangle(x, y, width, height, colour):
    return f'<rect x="{x:.0f}" y="{y}" width="{width:.1f}" height="{height}" fill="{colour}"/>\n'


def speed(row, name):
    """Bytes read and written in a nanosecond, which are gigabytes in a second."""
    return row["row_bytes"] / row[name] if row[name] else None


def step_of_axis(largest):
    """The smallest of 1, 2 and 5 times a power of ten that makes eight steps at most."""
    power = 1
    while True:
        for step in (power, 2 * power, 5 * power):
            if largest <= 8 * step:
                return step
        power *= 10


def axis(largest, scale, bottom):
    drawn = ""
    step = step_of_axis(largest)
    for value in range(0, int(largest) + 1, step):
        x = LEFT + value * scale
        drawn += (
            f'<line x1="{x:.0f}" y1="{TOP - 8}" x2="{x:.0f}" y2="{bottom}" stroke="#d8dde3"/>\n'
        )
        drawn += text(x, bottom + 16, str(value), anchor="middle")
    middle = (LEFT + WIDTH - RIGHT) / 2
    return drawn + text(middle, bottom + 36, "gigabytes read and written per second", 12, "middle")


def group(title, row, top, scale):
    drawn = text(LEFT - 10, top + 1.5 * BAR + 4, title, 13, "end")
    for place, (name, _, colour) in enumerate(BARS):
        y = top + place * BAR
        value = speed(row, name)
        if value is None:
            drawn += text(LEFT + 4, y + BAR - 3, "no peer does this", 10)
            continue
        drawn += rectangle(LEFT, y, value * scale, BAR - 1, colour)
        drawn += text(LEFT + value * scale + 4, y + BAR - 3, f"{value:.0f}", 10)
    return drawn


def legend():
    drawn, x = "", LEFT
    for _, words, colour in BARS:
        drawn += rectangle(x, 64, 12, 12, colour) + text(x + 18, 74, words)
        x += 60 + 8 * len(words)
    return drawn


def picture(stored):
    """A card with a ground of its own, to be read on light and on dark pages alike."""
    rows = []
    for name in stored["common"][:JOBS]:
        job = stored["jobs"][name]
        rows.append((job["title"], next(r for r in job["rows"] if r["pixels"] == PIXELS)))
    largest = max(speed(row, name) or 0 for _, row in rows for name, _, _ in BARS)
    scale = (WIDTH - LEFT - RIGHT) / largest
    bottom = TOP + GROUP * len(rows)
    height = bottom + 50
    drawn = (
        '<?xml version="1.0" encoding="UTF-8"?>\n'
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{height}" '
        f'viewBox="0 0 {WIDTH} {height}" font-family="sans-serif" fill="#1c2733">\n'
        '<rect width="100%" height="100%" rx="8" fill="#ffffff"/>\n'
    )
    title = f"Eight common jobs on rows of {PIXELS} pixels: longer bars are faster"
    machine = f"{stored['processor']}, {stored['compiler']}, {stored['date']}"
    drawn += text(24, 30, title, 17) + text(24, 50, machine) + legend()
    drawn += axis(largest, scale, bottom)
    for place, (words, row) in enumerate(rows):
        drawn += group(words, row, TOP + place * GROUP, scale)
    return drawn + "</svg>\n"
