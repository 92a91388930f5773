"""Hotaru the firefly: six pictures in the air, three in a dart, two at rest on a stalk of grass."""

from .canvas import OUTLINE, Picture, around, ellipse, filled, limb, line, moved, round_shaded, text
from .files import palette

BODY = (2, 3, 4, 5)
COLLAR = (6, 7)
WING = (8, 9)  # seen through, the blur and the wing
TAIL = (10, 11, 12, 13, 14)
GLOW = (15, 16)  # seen through, the outer one first
EYE = 17
GRASS = (18, 19, 20)

LETTERS = {
    **dict(zip("ABCD", BODY)), **dict(zip("rR", COLLAR)), **dict(zip("12345", TAIL)),
    "e": EYE, "a": BODY[1],
}

LIT = palette(
    "1c1a30", "2a2844 46406a 6e668e a49cb4", "a03848 e86a58", "c8e8ff58 e4f6ffa0",
    "3c5038 6e8a34 b4cc3c e6f068 fffee0", "d8f05c38 e6f07870", "ffffff", "1e4a48 2f7358 5aa05c",
)
DIM = palette(
    "10122a", "1c2044 30386a 4c5a8e 7e90b4", "503060 84508c", "8cb0e848 acd0f488",
    "24384c 305c70 3c8c94 62c0b8 d4fff0", "54c8c830 78dcd060", "e0f0ff", "122c44 1e4858 306c6c",
)
PALETTES = (LIT, DIM)

# From the side, looking to the right; the digits are the tail from its rim to its middle.
FLYING = """
..........a.
.........a.a
......rRCCa.
....BCrRCDC.
..BBCCrRCeC.
.233CCBrAAC.
23443CBA.A..
24553BA.A...
23443.......
.232........
""".split()

DARTING = """
..............
..........a...
....BCCrR..aa.
.23BCCDrRCCa..
2344CCCrRCDC..
24553BBrRCeC..
.2343BA.AAA...
..232..A......
""".split()

RESTING = """
..........a.
..BBBB...a.a
.BCCDDCrRa..
BBCCCCDrRCC.
23CCCBBrReC.
2344BBA.AA..
.2355A.A....
..22........
""".split()

# How bright the tail is: the place of each of its tones in TAIL, and how far the light reaches.
PULSE = ((-3, 0), (-2, 5), (-1, 6), (0, 7))


def tail(part, level):
    """The tail, dimmed by some tones."""
    shift = PULSE[level][0]
    return {
        place: max(color + shift, TAIL[0]) if color in TAIL else color
        for place, color in part.items()
    }


def wings(poses):
    """Wings as lines of some width from the back; all but the last are seen as a blur."""
    part = {}
    for number, (x, y) in enumerate(poses):
        last = number == len(poses) - 1
        part.update(filled(limb([(0, 0), (x, y)], 1.6), WING[last]))
    return part


def draw(rows, level, poses, back, light, dy=0, behind=None):
    """A picture with the axis in its middle. back is where the wings begin, light the
    middle of the tail, both from the top left of the rows. behind is a part below all."""
    picture = Picture((BODY, COLLAR, TAIL, GRASS))
    left, top = -len(rows[0]) // 2, -len(rows) // 2 + dy
    picture.stamp(tail(text(rows, LETTERS, left, top), level))
    # The tail shines: its outline is no shadow.
    bright = {place for place, color in picture.pixels.items() if color in TAIL}
    for place in around(bright):
        if picture.pixels.get(place) == OUTLINE:
            picture.pixels[place] = TAIL[1 if level > 1 else 0]
    picture.lay(moved(wings(poses), left + back[0], top + back[1]) if poses else {})
    picture.under(behind or {})
    radius = PULSE[level][1]
    if radius:
        x, y = left + light[0], top + light[1]
        disc = filled(ellipse(x, y, radius + 0.4, radius + 0.4), GLOW[0])
        inner = radius * 2 // 3 + 0.4
        disc.update(filled(ellipse(x, y, inner, inner), GLOW[1]))
        picture.under(disc)
    return picture


FAR = {
    "bright": """
..1111..
.123321.
12344321
13455431
13455431
12344321
.123321.
..1111..
""".split(),
    "dim": """
..11..
.1221.
122321
.1221.
..11..
""".split(),
}


def far(name):
    """The light of a firefly too far away to be seen itself."""
    picture = Picture(())
    rows = FAR[name]
    picture.lay(text(rows, LETTERS, -len(rows[0]) // 2, -len(rows) // 2))
    for place, color in picture.pixels.items():
        if color in TAIL[:2]:
            picture.pixels[place] = GLOW[TAIL.index(color)]
    return picture.sprite(0, 0)


HOVER = (  # light, wings, height
    (1, ((-4, -5), (-1, -6)), 0), (2, ((-1, -6), (-5, -2)), -1), (3, ((-5, -2), (-4, -5)), -1),
    (3, ((-4, -5), (-1, -6)), 0), (2, ((-1, -6), (-5, -2)), 1), (1, ((-5, -2), (-4, -5)), 1),
)


def sprites():
    frames = [
        draw(FLYING, level, poses, (5, 3), (2.5, 7.5), dy).sprite(0, i)
        for i, (level, poses, dy) in enumerate(HOVER)
    ]
    for i, poses in enumerate((((-3, -4), (-6, -2)), ((-6, -2), (-5, -4)), ((-5, -4), (-3, -4)))):
        # Sparks stay behind and move away to the left.
        sparks = filled({(-13 - 2 * i, 1), (-14 - i, -2)}, TAIL[3])
        sparks.update(filled({(-17 + i, 0), (-16 - i, 2)}, TAIL[2]))
        sparks.update(filled(line(-18, -1, -12, -1), GLOW[1]))
        frames.append(draw(DARTING, 3, poses, (6, 2), (2.5, 4.5), behind=sparks).sprite(1, i))
    stalk = round_shaded(limb([(-8, 9), (-2, 4.5), (3, 3), (9, 3.5)], 0.9), GRASS, (0.8, -0.6))
    for i, level in enumerate((0, 2)):
        frames.append(draw(RESTING, level, (), (0, 0), (2.5, 5.5), behind=stalk).sprite(2, i))
    return frames
