#!/usr/bin/env python3
"""Makes the sounds of examples/meadow and writes them to where they belong.

Usage: make_sounds.py [--check] [--list] [--wav FOLDER]
--check   writes nothing; tells which files are not what would be written
--list    tells the form, the length and the loudness of each sound
--wav     writes each sound as FOLDER/PROJECT/NAME.wav, to listen to"""

import argparse
import math
import pathlib
import sys

sys.dont_write_bytecode = True  # the check leaves nothing beside the modules

import meadow
from sounds import brook, files, hotaru, mill, rowan, scenery
from sounds.synth import loop, mono

# The files of sounds, with what makes the sounds of each.
CONTAINERS = {
    "rowan/rowan.sounds": rowan.sounds,
    "hotaru/音/hotaru.sounds": hotaru.sounds,
    "mill/bilder/mühle.sounds": mill.sounds,
    "brook/art/brook.sounds": brook.sounds,
    "barn/barn.sounds": scenery.barn,
    "meadow.sounds": scenery.sounds,
}


def singles():
    """The sounds with a file of their own: path and sound."""
    yield "rowan/sounds/step.wav", mono(rowan.far_step(), -14, precision=8)
    yield "rowan/sounds/lantern.wav", mono(rowan.lit(), -6)
    yield "hotaru/音/羽.wav", mono(hotaru.flutter(), -10)
    yield "mill/bilder/glocke.wav", mono(mill.three_strokes(), -3)
    yield "brook/art/water.wav", mono(brook.drop(), -9)
    yield "sounds/breeze.wav", loop(scenery.breeze(), -10, rate=scenery.BREEZE_RATE)


def contents(made):
    """The bytes of every file by its path below the meadow."""
    result = {path: files.container(sounds) for path, sounds in made.items()}
    result.update((path, files.wav(sound)) for path, sound in singles())
    return result


def named(made):
    """Every sound: its path without extension, and itself."""
    for path, sounds in made.items():
        for name, sound in sounds:
            yield f"{pathlib.PurePath(path).stem}/{name}", sound
    for path, sound in singles():
        yield str(pathlib.PurePath(path).with_suffix("")), sound


def described(sound):
    """Seconds, channels, frames a second, bits; peak and mean power in decibels of full scale."""
    full = 1 << sound.precision - 1
    values = [value / full for channel in sound.channels for value in channel]
    peak = max(map(abs, values))
    power = math.sqrt(sum(value * value for value in values) / len(values))
    seconds = len(sound.channels[0]) / sound.rate
    return (
        f"{seconds:6.2f} s {len(sound.channels)} x {sound.rate} x {sound.precision:2} bits, "
        f"peak {20 * math.log10(peak):6.1f}, power {20 * math.log10(power):6.1f}"
    )


def main():
    parser = argparse.ArgumentParser(description="Makes the sounds of examples/meadow.")
    parser.add_argument("--check", action="store_true", help="only compare")
    parser.add_argument("--list", action="store_true", help="tell what each sound is like")
    parser.add_argument("--wav", type=pathlib.Path, metavar="FOLDER", help="write single sounds")
    arguments = parser.parse_args()
    made = {path: list(sounds()) for path, sounds in CONTAINERS.items()}
    if arguments.list:
        for name, sound in named(made):
            print(f"{described(sound)}  {name}")
    if arguments.wav:
        for name, sound in named(made):
            target = arguments.wav / f"{name}.wav"
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(files.wav(sound))
    if arguments.check or not (arguments.list or arguments.wav):
        return meadow.written(contents(made), "make_sounds", arguments.check)
    return 0


if __name__ == "__main__":
    sys.exit(main())
