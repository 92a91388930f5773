#!/usr/bin/env python3
"""Draws the pictures of examples/meadow and writes them to where they belong.

Usage: make_art.py [--check] [--sheet FILE] [--png FOLDER]
--check   writes nothing; tells which files are not what would be written
--sheet   writes a picture of all sprites at four times their size, to look at
--png     writes each sprite as FOLDER/PROJECT/GROUP_IMAGE.png with its first palette, and a list
          axes.txt with a line "GROUP_IMAGE X Y" for each"""

import argparse
import itertools
import pathlib
import sys

sys.dont_write_bytecode = True  # the check leaves nothing beside the modules

import meadow
from art import brook, files, hotaru, mill, rowan, scenery
from art.sheet import DARK, LIGHT, Sheet, stacked, strip

# The files of sprites, each with all palettes and sprites of a module.
CONTAINERS = {
    "rowan/rowan.sprites": rowan,
    "hotaru/hotaru.sprites": hotaru,
    "mill/bilder/mühle.sprites": mill,
    "brook/art/brook.sprites": brook,
    "meadow.sprites": scenery,
}


def images():
    """The images with a file of their own: path, sprite and palette."""
    for name in rowan.SMALL_FEET:
        yield f"rowan/sprites/{name}.png", rowan.small(name), rowan.EVENING
    yield "hotaru/絵/明るい.png", hotaru.far("bright"), hotaru.LIT
    yield "hotaru/絵/暗い.png", hotaru.far("dim"), hotaru.LIT
    yield "mill/bilder/Mühle.png", mill.mill(0).sprite(0, 0), mill.EVENING
    yield "mill/bilder/rad.png", mill.wheel_alone().sprite(0, 0), mill.EVENING
    yield "brook/art/water.png", brook.water(0), brook.EVENING
    yield "brook/art/stone.png", brook.stone(*brook.STONES[0]), brook.EVENING
    yield "barn/barn.png", scenery.barn(), scenery.BARN


def contents(drawn):
    """The bytes of every file by its path below the meadow. drawn has the sprites by path."""
    result = {
        path: files.container(CONTAINERS[path].PALETTES, sprites) for path, sprites in drawn.items()
    }
    result.update((path, files.png(sprite, palette)) for path, sprite, palette in images())
    return result


def scene(palette, drawn):
    """The meadow as a player may see it, in the palette of that number."""
    def laid(path, group, image, x, y):
        module = CONTAINERS[path]
        (sprite,) = (s for s in drawn[path] if (s.group, s.image) == (group, image))
        sheet.draw(sprite, module.PALETTES[palette], x, y)

    sheet = Sheet(scenery.WIDTH, scenery.HEIGHT)
    laid("meadow.sprites", 0, 0, scenery.WIDTH // 2, scenery.HEIGHT)
    laid("mill/bilder/mühle.sprites", 0, 3, 62, 160)
    if palette == 0:  # the barn has no other palette
        sheet.draw(scenery.barn(), scenery.BARN, 284, 156)
    for image, x in enumerate((12, 104, 196, 240)):
        laid("brook/art/brook.sprites", 3, image, x, 166 + image)
    laid("brook/art/brook.sprites", 2, 1, 308, 172)
    laid("rowan/rowan.sprites", 1, 0, 150, 172)
    for image, x, y in ((3, 206, 118), (0, 226, 146), (2, 116, 132)):
        laid("hotaru/hotaru.sprites", 0, image, x, y)
    return sheet


def sheet(drawn):
    parts = [scene(0, drawn), scene(1, drawn)]
    for path, module in CONTAINERS.items():
        for number, palette in enumerate(module.PALETTES):
            ground = LIGHT if number % 2 else DARK
            parts.append(strip(drawn[path], palette, ground, scenery.WIDTH + 8))
    for table, singles in itertools.groupby(images(), lambda image: image[2]):
        parts.append(strip([sprite for _, sprite, _ in singles], table, DARK, scenery.WIDTH + 8))
    return stacked(parts).png(4)


def write_pngs(folder, drawn):
    for path, sprites in drawn.items():
        target = folder / pathlib.PurePath(path).stem
        target.mkdir(parents=True, exist_ok=True)
        for sprite in sprites:
            data = files.png(sprite, CONTAINERS[path].PALETTES[0])
            (target / f"{sprite.name}.png").write_bytes(data)
        axes = "".join(f"{s.name} {s.x} {s.y}\n" for s in sprites)
        (target / "axes.txt").write_text(axes, encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description="Draws the pictures of examples/meadow.")
    parser.add_argument("--check", action="store_true", help="only compare")
    parser.add_argument("--sheet", type=pathlib.Path, metavar="FILE", help="write a contact sheet")
    parser.add_argument("--png", type=pathlib.Path, metavar="FOLDER", help="write single images")
    arguments = parser.parse_args()
    drawn = {path: module.sprites() for path, module in CONTAINERS.items()}
    if arguments.sheet:
        arguments.sheet.write_bytes(sheet(drawn))
    if arguments.png:
        write_pngs(arguments.png, drawn)
    if arguments.check or not (arguments.sheet or arguments.png):
        return meadow.written(contents(drawn), "make_art", arguments.check)
    return 0


if __name__ == "__main__":
    sys.exit(main())
