"""Pixels with numbers of colours: parts are drawn as shapes or as text and laid over each other.

A part is a dictionary from a place (x, y) to the number of a colour. Places are counted from the
sprite's axis to the right and downwards, so a figure that stands on the ground has negative y."""

import math

OUTLINE = 1  # the same in every palette; 0 shows nothing


def text(rows, letters, x=0, y=0):
    """A part drawn by hand: a letter for each pixel, "." and " " for none."""
    return {
        (x + column, y + row): letters[letter]
        for row, line in enumerate(rows)
        for column, letter in enumerate(line)
        if letter not in ". "
    }


def moved(part, dx, dy):
    return {(x + dx, y + dy): color for (x, y), color in part.items()}


def ellipse(cx, cy, rx, ry):
    """The places whose middle is inside."""
    return {
        (x, y)
        for y in range(math.floor(cy - ry), math.ceil(cy + ry) + 1)
        for x in range(math.floor(cx - rx), math.ceil(cx + rx) + 1)
        if ((x + 0.5 - cx) / rx) ** 2 + ((y + 0.5 - cy) / ry) ** 2 <= 1
    }


def polygon(points):
    """The places whose middle is inside, by the even-odd rule."""
    places = set()
    edges = list(zip(points, points[1:] + points[:1]))
    top = math.floor(min(y for _, y in points))
    bottom = math.ceil(max(y for _, y in points))
    for y in range(top, bottom + 1):
        middle = y + 0.5
        crossings = sorted(
            x0 + (middle - y0) * (x1 - x0) / (y1 - y0)
            for (x0, y0), (x1, y1) in edges
            if (y0 <= middle) != (y1 <= middle)
        )
        for left, right in zip(crossings[::2], crossings[1::2]):
            places.update((x, y) for x in range(math.ceil(left - 0.5), math.ceil(right - 0.5)))
    return places


def limb(points, radius):
    """A line of some width with round ends and bends."""
    places = set()
    for (x0, y0), (x1, y1) in zip(points, points[1:]):
        length = math.hypot(x1 - x0, y1 - y0) or 1
        for y in range(math.floor(min(y0, y1) - radius), math.ceil(max(y0, y1) + radius) + 1):
            for x in range(math.floor(min(x0, x1) - radius), math.ceil(max(x0, x1) + radius) + 1):
                px, py = x + 0.5 - x0, y + 0.5 - y0
                along = (px * (x1 - x0) + py * (y1 - y0)) / length
                along = min(max(along, 0), length)
                dx = px - along * (x1 - x0) / length
                dy = py - along * (y1 - y0) / length
                if dx * dx + dy * dy <= radius * radius:
                    places.add((x, y))
    return places


def line(x0, y0, x1, y1):
    """The places of a line of one pixel."""
    steps = max(abs(round(x1) - round(x0)), abs(round(y1) - round(y0)), 1)
    return {
        (round(x0 + (x1 - x0) * i / steps), round(y0 + (y1 - y0) * i / steps))
        for i in range(steps + 1)
    }


def bend(start, end, upper, lower, side):
    """The knee or elbow between two ends, for the lengths of both bones. side is 1 or -1."""
    dx, dy = end[0] - start[0], end[1] - start[1]
    reach = min(math.hypot(dx, dy), upper + lower - 0.01) or 0.01
    along = (upper * upper - lower * lower + reach * reach) / (2 * reach)
    out = math.sqrt(max(upper * upper - along * along, 0)) * side
    ux, uy = dx / reach, dy / reach
    return start[0] + ux * along + uy * out, start[1] + uy * along - ux * out


def filled(places, color):
    return {place: color for place in places}


def round_shaded(places, ramp, light=(0.6, -0.7)):
    """A part that looks round: its tones change from one end to the other along the light."""
    along = {(x, y): x * light[0] + y * light[1] for x, y in places}
    low, high = min(along.values()), max(along.values())
    span = (high - low) or 1
    return {
        place: ramp[min(int((value - low) / span * len(ramp)), len(ramp) - 1)]
        for place, value in along.items()
    }


def around(places):
    """The places that touch with a side."""
    ring = {(x + dx, y + dy) for x, y in places for dx, dy in ((1, 0), (-1, 0), (0, 1), (0, -1))}
    return ring - set(places)


def noise(x, y, seed=0):
    """A number from 0 to 1 that only depends on the place."""
    value = (x * 374761393 + y * 668265263 + seed * 2246822519) & 0xFFFFFFFF
    value = ((value ^ (value >> 13)) * 1274126177) & 0xFFFFFFFF
    return ((value ^ (value >> 16)) & 0xFFFF) / 65536


class Picture:
    """A sprite in the making. ramps are the colours of each material, the darkest first."""

    def __init__(self, ramps):
        self.pixels = {}
        self.darker, self.lighter = {}, {}
        for ramp in ramps:
            for dark, light in zip(ramp, ramp[1:]):
                self.darker[light] = dark
                self.lighter[dark] = light

    def lay(self, part):
        """Lays a part over the picture as it is."""
        self.pixels.update(part)

    def under(self, part):
        """Lays a part below everything that is there."""
        self.pixels = {**part, **self.pixels}

    def stamp(self, part, outline=OUTLINE, shadow=1):
        """Lays a part with an outline over the picture. Where something is below, the outline is
        the shadow that the part casts on it, so many tones darker."""
        for place in around(part):
            below = self.pixels.get(place)
            if below is None:
                self.pixels[place] = outline
            else:
                for _ in range(shadow):
                    below = self.darker.get(below, below)
                self.pixels[place] = below
        self.lay(part)

    def shine(self, cx, cy, radius):
        """Makes what is near a light lighter, twice as much in the inner half."""
        for (x, y), color in self.pixels.items():
            distance = math.hypot(x + 0.5 - cx, y + 0.5 - cy)
            for reach in (radius, radius / 2):
                if distance < reach:
                    color = self.lighter.get(color, color)
            self.pixels[x, y] = color

    def sprite(self, group, image, palette=0):
        """The picture, cut to what it shows, with its axis."""
        left = min(x for x, _ in self.pixels)
        top = min(y for _, y in self.pixels)
        width = max(x for x, _ in self.pixels) - left + 1
        height = max(y for _, y in self.pixels) - top + 1
        rows = bytearray(width * height)
        for (x, y), color in self.pixels.items():
            rows[(y - top) * width + x - left] = color
        return Sprite(group, image, width, height, -left, -top, bytes(rows), palette)


class Sprite:
    """An image with its numbers, its axis in pixels from the left and the top, and the number of
    its palette in the file. The bytes of the image are its rows from the top."""

    def __init__(self, group, image, width, height, x, y, pixels, palette=0):
        self.group, self.image = group, image
        self.width, self.height = width, height
        self.x, self.y = x, y
        self.pixels = pixels
        self.palette = palette

    @property
    def name(self):
        return f"{self.group}_{self.image}"
