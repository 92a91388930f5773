"""Writes indexed PNG files and the container of sprites that docs/lantern.md tells.
Everything is written the same way each time."""

import struct
import zlib

from .lz5 import packed

VERSION = 1
PREFERRED = 1  # every image has the encoding that Vela would give it
RAW, LZ5 = 0, 4
PALETTE_SIZE = 256 * 4


def palette(*materials):
    """The 256 colours of a palette, each red, green, blue and opacity, from texts with colours
    RRGGBB or RRGGBBAA. The first colour behind the one that shows nothing is the outline; what is
    left over shows nothing either."""
    table = bytearray(4)
    for name in " ".join(materials).split():
        value = bytes.fromhex(name)
        table += value if len(value) == 4 else value + b"\xff"
    return bytes(table.ljust(PALETTE_SIZE, b"\0"))


def png_chunk(kind, data):
    crc = zlib.crc32(kind + data)
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", crc)


def png(sprite, table):
    """An image with the colours that it needs; those that are not solid stand in tRNS."""
    count = max(sprite.pixels) + 1
    entries = [table[i * 4 : i * 4 + 4] for i in range(count)]
    opacity = bytes(entry[3] for entry in entries)
    rows = b"".join(
        b"\0" + sprite.pixels[y * sprite.width : (y + 1) * sprite.width] for y in range(sprite.height)
    )

    return b"".join(
        (
            b"\x89PNG\r\n\x1a\n",
            png_chunk(b"IHDR", struct.pack(">IIBBBBB", sprite.width, sprite.height, 8, 3, 0, 0, 0)),
            png_chunk(b"PLTE", b"".join(entry[:3] for entry in entries)),
            png_chunk(b"tRNS", opacity.rstrip(b"\xff")),
            # Not packed: what is packed differs from one zlib to another.
            png_chunk(b"IDAT", zlib.compress(rows, 0)),
            png_chunk(b"IEND", b""),
        )
    )


def checksum(data):
    return zlib.crc32(data) ^ 0xFFFFFFFF


class Streams:
    """The streams of a container; equal ones are kept once, in the order of their first use."""

    def __init__(self):
        self.numbers = {}
        self.rows = []  # all but the offset: size, checksum, encoding, width, height, bits a pixel
        self.data = []

    def add(self, plain, stored, *what):
        if plain not in self.numbers:
            self.numbers[plain] = len(self.data)
            self.rows.append((len(stored), checksum(plain), *what))
            self.data.append(stored)
        return self.numbers[plain]

    def add_palette(self, table):
        return self.add(table, table, RAW, 0, 0, 0)

    def add_image(self, sprite):
        """Packed, unless that makes it no smaller."""
        head = struct.pack("<HHHH", sprite.width, sprite.height, 8, 0)
        plain, stored = head + sprite.pixels, head + packed(sprite.pixels)
        smaller = len(stored) < len(plain)
        return self.add(
            plain, stored if smaller else plain, LZ5 if smaller else RAW, sprite.width, sprite.height, 8
        )

    def table(self, offset):
        """The rows of the table, for streams that begin at an offset."""
        result = b""
        for row in self.rows:
            result += struct.pack("<QIIHHHH", offset, *row)
            offset += row[0]
        return result


def container(palettes, sprites):
    """The bytes of a .sprites file, equal to those that Vela writes of the same content. Palettes
    are tables of palette(), numbered 0_0, 0_1 and so on."""
    streams = Streams()
    palette_table = b"".join(
        struct.pack("<iiI", 0, number, streams.add_palette(table))
        for number, table in enumerate(palettes)
    )
    sprite_table = b"".join(
        struct.pack("<iiii", sprite.group, sprite.image, sprite.x, sprite.y)
        + struct.pack("<II", sprite.palette, streams.add_image(sprite))
        for sprite in sprites
    )
    counts = (len(streams.data), len(palettes), len(sprites))
    head = struct.pack("<4sHHIII", b"LSPR", VERSION, PREFERRED, *counts)
    rest = palette_table + sprite_table
    offset = len(head) + 24 * len(streams.data) + len(rest) + 4
    tables = head + streams.table(offset) + rest
    return tables + struct.pack("<I", checksum(tables)) + b"".join(streams.data)
