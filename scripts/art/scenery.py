"""What is behind the game: sky, moon, hills and the meadow; and the barn."""

import math

from .canvas import OUTLINE, Picture, Sprite, ellipse, filled, line, noise, polygon, text
from .files import palette

WIDTH, HEIGHT = 320, 180

SKY = tuple(range(2, 11))  # from the top down to the horizon
MOON = (11, 12, 13)
STAR = (14, 15)
FAR, MIDDLE, NEAR = (16, 17), (18, 19), (20, 21)  # hills: body and edge
GRASS = (22, 23, 24, 25, 26)
PATH = (27, 28)
FLOWER = (29, 30)
LIGHT = 31

EVENING = palette(
    "141228", "161a42 1d2352 2a2c64 423673 62427e 8c4f80 b9637c de8271 f6ad72",
    "d8c8a8 f4e6c0 fffbe4", "8c88b8 fff4dc", "5a4478 7c5688", "3a3866 545080",
    "232c50 36486a", "142438 1a3440 244a4a 34644e 5a8a54", "4c5058 8c7c68", "e86a5c f8e4b0", "ffc858",
)
NIGHT = palette(
    "080a1e", "080c26 0c1230 101a3e 16244e 1c2e5c 243a6a 2e4878 3a5886 4a6a94",
    "b8c4d8 dce6f0 ffffff", "6c7cac f4f8ff", "1e3056 304a74", "16244a 243a62",
    "101a38 1c2e50", "0a1228 0e1a32 142640 1e3850 345870", "2c3650 56688a", "8c5a8c b8c8e8", "ffc858",
)
DAWN = palette(
    "2a2440", "4c6a9c 5c7eac 7094ba 8caac4 acbec8 ccccc4 e6d4bc f6dab0 fce6bc",
    "dce4e8 eaf0f0 f8fcf8", "8ca8c4 b0c8d8", "94a4b4 b4bec0", "6c8c98 8caca8",
    "4c7474 6c9880", "2c5450 3c6c54 54885a 74a464 a8c878", "8c7c6c c8b490", "d8505c fff0c8", "ffe8a0",
)
PALETTES = (EVENING, NIGHT, DAWN)

# From the moon's middle: places and radii.
CRATERS = ((-6, -4, 3.6), (4, 5, 4.6), (6, -7, 2.4), (-7, 6, 2.2), (-1, 11, 1.6), (11, -1, 1.5))
CONIFERS = (
    (14, 13), (22, 17), (29, 12), (192, 12), (200, 16), (207, 19), (215, 13), (284, 14), (292, 18),
)
BUSHES = ((52, 5), (68, 7), (236, 8), (252, 6), (304, 7))

BAYER = ((0, 8, 2, 10), (12, 4, 14, 6), (3, 11, 1, 9), (15, 7, 13, 5))


def dithered(value, x, y):
    """One of both whole numbers next to a value, in a pattern that mixes them."""
    return math.floor(value + (BAYER[y % 4][x % 4] + 0.5) / 16)


def far_hill(x):
    return 112 - 9 * math.sin(x / 47 + 0.6) - 5 * math.sin(x / 19 + 2) - 1.5 * math.sin(x / 7)


def middle_hill(x):
    return 124 - 10 * math.sin(x / 61 + 3.6) - 4 * math.sin(x / 23)


def near_hill(x):
    return 139 - 8 * math.sin(x / 83 + 1.2) - 2.5 * math.sin(x / 29 + 1)


def meadow(x):
    return 151 - 3 * math.sin(x / 57 + 4.2)


def sky():
    """Bands from the zenith to the horizon, lighter round the moon, with clouds in the glow."""
    part = {}
    moon = (238, 44)
    for y in range(HEIGHT):
        for x in range(WIDTH):
            value = 8.2 * (min(y, 122) / 122) ** 1.25
            value += max(0, 1 - math.hypot(x - moon[0], y - moon[1]) / 56) * 1.6
            part[x, y] = SKY[min(max(dithered(value - 0.5, x, y), 0), 8)]
    for y in range(4, 96):
        for x in range(WIDTH):
            chance = noise(x, y, 7)
            if chance > 0.9972 - 0.001 * y / 96:
                part[x, y] = STAR[chance > 0.9988]
    for x, y in ((38, 22), (124, 34), (180, 15), (86, 58), (296, 82)):
        for dx, dy in ((1, 0), (-1, 0), (0, 1), (0, -1)):
            part[x + dx, y + dy] = STAR[0]
        part[x, y] = STAR[1]
    for cx, cy, rx, ry in (
        (70, 84, 46, 2.4), (98, 80, 26, 2.6), (50, 88, 22, 1.6), (214, 93, 38, 2.2),
        (240, 89, 22, 2.4), (150, 99, 32, 1.6), (292, 76, 30, 2.0), (276, 73, 14, 1.8), (24, 66, 20, 1.5),
    ):
        for x, y in ellipse(cx, cy, rx, ry):
            if 0 <= x < WIDTH:
                level = SKY.index(part[x, y]) if part[x, y] in SKY else 4
                part[x, y] = SKY[min(level + (2 if y < cy else 1), 8)]
    disc = ellipse(*moon, 16.5, 16.5)
    for x, y in disc:
        edge = math.hypot(x + 0.5 - moon[0] - 3, y + 0.5 - moon[1] + 3)
        part[x, y] = MOON[2 if edge < 12.5 else 1 if edge < 17 else 0]
    for cx, cy, r in CRATERS:
        for x, y in ellipse(moon[0] + cx, moon[1] + cy, r, r) & disc:
            part[x, y] = MOON[max(MOON.index(part[x, y]) - 1, 0)]
    return part


def hill(part, height, colors, spread):
    """A hill with an edge in the last light, and mist at its foot."""
    for x in range(WIDTH):
        top = round(height(x))
        for y in range(top, HEIGHT):
            part[x, y] = colors[dithered(min(max((y - top) / spread - 0.4, 0), 0.7), x, y)]
        part[x, top] = colors[1]


def conifer(part, x, y, size, colors):
    for row in range(size):
        half = (row % 4 + 1) * (0.5 + row / size * 0.8)
        for dx in range(-round(half), round(half) + 1):
            part[x + dx, y - size + row] = colors[dx > half * 0.4 and row % 4 > 1]
    part[x, y] = colors[0]


def bush(part, x, y, size, colors):
    for i, (dx, dy, r) in enumerate(((0, 0, 1.0), (-0.9, 0.3, 0.75), (0.9, 0.35, 0.7))):
        for px, py in ellipse(x + dx * size, y - size + dy * size, r * size, r * size):
            lit = (px - x - dx * size) * 0.5 - (py - y + size - dy * size) > r * size * 0.62
            part[px, py] = colors[lit and noise(px, py, i) > 0.25]


def far_mill(part):
    """The mill on its hill, small, with a light in its window."""
    x, y = 121, round(middle_hill(121))
    tower = polygon([(x - 4, y + 2), (x - 2.4, y - 13), (x + 3.4, y - 13), (x + 5, y + 2)])
    part.update(filled(tower, NEAR[0]))
    part.update(filled({p for p in ellipse(x + 0.5, y - 13, 4, 4) if p[1] < y - 12}, NEAR[0]))
    for quarter in range(4):
        angle = math.radians(28 + 90 * quarter)
        c, s = math.cos(angle), math.sin(angle)
        part.update(filled(line(x, y - 14, x + 13 * c, y - 14 + 13 * s), NEAR[0]))
        blade = polygon([(x + 0.5 + a * c - b * s, y - 13.5 + a * s + b * c)
                         for a, b in ((4, 0), (13, 0), (13, 3), (4, 3))])
        part.update(filled(blade, NEAR[0]))
    part.update(filled({(x, y - 5), (x + 1, y - 5), (x, y - 4), (x + 1, y - 4)}, LIGHT))


def ground(part):
    """The meadow with blades of grass and flowers, darker towards the viewer."""
    for x in range(WIDTH):
        top = round(meadow(x))
        for y in range(top, HEIGHT):
            depth = (y - top) / (HEIGHT - top)
            part[x, y] = GRASS[min(max(dithered(2.2 - depth * 2.4, x, y), 0), 3)]
    # Rows of blades from the back to the front; each hides the one behind.
    for row in range(7):
        for x in range(WIDTH):
            if noise(x, row, 3) > 0.45:
                base = round(meadow(x)) + row * 4 + 2
                height = 1 + int(noise(x, row, 4) * (2.2 + row * 0.7))
                tone = max(3 - row * 0.45 + (noise(x, row, 5) - 0.5) * 1.4, 0)
                for i in range(height):
                    if base - i < HEIGHT:
                        part[x, base - i] = GRASS[min(round(tone) + (i == height - 1), 4)]
    for i in range(46):
        x = int(noise(i, 0, 11) * WIDTH)
        y = round(meadow(x)) + 1 + int(noise(i, 1, 11) ** 1.4 * 24)
        color = FLOWER[noise(i, 2, 11) > 0.55]
        part.update(filled({(x, y), (x + 1, y), (x, y - 1)} if y > 164 else {(x, y)}, color))


def path(part):
    """The way home, from the meadow over the near hill to the mill."""
    for y in range(round(near_hill(135)) + 1, 154):
        t = (y - near_hill(135)) / (154 - near_hill(135))
        middle = 132 + 26 * math.sin(t * 2.6) - 8 * t
        half = 1 + 4.5 * t
        for x in range(round(middle - half), round(middle + half) + 1):
            if y >= near_hill(x):
                part[x, y] = PATH[dithered(min(0.25 + 0.5 * t, 0.8), x, y)]


def backdrop():
    part = sky()
    hill(part, far_hill, FAR, 40)
    hill(part, middle_hill, MIDDLE, 50)
    far_mill(part)
    for x, size in CONIFERS:
        conifer(part, x, round(middle_hill(x)) + 2, size, MIDDLE)
    hill(part, near_hill, NEAR, 44)
    path(part)
    for x, size in BUSHES:
        bush(part, x, round(near_hill(x)) + 3, size, NEAR)
    ground(part)
    pixels = bytes(part[x, y] for y in range(HEIGHT) for x in range(WIDTH))
    return Sprite(0, 0, WIDTH, HEIGHT, WIDTH // 2, HEIGHT, pixels)


def sprites():
    return [backdrop()]


WOOD = (2, 3, 4, 5, 6)
ROOF = (7, 8, 9, 10)
TRIM = (11, 12, 13)
STONE = (14, 15, 16)
HAY = (17, 18, 19)
DARK = (20, 21)
WEED = (22, 23)

BARN = palette(
    "1c1730", "42203a 6a2c40 943c44 b85a4c d8845c", "2c2c48 444460 646478 8c8c94",
    "8c7c7c c4b09c f0e0bc", "44405c 6c6878 9c9490", "8c5c30 c8943c f4cc6c", "241a34 35233c",
    "2c5a4c 6c9a58",
)

HATCH = """
.ttttttt.
tTTTTTTTt
tTdddddTt
tTdydydTt
tTyYyYyTt
tTYYYYYTt
tTTTTTTTt
""".split()


def barn():
    """A barn of red boards with a curb roof, stuck doors, and hay behind the hatch."""
    picture = Picture((WOOD, ROOF, TRIM, STONE, HAY))
    front = polygon([(-28, 0), (-28, -34), (-20, -48), (0, -58), (20, -48), (28, -34), (28, 0)])
    boards = {}
    for x, y in front:
        board, inside = divmod(x + 60, 5)
        tone = 1.6 + (x / 28) * 1.1 + (noise(board, 0, 5) - 0.5) * 0.8
        if inside == 0:
            tone -= 1
        elif noise(x, y // 7, 9) > 0.93:
            tone -= 0.8
        boards[x, y] = WOOD[min(max(round(tone), 0), 4)]
    picture.stamp(boards)
    for y in range(-4, 0):
        for x in range(-29, 29):
            stone, along = divmod(x + 60 + y // 2 % 2 * 3, 6)
            tone = 1 + x / 40 + (noise(stone, y // 2) - 0.5) - (along == 0)
            picture.lay({(x, y): STONE[min(max(round(tone), 0), 2)]})
    # The roof is a thick band along the gable, darker on the side without light.
    edge = [(-32, -30), (-22.5, -50), (0, -62), (22.5, -50), (32, -30)]
    inner = [(28, -31), (19.5, -46), (0, -56), (-19.5, -46), (-28, -31)]
    roof = {}
    for x, y in polygon(edge + inner):
        slope = (y * 2 + abs(x)) % 5
        tone = (2 if x > 0 else 1) - (slope == 0) + (noise(x // 3, y // 3) > 0.7)
        roof[x, y] = ROOF[min(max(tone, 0), 3)]
    picture.stamp(roof, shadow=2)
    # Doors with crossed boards.
    door = {(x, y): WOOD[1 + (x > 0)] for x in range(-13, 13) for y in range(-26, 0)}
    for x, y in door:
        if (x + 13) % 4 == 0:
            door[x, y] = WOOD[x > 0]
    picture.stamp(door)
    for left, right in ((-13, -1), (0, 12)):
        frame = line(left, -26, right, -26) | line(left, -1, right, -1) | line(left, -26, left, -1)
        frame |= line(right, -26, right, -1) | line(left, -25, right, -2) | line(left, -2, right, -25)
        frame |= line(left, -24, right - 1, -2) | line(left + 1, -2, right, -24)
        picture.lay(filled({p for p in frame if p in door}, TRIM[2 if left >= 0 else 1]))
    letters = {**dict(zip("tT", TRIM[1:])), "d": DARK[0], "y": HAY[1], "Y": HAY[2]}
    picture.stamp(text(HATCH, letters, -5, -44))
    for x in range(-32, 32):
        height = int(noise(x, 2) * 5)
        if not -12 < x < 12:
            picture.lay({(x, -1 - y): WEED[y >= height - 1] for y in range(height)})
    picture.lay({(x, 0): OUTLINE for x in range(-29, 29)})
    return picture.sprite(0, 0)
