"""Rowan: steps on grass, a jump, and the lantern."""

import random

from .synth import (
    bandpass, glide, highpass, louder, lowpass, mixed, mono, noise, partials, shaped, sine, strike,
    swell,
)

# Of each step: seed, weight of the heel, frequency of the rustling blades.
STEPS = {"grass-1": (11, 1.0, 2600), "grass-2": (23, 0.8, 3100), "grass-3": (37, 0.9, 2300)}


def thud(pitch, seconds):
    return shaped(sine(seconds, glide(pitch, pitch * 0.5, seconds)), strike(0.004, seconds / 4))


def blades(seconds, center, seed):
    """Blades of grass that rub on each other and snap here and there."""
    rubbing = bandpass(noise(seconds, seed), center, 0.9)
    choice = random.Random(seed + 1)
    snaps = [choice.uniform(-1, 1) if choice.random() < 0.02 else 0.0 for _ in rubbing]
    return mixed((0, rubbing), (0, louder(bandpass(snaps, center * 1.3, 1.5), 1.6)))


def on_grass(seed, weight, center):
    return mixed(
        (0, louder(thud(120, 0.12), 0.35 * weight)),
        (0.005, shaped(blades(0.16, center, seed), strike(0.012, 0.035))),
        (0.07, louder(shaped(blades(0.17, center * 1.15, seed + 5), strike(0.03, 0.03)), 0.6)),
    )


def far_step():
    """Heard over the meadow: hardly more than the heel."""
    return lowpass(lowpass(on_grass(11, 1.6, 1800), 900), 1400)


def jump():
    """The grass lets go, then the cloak sweeps by."""
    cloak = bandpass(noise(0.34, 51), glide(350, 1500, 0.3), 1.6)
    return mixed(
        (0, louder(on_grass(53, 0.6, 2800), 0.7)),
        (0.02, louder(shaped(cloak, swell(0.34)), 1.5)),
        (0.01, louder(shaped(sine(0.22, glide(170, 330, 0.2)), swell(0.22)), 0.12)),
    )


def rattle(seed):
    """The glass of the lantern in its frame."""
    parts = ((1.0, 1.0, 0.05), (1.52, 0.6, 0.04), (2.31, 0.4, 0.025))
    choice = random.Random(seed)
    places = (0.0, 0.055, 0.1, 0.135)
    return mixed(
        *(
            (place, louder(partials(0.25, 2150 * choice.uniform(0.97, 1.03), parts), 0.6**i))
            for i, place in enumerate(places)
        )
    )


def landing():
    return mixed(
        (0, louder(thud(130, 0.28), 0.9)),
        (0.004, louder(on_grass(61, 0.5, 2400), 1.0)),
        (0.03, louder(shaped(blades(0.3, 2900, 67), strike(0.03, 0.06)), 0.5)),
        (0.02, louder(rattle(71), 0.08)),
    )


def lit():
    """A flint, the flame that catches, and a glow that stays for a moment."""
    flint = shaped(highpass(noise(0.09, 81), 3500), strike(0.003, 0.018))
    flame = lowpass(lowpass(noise(0.8, 83), 700), 900)
    glow = ((1.0, 1.0, 0.35), (1.5, 0.6, 0.3), (2.0, 0.35, 0.25), (3.0, 0.12, 0.15))
    return mixed(
        (0, louder(flint, 0.5)),
        (0.1, louder(flint, 0.35)),
        (0.13, louder(shaped(flame, strike(0.1, 0.18)), 2.4)),
        (0.2, louder(partials(1.2, 523.25, glow), 0.28)),
    )


def put_out():
    """A breath, and the glow that sinks."""
    breath = lowpass(bandpass(noise(0.45, 91), glide(1600, 500, 0.4), 0.8), 2500)
    sinking = sine(0.7, glide(392, 262, 0.5))
    wick = highpass(noise(0.5, 93), 4000)
    return mixed(
        (0, shaped(breath, strike(0.04, 0.09))),
        (0.08, louder(shaped(sinking, strike(0.05, 0.14)), 0.3)),
        (0.12, louder(shaped(wick, strike(0.02, 0.1)), 0.06)),
    )


def sounds():
    for name, step in STEPS.items():
        yield name, mono(on_grass(*step), -9)
    yield "jump", mono(jump(), -8)
    yield "landing", mono(landing(), -5)
    yield "lantern-out", mono(put_out(), -6)
