"""The mill: its bell, the clapper and the beams, and the paddles of the wheel."""

import random

from .synth import (
    RATE, bandpass, bubble, highpass, louder, lowpass, mixed, mono, noise, partials, shaped, strike,
    swell, times,
)

# The tones of a bell: hum, prime, minor third, fifth, nominal and two above.
BELL = (
    (0.5, 0.5, 1.1), (1.0, 0.7, 0.7), (1.19, 0.6, 0.6), (1.5, 0.3, 0.4), (2.0, 0.8, 0.45),
    (2.52, 0.25, 0.2), (3.01, 0.3, 0.15),
)
PRIME = 587.33


def stroke(seconds):
    clapper = shaped(highpass(noise(0.03, 5), 2500), strike(0.001, 0.006))
    return mixed((0, partials(seconds, PRIME, BELL)), (0, louder(clapper, 0.4)))


def three_strokes():
    """One in every half second."""
    return mixed(*((begin, stroke(2.0)) for begin in (0, 0.5, 1.0)))


def creak():
    """Wood that sticks and slips: clicks that come faster and slower, in what a beam lets through."""
    seconds = 0.75
    swelling = swell(seconds)
    choice = random.Random(17)
    clicks = []
    phase = 0.0
    for t in times(seconds):
        phase += (24 + 34 * swelling(t)) / RATE
        clicks.append(choice.uniform(0.6, 1.0) if phase >= 1 else 0.0)
        phase %= 1
    tones = ((430, 9, 1.0), (960, 12, 0.7), (1730, 14, 0.35))

    def beam(pitch, quality):
        return bandpass(clicks, lambda t: pitch * (1 + 0.12 * swelling(t)), quality)

    wood = mixed(*((0, louder(beam(pitch, quality), part)) for pitch, quality, part in tones))
    return shaped(wood, swelling)


def knock(pitch, seed):
    parts = ((1.0, 1.0, 0.03), (2.4, 0.5, 0.018), (3.9, 0.25, 0.01))
    click = shaped(lowpass(noise(0.03, seed), 3000), strike(0.001, 0.006))
    return mixed((0, partials(0.2, pitch, parts)), (0, louder(click, 0.7)))


def clapper():
    """Two knocks in each turn of a vane, which takes 0.8 seconds."""
    return mixed((0, knock(310, 21)), (0.38, louder(knock(262, 22), 0.7)), (0.5, knock(310, 23)))


def paddle():
    """A paddle enters the water."""
    plash = shaped(bandpass(noise(0.16, 31), 900, 0.7), strike(0.02, 0.035))
    return mixed(
        (0, plash), (0.03, louder(bubble(520, 0.018), 0.3)), (0.06, louder(bubble(760, 0.012), 0.25))
    )


def sounds():
    yield "Glockenschlag", mono(stroke(2.0), -4, precision=24)
    yield "Klapper", mono(clapper(), -9)
    yield "Knarren", mono(creak(), -10)
    yield "Wasserrad", mono(paddle(), -15)
