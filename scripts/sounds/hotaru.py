"""The fireflies: the hum of their wings and a glow that can be heard."""

import math

from .synth import TURN, glide, loop, louder, mixed, mono, partials, shaped, sine, strike, swell, times

HUM = 164  # beats of the wings a second


def hum():
    """A second of whole beats and of whole waves of their strength, so that its end fits to its
    beginning."""
    result = []
    for t in times(1.0):
        near = 1 + 0.25 * math.sin(TURN * 2 * t) + 0.15 * math.sin(TURN * 5 * t)
        tone = sum(math.sin(TURN * HUM * i * t + i * i) / i**1.4 for i in range(1, 9))
        beside = 0.4 * math.sin(TURN * (HUM + 3) * t)
        result.append(near * (tone + beside))
    return result


def wings(pitch, seconds):
    """A short flight: the hum with a pitch of its own."""
    return mixed(
        *((0, louder(sine(seconds, lambda t, i=i: pitch(t) * i), 1 / i**1.4)) for i in range(1, 7))
    )


def flutter():
    return shaped(wings(glide(150, 205, 0.4), 0.4), swell(0.4))


def settle():
    return shaped(wings(glide(190, 95, 0.5), 0.5), strike(0.03, 0.14))


def glow():
    """Two soft tones, a fifth apart."""
    parts = ((1.0, 1.0, 0.4), (2.0, 0.3, 0.25), (3.01, 0.1, 0.12))
    return mixed(
        (0, shaped(partials(1.3, 1046.5, parts), lambda t: min(t / 0.08, 1.0))),
        (0.16, louder(shaped(partials(1.3, 1567.98, parts), lambda t: min(t / 0.08, 1.0)), 0.6)),
    )


def sounds():
    yield "羽音", loop(hum(), -14)
    yield "光る", mono(glow(), -10)
    yield "止まる", mono(settle(), -12)
