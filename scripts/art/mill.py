"""The mill at the brook, with sails and a water wheel: eight pictures of a quarter turn."""

import math

from .canvas import (
    OUTLINE, Picture, ellipse, filled, limb, line, noise, polygon, round_shaded, text,
)
from .files import palette

STONE = (2, 3, 4, 5, 6)
WOOD = (7, 8, 9, 10)
BOARDS = (11, 12, 13, 14)
CANVAS = (15, 16, 17, 18)
ROOF = (19, 20, 21, 22)
WINDOW = (23, 24, 25)
BELL = (26, 27)
WATER = (28, 29)
GRASS = (30, 31)
RAMPS = (STONE, WOOD, BOARDS, CANVAS, ROOF, WINDOW, BELL, WATER)

EVENING = palette(
    "1c1730", "3a3150 5a4c66 7c6a7c a48c8c d0b49c", "3a2232 5e3640 8a5848 b98560",
    "28344e 3a5066 567a84 8cac9c", "86646c b8927e e2c49c fbe9c4", "4a1f38 7a2f44 a8484c d27a5c",
    "b8582c f4a83c ffec9c", "a86a2c f0c860", "4a80a0 b4e0e0", "2c5a4c 6c9a58",
)
NIGHT = palette(
    "0c0e24", "1c2142 2c3458 434c72 64709a 94a2c4", "1c1832 2e2848 484064 6c6488",
    "161e3c 22305a 344878 5470a0", "444a74 646c98 929cc0 c8d0e4", "241638 3c2250 5a3668 82548c",
    "b0602c ffb848 fff0ac", "6c5840 b89c68", "284c7c 7cacd4", "1a3a50 34647a",
)
PALETTES = (EVENING, NIGHT)

HUB = (0.5, -74.5)
WHEEL = (-27.5, -14.5)
TOP = -78   # where the tower ends under its cap
FLOOR = -30  # the gallery between stones and boards

LETTERS = {
    **dict(zip("wWxX", WOOD)), **dict(zip("oyY", WINDOW)), **dict(zip("bB", BELL)),
    **dict(zip("rR", ROOF[1:3])), "k": OUTLINE, "s": STONE[4],
}

DOOR = """
...sssssss...
..sskkkkkss..
.sskwWWxWkss.
.skwwWWxWxks.
.skwwWWxWxks.
.skwwWWxWxks.
.skwkkkkkxks.
.skwwWWxWxks.
.skwwWWxBxks.
.skwwWWxWxks.
.skwkkkkkxks.
.skwwWWxWxks.
.skwwWWxWxks.
""".split()

PANE = """
.wxxxxx.
wkkkkkkx
wkyYkYyx
wkyYkYYx
wkkkkkkx
wkoykyYx
wkoykyyx
wwwwxxxx
""".split()

LATTICE = """
.kkk.
kyYyk
kykyk
kyyyk
kkkkk
""".split()

BELLCOTE = """
....r....
..rrRRR..
rrrRRRRRR
...kBk...
..bBBBk..
..bBBBk..
.bbBBBBk.
....k....
""".split()


def half_width(y):
    """Half the width of the tower."""
    return 13 + (y - TOP) * 9 / -TOP


def tower():
    part = {}
    for y in range(TOP, 0):
        half = half_width(y)
        first, last = round(-half), round(half)
        for x in range(first, last):
            u = (x + 0.5) / half
            tone = 2.1 + u * 1.6
            if y >= FLOOR:
                # Courses of stones, each a little lighter or darker than the next.
                course, inside = divmod(-y, 5)
                stone, along = divmod(x + course % 2 * 4 + 64, 8)
                joint = inside == 0 or along == 0
                tone += (noise(stone, course) - 0.5) * 1.6 - (1.1 if joint else 0)
                part[x, y] = STONE[min(max(round(tone), 0), 4)]
            else:
                row, inside = divmod(-y, 4)
                board = divmod(x + row % 2 * 3 + 60, 6)
                tone = 1.4 + u * 1.5 - (0.8 if inside == 0 or board[1] == 0 else 0)
                part[x, y] = BOARDS[min(max(round(tone), 0), 3)]
    return part


def cap():
    """The cap of shingles, with a knob."""
    part = {}
    for x, y in ellipse(0, TOP + 1, 15.4, 13.4):
        if y < TOP + 2:
            u = x / 15
            row, inside = divmod(y - TOP, 3)
            gap = inside == 0 or inside == 1 and (x + row % 2 * 2) % 4 == 0
            tone = 1.3 + u * 1.5 - (0.9 if gap else 0)
            part[x, y] = ROOF[min(max(round(tone), 0), 3)]
    return part


def gallery(picture):
    """A floor of planks round the tower, with a railing."""
    half = round(half_width(FLOOR)) + 6
    for x in (-15, 14):
        strut = limb([(x, FLOOR + 9), (x + math.copysign(5, x), FLOOR + 2)], 0.9)
        picture.stamp(round_shaded(strut, WOOD[:2]))
    picture.stamp({(x, y): WOOD[1 + (y == FLOOR) + (x > 4)]
                   for x in range(-half, half) for y in (FLOOR, FLOOR + 1)})
    rail = {(x, FLOOR - 6): WOOD[2 + (x > 4)] for x in range(-half, half)}
    for x in range(-half, half, 5):
        rail.update({(x, y): WOOD[1 + (x > 4)] for y in range(FLOOR - 6, FLOOR)})
    picture.lay(rail)


def wheel(turn):
    """The water wheel round its middle; turn is in degrees."""
    cx, cy = WHEEL
    picture = Picture(RAMPS)
    for i in range(8):
        angle = math.radians(turn + i * 45)
        c, s = math.cos(angle), math.sin(angle)

        def place(along, across):
            return cx + along * c - across * s, cy + along * s + across * c

        picture.stamp(filled(limb([place(2, 0), place(13, 0)], 0.8), WOOD[1]))
        # A paddle is a board across the rims.
        board = polygon([place(9, -1.5), place(18, -2.6), place(18, 2.6), place(9, 1.5)])
        picture.stamp(filled(board, WOOD[2 if s > 0.1 else 3]))
    for outer, inner in ((15.4, 13.4), (10, 8.4)):
        rim = ellipse(cx, cy, outer, outer) - ellipse(cx, cy, inner, inner)
        picture.stamp(round_shaded(rim, WOOD[1:], (0.4, -0.9)))
    picture.stamp(round_shaded(ellipse(cx, cy, 2.6, 2.6), WOOD[1:], (0.4, -0.9)))
    return picture.pixels


def stream(frame):
    """The water that the wheel dips into, with foam and drops."""
    cx, part = int(WHEEL[0]), {}
    for x in range(cx - 21, cx + 20):
        for y in range(1, 5):
            edge = abs(x + 0.5 - cx) > 21 - y * y / 4
            wave = math.sin((x / 10 + y * 0.37 + frame / 8) * 2 * math.pi)
            if not edge:
                part[x, y] = WATER[wave > (0.3 if y == 1 else 0.8)]
    for i in range(4):
        t = (frame / 8 + i / 4) % 1
        part[cx - 15 - round(4 * t) - i % 2, -round(14 * t * (1 - t) * 2)] = WATER[1]
    return part


def grass(picture):
    """Blades at the foot of the wall."""
    for x in range(-10, 22):
        if not -3 <= x <= 10:
            height = int(noise(x, 1) * 4.5)
            picture.lay({(x, -1 - y): GRASS[y >= height - 1] for y in range(height)})


def sail(picture, angle):
    """One sail: a spar with a frame of laths, covered with canvas."""
    c, s = math.cos(angle), math.sin(angle)

    def place(along, across):
        return HUB[0] + along * c - across * s, HUB[1] + along * s + across * c

    # Turned to the light at the upper right, the canvas is brighter.
    bright = -s * 0.55 + c * 0.45 > 0
    cover = polygon([place(9, 1), place(36, 1), place(36, 9), place(9, 8)])
    picture.stamp(filled(cover, CANVAS[3 if bright else 2]))
    laths = set()
    for along in range(9, 37, 5):
        laths |= line(*place(along, 1), *place(along, 8.4))
    for across in (4.6, 8.4):
        laths |= line(*place(9, across), *place(36, across))
    picture.lay(filled(laths & cover, CANVAS[1 if bright else 0]))
    picture.stamp(round_shaded(limb([place(0, 0), place(36.5, 0)], 1.1), WOOD[1:3]))


def mill(frame):
    picture = Picture(RAMPS)
    picture.stamp(tower())
    picture.stamp(cap())
    picture.stamp(text(["xX", "xX"], LETTERS, -1, TOP - 15))
    # The eaves throw a shadow on the boards.
    for x in range(-13, 13):
        for y in (TOP + 3, TOP + 4):
            if (x, y) in picture.pixels:
                picture.pixels[x, y] = BOARDS[0 if x < 2 else 1]
    gallery(picture)
    grass(picture)
    picture.lay(text(DOOR, LETTERS, -1, -13))
    picture.stamp(text(BELLCOTE, LETTERS, 1, -25))
    picture.lay(text(PANE, LETTERS, -4, FLOOR - 18))
    picture.lay(text(LATTICE, LETTERS, -13, -23))
    picture.stamp(round_shaded(limb([(-14, WHEEL[1]), WHEEL], 1.5), WOOD[:3]))
    picture.lay(wheel(-frame * 45 / 8))
    picture.lay(stream(frame))
    for quarter in range(4):
        sail(picture, math.radians(frame * 90 / 8 + quarter * 90 + 12))
    picture.stamp(round_shaded(ellipse(*HUB, 3.2, 3.2), WOOD[1:], (0.5, -0.8)))
    return picture


def wheel_alone():
    """The wheel on its axis, so that frames can turn it."""
    picture = Picture(RAMPS)
    dx, dy = -int(WHEEL[0] - 0.5) , -int(WHEEL[1] - 0.5)
    picture.lay({(x + dx, y + dy): color for (x, y), color in wheel(0).items()})
    return picture


def sprites():
    return [mill(frame).sprite(0, frame) for frame in range(8)] + [wheel_alone().sprite(1, 0)]
