"""The brook: water in six pictures that go on to the right, stones, and reeds in the wind."""

import math

from .canvas import Picture, ellipse, filled, limb, noise, round_shaded
from .files import palette

WATER = (2, 3, 4, 5, 6, 7)
STONE = (8, 9, 10, 11, 12)
MOSS = (13, 14, 15)
REED = (16, 17, 18, 19)
CATTAIL = (20, 21, 22)
FOAM = (23, 24)  # seen through, the darker one first
RAMPS = (WATER, STONE, MOSS, REED, CATTAIL)

EVENING = palette(
    "161a30", "1c2c52 24406c 2f5a86 4a82a0 86b8bc f0d8a8", "34304a 504c64 746e80 a0949a d0bea8",
    "2c4c40 4a7a4c 88aa58", "1c3a40 2c5c4c 4c8654 8cb468", "40242c 70402c a86a38",
    "9cc8d080 e4f4f0c0",
)
NIGHT = palette(
    "0a0c22", "101a40 182856 22396e 34568e 5c84b4 c8dcf0", "1c1e3c 2c3052 444a70 687096 9aa4c4",
    "182c40 284a58 446e78", "12243c 1c3c50 306070 5890a0", "241830 40283c 644450",
    "6c94c880 d0e4f8c0",
)
PALETTES = (EVENING, NIGHT)

WIDTH, HEIGHT, FRAMES = 64, 32, 6
STONES = ((0, 18, 9), (1, 13, 7), (2, 24, 11))  # number, width and height


def water(frame):
    """A tile that fits to itself at its sides. Waves are longer and slower near its lower end."""
    picture = Picture(())
    turn = 2 * math.pi
    for y in range(HEIGHT):
        depth = y / HEIGHT
        rows = 0.55 * y + 1.2 * math.sqrt(y)  # crests come closer to each other in the distance
        for x in range(WIDTH):
            across, time = x / WIDTH, frame / FRAMES
            wave = (
                math.sin(turn * (2 * across - time) + rows * 1.9)
                + 0.7 * math.sin(turn * (3 * across - time) - rows * 1.3 + 1)
                + 0.6 * math.sin(turn * (across - time) + rows * 3.1)
            )
            tone = 2.6 - depth * 1.8 + wave * 0.55
            # Glints: where a crest is high and the water is not too near.
            if wave > 1.75 - 0.25 * (1 - depth):
                tone = 5
            elif wave > 1.4:
                tone = 4
            picture.pixels[x, y] = WATER[min(max(round(tone), 0), 5)]
    return picture.sprite(0, frame)


def stone(image, width, height):
    picture = Picture(RAMPS)
    cx, cy = 0.5 * (width % 2), -height / 2 + 1
    shape = {p for p in ellipse(cx, cy, width / 2, height / 2) if p[1] < 0}
    shape |= {(x, y + 1) for x, y in shape if y < -1}
    picture.stamp(round_shaded(shape, STONE, (0.35, -0.95)))
    # A flat top catches the light; moss grows on the side that it does not reach.
    top = min(y for _, y in shape)
    for x, y in shape:
        if y == top and x > cx:
            picture.pixels[x, y] = STONE[4]
        if x < cx - width * 0.1 and y < cy and noise(x, y, image) > 0.35:
            picture.pixels[x, y] = MOSS[2 if y <= top + 1 else 1]
    # The water breaks on it.
    for x in range(round(cx - width / 2) - 2, round(cx + width / 2) + 2):
        if noise(x // 2, image) > 0.3:
            picture.pixels[x, 0] = FOAM[1]
            picture.pixels.setdefault((x + 1, 1), FOAM[0])
    return picture.sprite(1, image)


def reeds(frame):
    """Blades and cattails, moved by the wind like a wave from the left to the right."""
    picture = Picture(RAMPS)
    stalks = ((-9, 15, 0), (-6, 24, 1), (-3, 19, 0), (0, 30, 1), (3, 22, 0), (6, 27, 1), (9, 14, 0))
    for number, (x, height, cattail) in enumerate(stalks):
        wind = math.sin((frame / 4 - number * 0.09) * 2 * math.pi) * 1.6 + 0.8
        lean = x * 0.28
        points = [(x * 0.6 + lean * t + wind * t * t, -height * t) for t in (0, 0.35, 0.7, 1)]
        ramp = REED[:3] if number % 2 else REED[1:]
        picture.stamp(round_shaded(limb(points, 0.85 if cattail else 1.15), ramp, (0.3, -0.9)))
        if cattail:
            tip = points[-1]
            head = limb([(tip[0], tip[1] + 1), (tip[0] - wind * 0.1, tip[1] + 6)], 1.5)
            picture.stamp(round_shaded(head, CATTAIL, (0.8, -0.4)))
            x, y = math.floor(tip[0]), math.floor(tip[1])
            picture.lay(filled({(x, y - 1), (x, y - 2)}, REED[2]))
    return picture.sprite(2, frame)


def grass(frame):
    """A tuft of the meadow."""
    picture = Picture(RAMPS)
    for number, (x, height) in enumerate(((-5, 6), (-3, 10), (-1, 8), (1, 12), (3, 9), (5, 7))):
        wind = math.sin((frame / 4 - number * 0.08) * 2 * math.pi) * 1.1 + 0.5
        points = [(x * (0.6 + 0.5 * t) + wind * t * t, -height * t) for t in (0, 0.5, 1)]
        picture.stamp(round_shaded(limb(points, 0.9), REED[number % 2 : number % 2 + 3], (0.2, -1)))
    return picture.sprite(3, frame)


def sprites():
    return (
        [water(frame) for frame in range(FRAMES)]
        + [stone(*shape) for shape in STONES]
        + [reeds(frame) for frame in range(4)]
        + [grass(frame) for frame in range(4)]
    )
