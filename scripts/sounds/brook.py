"""The brook: its murmur, a drop, a splash, a stone under a foot, and reeds in the wind."""

import random

from .synth import (
    bandpass, bubble, highpass, loop, louder, lowpass, mixed, mono, noise, partials, seamless, shaped,
    strike, swell,
)

MURMUR = 4.8  # seconds


def bubbles(count, begin, end, seed, lowest=380, highest=1500):
    """Bubbles at times between two, the high ones short."""
    choice = random.Random(seed)
    for _ in range(count):
        pitch = lowest * (highest / lowest) ** choice.random()
        part = choice.uniform(0.15, 1.0) ** 2
        yield choice.uniform(begin, end), louder(bubble(pitch, 16 / pitch), part)


def murmur():
    bed = seamless(bandpass(noise(MURMUR + 0.5, 101), 620, 0.6), 0.5)
    return mixed((0, louder(bed, 0.55)), *bubbles(190, 0, MURMUR, 103), length=MURMUR)


def drop():
    """A few bubbles, one after the other."""
    return mixed(*((t, louder(s, 1 - t)) for t, s in bubbles(7, 0, 0.45, 111, 500, 1300)))


def splash():
    spray = shaped(bandpass(noise(0.7, 121), 1700, 0.5), strike(0.015, 0.09))
    body = shaped(lowpass(noise(0.5, 122), 500), strike(0.01, 0.06))
    rising = mixed(*bubbles(14, 0, 0.4, 123))
    return mixed((0, spray), (0, louder(body, 1.2)), (0.12, louder(rising, 0.45)))


def stone():
    """The sole on wet stone."""
    parts = ((1.0, 1.0, 0.025), (2.7, 0.5, 0.015), (4.4, 0.2, 0.01))
    wet = shaped(highpass(noise(0.12, 131), 1800), strike(0.004, 0.02))
    return mixed((0, partials(0.2, 340, parts)), (0.006, louder(wet, 0.25)))


def reeds():
    """A breath of wind goes through and is over within the animation's second."""
    stalks = bandpass(noise(1.0, 141), lambda t: 2600 + 900 * swell(1.0)(t), 0.8)
    return shaped(stalks, swell(1.0))


def sounds():
    yield "murmur", loop(murmur(), -10)
    yield "splash", mono(splash(), -5)
    yield "stone", mono(stone(), -9)
    yield "reeds", mono(reeds(), -20)
