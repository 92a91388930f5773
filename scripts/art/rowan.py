"""Rowan, who walks home with a lantern: a coat with a hood, a scarf, and a light in the hand."""

import math

from .canvas import (
    OUTLINE, Picture, bend, ellipse, filled, limb, moved, round_shaded, text,
)
from .files import palette

# Colours by their numbers: each material from its darkest tone to the one in the lantern's light.
COAT = (2, 3, 4, 5, 6)
SCARF = (7, 8, 9, 10)
SKIN = (11, 12, 13)
HAIR = (14, 15, 16)
BOOTS = (17, 18, 19, 20)
TRIM = (21, 22, 23)
METAL = (24, 25)
FLAME = (26, 27, 28)
GLOW = (29, 30)  # seen through, the outer one first
BLUSH = 31
RAMPS = (COAT, SCARF, SKIN, HAIR, BOOTS, TRIM, METAL)

LETTERS = {
    **dict(zip("ABCDE", COAT)), **dict(zip("rRQq", SCARF)), **dict(zip("STU", SKIN)),
    **dict(zip("hHI", HAIR)), **dict(zip("bvVw", BOOTS)), **dict(zip("kKL", TRIM)),
    **dict(zip("nN", METAL)), **dict(zip("OYW", FLAME)), "e": OUTLINE, "p": BLUSH,
}



EVENING = palette(
    "1b1a33", "1d4450 24645f 368a70 62b184 c3d58a", "6f1d3a a82c3e d8453f f58a55",
    "b5654f e59a72 ffd3a0", "5a2a2c 8c4330 c86f3a", "2e2438 4a3648 70504f b58257",
    "8b7a78 cdb89b fff0c4", "3a3240 8f7a63", "e8792a ffd04f fffbe0", "ffb04430 ffc45466 f09470",
)
NIGHT = palette(
    "0c0e24", "1b2352 28357a 3c4f9c 6c7dc0 d0b58c", "4a1a4c 74285e a03c68 e88a62",
    "7d4a5c b87870 ffcf9c", "33203c 54304a a86440", "1a1a38 2b2a4c 444468 a07a5c",
    "4d5788 8a98c4 ffeec0", "262440 7d6f68", "e8792a ffd04f fffbe0", "ffb04430 ffc45466 d88078",
)
RAIN = palette(
    "22242e", "8a5a1c bb8424 e6b034 f9d45c fff0a0", "1f3a5c 2f5f8a 4a8fb8 9ccbc8",
    "a5604e d8956f ffd0a0", "3c2c2c 5f4136 a0683c", "23323a 35505a 527a80 a8a878",
    "9c6c20 d09a34 ffe890", "34323a 857a6c", "e8792a ffd04f fffbe0", "ffb04430 ffc45466 f09470",
)
WINTER = palette(
    "2a1c34", "5c1f3c 8c2c40 bc4444 dd6e5a ffb878", "3a5a6c 5c8c94 94c4b8 e4f0c8",
    "b0685c e0a080 ffdcb4", "46302c 704c34 b88444", "3a2c34 5a4444 846458 c0986c",
    "a8a4b8 dcdce4 fffbe4", "383040 948470", "e8792a ffd04f fffbe0", "ffb04430 ffc45466 f09470",
)
PALETTES = (EVENING, NIGHT, RAIN, WINTER)

HEAD = """
.....CCDDDD....
...BCCDDDDDDD..
..BCCCDDDDDDDD.
.BBCCCCDDDDDKKK
.BBCCCCCKKKKKKK
BBCCCCKKKhHHHHI
BBCCCKKhHHHHHHI
BBCCCKhHHhHTHUU
BBCCCKhHTUeUUeU
ABBCCKhTTUeUUeU
ABBCCKKTUpUUUUp
.ABBCCKSTTUUUU.
.AABBCKKSSTTT..
..AABBBKKKK....
...AAABB.......
""".split()

# From the front: the hood is round the face on both sides.
FRONT = """
.....CDDDD.....
...BCCDDDDDD...
..BCCCDDDDDDD..
.BBCCKKKKKDDDE.
.BCCKKhHHIKKDD.
BBCKKhHHHHIKDDE
BBCKhHHhHHIHKDE
BBCKhHTHUHTHKDE
BBCKhUeUUUeHKDE
ABCKTUeUUUeUKDD
ABBKKpUUUUUpKDD
.ABBKSTUUUTKCD.
.AABKKSTTTKKCC.
..AABBKKKKBCC..
...AABBBBBBC...
""".split()

# Half turned: the eyes look to the side.
ASIDE = [row.replace("UeUUUeH", "UUeUUUe") for row in FRONT]
ASIDE[9] = ASIDE[9].replace("TUeUUUeU", "TUUeUUUe")

TIP = """
...BBB
.BBBCC
BBBBCC
BABB..
AA....
""".split()

LANTERN = """
..nNn..
.n...n.
..nNn..
.nNNNn.
nNnnnNn
nOYYYOn
nYYWWYn
nYWWWYn
nOYYYOn
nNnnnNn
.nnNnn.
""".split()

# The heel on the ground with the toe up, flat, and pushing off with the toe.
BOOT_HEEL = """
.VV...
.VVV.V
bvVVVw
bbvVw.
.bb...
""".split()
BOOT_FLAT = """
.VVV..
.vVV..
bvVVVw
bbvvVV
""".split()
BOOT_TOE = """
bVV...
bvVV..
bbvVV.
.bbvVw
...bvV
""".split()

# The same figure on the far side of the meadow.
SMALL = """
....CCDD....
...BCDDDDD..
..BCCDKKKK..
.ABCCKHHHI..
.A.BCKHeUe..
...BCKTUUU..
...rRRQQQ...
.rRrBCCDD...
.r.BBCCDDnN.
...BBCCDn.n.
...BBCCDnYn.
..BBBCCDnWn.
..kkKKKLnnn.
""".split()
SMALL_FEET = {
    "idle": ["....bv.bv...", "....bbvbbv.."],
    "walk-1": ["...bb...bv..", "..bbv....bv."],
    "walk-2": ["....bvbv....", "...b.bbv...."],
}

EYES = ((9, 8), (13, 8))  # their places in HEAD


class Pose:
    """Where the parts of a frame are. Feet are (x, height, drawing)."""

    near, far = (-2, 0, BOOT_FLAT), (3, 0, BOOT_FLAT)
    body = 0       # how far hips and coat are lowered
    head = 0       # how far the head is lowered
    lean = 0       # how far the shoulders are ahead of the hips
    sway = 0       # how far the hem is ahead of the hips
    hand = (3, -11)      # the free hand
    light = (11, -17)    # the hand with the lantern
    swing = 0      # how far the lantern swings ahead of its hand
    scarf = 0.0    # where the waves of the scarf are, a whole for each wave
    wind = 0       # how far the scarf is lifted
    blink = False
    view = HEAD
    glow = 9       # how far the light reaches, in pixels

    def __init__(self, **values):
        for name, value in values.items():
            setattr(self, name, value)


def boot(foot):
    x, height, rows = foot
    return text(rows, LETTERS, x - 3, -len(rows) - height)


def leg(picture, pose, foot, ramp):
    x, height, _ = foot
    hip = (0.5 + (x > 0), -11 + pose.body)
    ankle = (x - 0.5, -4.5 - height)
    knee = bend(hip, ankle, 4.2, 4.2, -1)
    picture.stamp(round_shaded(limb([hip, knee, ankle], 1.9), ramp))
    picture.stamp(boot(foot))


def coat(pose):
    """A bell from the shoulders to the hem, in the light of the lantern from the right."""
    top, bottom = -22 + pose.body, -8 + pose.body
    part = {}
    for y in range(top, bottom):
        t = (y + 0.5 - top) / (bottom - top)
        middle = pose.lean * (1 - t) + pose.sway * t
        first, last = round(middle - 3.6 - 4.2 * t**1.3), round(middle + 4.6 + 3.0 * t**1.1)
        for x in range(first, last):
            u = (x + 0.5 - first) / (last - first)
            tone = 1 if u < 0.22 else 2 if u < 0.62 else 3
            part[x, y] = COAT[tone]
        seam = round(first + (last - first) * 0.64)
        part[seam, y] = COAT[1]
        # Folds that open towards the hem.
        if t > 0.45:
            part[round(first + (last - first) * 0.34), y] = COAT[1]
        if t > 0.8:
            part[round(first + (last - first) * 0.12), y] = COAT[0]
        if y in (top + 5, top + 9):
            part[seam + 1, y] = TRIM[1]
        if y == bottom - 1:
            for x in range(first, last):
                u = (x + 0.5 - first) / (last - first)
                part[x, y] = TRIM[0 if u < 0.4 else 1]
    return part


def scarf_tail(pose):
    """The end of the scarf, which waves behind the back."""
    start = (-3.5 + pose.lean, -20.5 + pose.body)
    points = []
    for i in range(6):
        wave = math.sin((pose.scarf - i * 0.16) * 2 * math.pi) * 0.28 * i
        points.append((start[0] - i * 1.75, start[1] + i * (1.15 - pose.wind * 0.35) + wave))
    part = round_shaded(limb(points, 1.5), SCARF[:3], (0.5, -0.8))
    # Fringes: the last pixels are dark.
    left = min(x for x, _ in part)
    for place in part:
        if place[0] <= left + 1:
            part[place] = SCARF[0]
    return part


def scarf_ring(pose):
    x, y = pose.lean, -22 + pose.body
    return text(["rRRRQQQQQ.", "rRRRRQQQQQ", ".rrRRRRQQ."], LETTERS, x - 4, y)


def sleeve(picture, shoulder, hand, ramp):
    elbow = bend(shoulder, hand, 5, 5, 1)
    wrist = (hand[0] + (elbow[0] - hand[0]) * 0.3, hand[1] + (elbow[1] - hand[1]) * 0.3)
    picture.stamp(round_shaded(limb([shoulder, elbow, wrist], 2.05), ramp, (0.7, -0.5)), shadow=2)


def mitten(picture, hand):
    places = ellipse(hand[0] + 0.3, hand[1] + 0.4, 2.2, 2.2)
    picture.stamp(round_shaded(places, BOOTS[1:4], (0.7, -0.5)))


def glow(x, y, radius):
    """Two discs of light. The half pixels keep single ones from standing out at their ends."""
    part = filled(ellipse(x, y, radius + 0.4, radius + 0.4), GLOW[0])
    inner = radius * 2 // 3 + 0.4
    part.update(filled(ellipse(x, y, inner, inner), GLOW[1]))
    return part


def draw(pose):
    picture = Picture(RAMPS)
    shoulders = (pose.lean, -18.5 + pose.body)
    head = (pose.lean - 7, -35 + pose.body + pose.head)
    hand = (pose.hand[0] + pose.lean, pose.hand[1] + pose.body)
    light = (pose.light[0] + 0.5, pose.light[1] + 0.5 + pose.body)
    lantern = (pose.light[0] + pose.swing, pose.light[1] + pose.body)
    middle = (lantern[0] + 0.5, lantern[1] + 8.5)
    picture.stamp(scarf_tail(pose))
    # The far arm carries the lantern, so that it hangs ahead of the coat.
    sleeve(picture, (shoulders[0] + 2.5, shoulders[1]), light, COAT[1:4])
    leg(picture, pose, pose.far, BOOTS[:2])
    leg(picture, pose, pose.near, BOOTS[:3])
    picture.stamp(coat(pose))
    tip = (-4, 1) if pose.view is HEAD else (-2, 0)
    picture.stamp(text(TIP, LETTERS, head[0] + tip[0], head[1] + tip[1] + pose.head))
    picture.stamp(text(pose.view, LETTERS, *head))
    if pose.blink:
        closed = {(x, y): SKIN[2] for x, y in EYES}
        closed.update({(x, y + 1): OUTLINE for x, y in EYES})
        picture.lay(moved(closed, *head))
    picture.stamp(scarf_ring(pose))
    sleeve(picture, (shoulders[0] - 1.5, shoulders[1]), hand, COAT[1:4])
    mitten(picture, hand)
    picture.shine(*middle, 9.5)
    picture.stamp(text(LANTERN, LETTERS, lantern[0] - 3, lantern[1]))
    mitten(picture, light)
    picture.under(glow(*middle, pose.glow))
    return picture


# One foot through a whole cycle: contact, down, passing, up, then pushed off and swung ahead.
STEPS = (
    (6, 0, BOOT_HEEL), (5, 0, BOOT_FLAT), (1, 0, BOOT_FLAT), (-3, 0, BOOT_FLAT),
    (-6, 0, BOOT_TOE), (-6, 2, BOOT_TOE), (-1, 3, BOOT_FLAT), (4, 2, BOOT_HEEL),
)
BOBBING = (0, 1, 0, -1)
ARM = ((-6, -13), (-5, -12), (-2, -11), (2, -11), (5, -12), (4, -12), (1, -11), (-3, -12))


def small(name):
    """Rowan far away, drawn by hand."""
    picture = Picture(RAMPS)
    picture.stamp(text(SMALL + SMALL_FEET[name], LETTERS, -6, -15))
    return picture.sprite(0, 0)


def sprites():
    # Breathing: head and lantern sink a little. The last one blinks.
    low = {"head": 1, "light": (11, -16)}
    standing = [
        Pose(hand=(-4, -11)), Pose(hand=(-4, -11), scarf=0.25, glow=10),
        Pose(hand=(-4, -10), scarf=0.5, **low), Pose(hand=(-4, -10), scarf=0.75, glow=8, **low),
        Pose(hand=(-4, -10), scarf=0.75, glow=8, blink=True, **low),
    ]
    frames = [draw(pose).sprite(0, i) for i, pose in enumerate(standing)]
    for i in range(8):
        pose = Pose(
            near=STEPS[i], far=STEPS[(i + 4) % 8], body=BOBBING[i % 4], lean=1,
            sway=(0, -1, -1, 0)[i % 4], hand=ARM[i], head=(0, 0, 1, 0)[i % 4],
            swing=(0, 1, 1, 0, 0, -1, -1, 0)[i], scarf=i / 4, wind=2, glow=9 + i % 2,
        )
        frames.append(draw(pose).sprite(1, i))
    # The last one is the second half of swaying.
    for i, light in enumerate(((13, -20), (14, -26), (13, -31), (13, -31))):
        pose = Pose(
            hand=(-4, -11), light=light, head=-(i > 0), scarf=i / 4, glow=10 + i, swing=i // 3,
        )
        frames.append(draw(pose).sprite(2, i))
    for i in range(2):
        pose = Pose(
            view=(ASIDE, FRONT)[i], near=(-3 + i, 0, BOOT_FLAT), far=(3, 0, BOOT_FLAT),
            hand=(-6, -11), light=(9 - i, -16), scarf=0.5,
        )
        frames.append(draw(pose).sprite(3, i))
    return frames
