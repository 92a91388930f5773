"""A picture of all sprites, to look at: a scene, and each sprite on a dark and on a light ground."""

import struct
import zlib

from .files import png_chunk

DARK, LIGHT = (24, 30, 66), (214, 226, 232)
GAP = 4


class Sheet:
    """True-colour pixels, rows from the top."""

    def __init__(self, width, height, ground=DARK):
        self.width, self.height = width, height
        self.rows = [[ground] * width for _ in range(height)]

    def draw(self, sprite, palette, x, y):
        """Lays a sprite over the picture with its axis at a place."""
        for index, color in enumerate(sprite.pixels):
            row, column = divmod(index, sprite.width)
            px, py = x - sprite.x + column, y - sprite.y + row
            *tone, opacity = palette[color * 4 : color * 4 + 4]
            if opacity and 0 <= px < self.width and 0 <= py < self.height:
                below = self.rows[py][px]
                self.rows[py][px] = tuple(
                    (new * opacity + old * (255 - opacity)) // 255 for new, old in zip(tone, below)
                )

    def png(self, scale):
        size = (self.width * scale, self.height * scale)
        rows = b"".join(
            (b"\0" + b"".join(bytes(color) * scale for color in row)) * scale for row in self.rows
        )
        return b"".join(
            (
                b"\x89PNG\r\n\x1a\n",
                png_chunk(b"IHDR", struct.pack(">IIBBBBB", *size, 8, 2, 0, 0, 0)),
                png_chunk(b"IDAT", zlib.compress(rows)),
                png_chunk(b"IEND", b""),
            )
        )


def stacked(sheets):
    """Sheets below each other; the widest gives the width."""
    whole = Sheet(max(s.width for s in sheets), sum(s.height for s in sheets))
    whole.rows = [row + [DARK] * (whole.width - len(row)) for s in sheets for row in s.rows]
    return whole


def strip(sprites, palette, ground, width):
    """Sprites beside each other, on as many lines as they need, standing on a common ground."""
    lines = [[]]
    for sprite in sprites:
        if lines[-1] and sum(s.width + GAP for s in lines[-1]) + sprite.width + 2 * GAP > width:
            lines.append([])
        lines[-1].append(sprite)
    sheets = []
    for sprites_of_line in lines:
        above = max(s.y for s in sprites_of_line)
        below = max(s.height - s.y for s in sprites_of_line)
        sheet = Sheet(width, above + below + GAP, ground)
        x = GAP
        for sprite in sprites_of_line:
            sheet.draw(sprite, palette, x + sprite.x, above + GAP // 2)
            x += sprite.width + GAP
        sheets.append(sheet)
    return stacked(sheets)
