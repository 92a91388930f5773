"""What the whole meadow hears: crickets, a breeze, an owl, a tune. And the door of the barn."""

import math
import random

from .mill import knock
from .synth import (
    TURN, Sound, bandpass, faded, glide, loop, louder, lowpass, mixed, mono, noise, partials, pluck,
    seamless, shaped, sine, swell,
)

CRICKETS = 4.0  # seconds
BREEZE, BREEZE_RATE = 4.0, 11025


def chirp(pitch, pulses, pace):
    """Some pulses, the middle ones loudest."""
    pulse = shaped(sine(pace * 0.7, pitch), swell(pace * 0.7))
    strength = swell(pulses + 1)
    return mixed(*((i * pace, louder(pulse, strength(i + 1))) for i in range(pulses)))


def crickets():
    """Each cricket has its pitch, its distance and its pace; whole numbers of chirps make a loop."""
    parts = []
    choice = random.Random(201)
    for pitch, strength, chirps in ((4150, 1.0, 6), (4420, 0.45, 8), (3890, 0.3, 5), (4700, 0.18, 9)):
        song = louder(chirp(pitch, 4, 0.034), strength)
        begin = choice.random() * CRICKETS
        for i in range(chirps):
            parts.append((begin + i * CRICKETS / chirps + choice.uniform(0, 0.03), song))
    return mixed(*parts, length=CRICKETS)


def breeze():
    """Wind that grows and falls, with whole waves in the loop."""
    rate = BREEZE_RATE
    air = noise(BREEZE + 0.5, 211, rate)
    body = bandpass(air, lambda t: 330 + 140 * math.sin(TURN * t / BREEZE), 0.7, rate)
    top = bandpass(noise(BREEZE + 0.5, 212, rate), 1100, 0.8, rate)
    wind = mixed((0, lowpass(body, 900, rate)), (0, louder(top, 0.12)), rate=rate)

    def gusts(t):
        turn = TURN * t / BREEZE
        return 1 + 0.45 * math.sin(turn) + 0.2 * math.sin(3 * turn + 2)

    return shaped(seamless(wind, 0.5, rate), gusts, rate)


def hoot(seconds, pitch):
    voice = sine(seconds, lambda t: pitch * (1 + 0.02 * swell(seconds)(t)))
    breath = bandpass(noise(seconds, 221), pitch * 1.1, 4)
    return shaped(mixed((0, voice), (0, louder(breath, 0.25))), swell(seconds))


def owl():
    return mixed((0, hoot(0.32, 372)), (0.55, louder(hoot(0.14, 366), 0.6)), (0.72, hoot(0.7, 360)))


def door():
    """It moves a little, is stuck, and falls back on its latch."""
    groan = bandpass(noise(0.5, 231), glide(240, 420, 0.45), 25)
    latch = ((1.0, 1.0, 0.05), (1.8, 0.6, 0.04), (2.9, 0.4, 0.03))
    return mixed(
        (0, louder(shaped(groan, swell(0.5)), 2.5)),
        (0.5, knock(120, 232)),
        (0.51, louder(partials(0.3, 900, latch), 0.18)),
        (0.66, louder(knock(135, 233), 0.6)),
        (0.67, louder(partials(0.3, 870, latch), 0.1)),
    )


# The tune, in 3/4: each note with its beat and the half tones above middle C, where the melody is an
# octave higher. It walks up to the evening star and comes home over chords of a bass and two tones.
TUNE_RATE = 44100
BEAT = 0.5  # seconds
MELODY = (
    (0, 4), (1, 7), (2, 9), (3, 12), (4.5, 11), (5, 9), (6, 7), (7.5, 9), (8, 7), (9, 4), (11, 2),
    (12, 0), (13, 4), (14, 5), (15, 7), (16.5, 5), (17, 2), (18, 0),
)
CHORDS = (  # bass, then the chord's tones on the second and third beat
    (-12, 0, 4), (-15, -3, 0), (-8, -1, 2), (-10, -3, 0), (-7, -3, 0), (-5, -1, 5), (-12, -5, 4),
)


def tune():
    def note(beat, step, side, strength, softness, length=1.6):
        """When it begins and its signal, for the left and for the right; side is from -1 to 1."""
        pitch = 261.63 * 2 ** (step / 12)
        string = lowpass(pluck(length, pitch, 300 + step, softness, TUNE_RATE), 3000, TUNE_RATE)
        loudest = max(map(abs, string))
        string = faded(louder(string, strength / loudest), 0.003, 0.25, TUNE_RATE)
        angle = math.pi / 4 * (1 + side)
        return tuple((beat * BEAT, louder(string, part(angle))) for part in (math.cos, math.sin))

    notes = [note(beat, step + 12, 0.15, 1.0, 1800) for beat, step in MELODY]
    for bar, (bass, *tones) in enumerate(CHORDS):
        notes.append(note(bar * 3, bass, -0.1, 0.8, 700, 1.8))
        for beat, step in enumerate(tones, bar * 3 + 1):
            notes.append(note(beat, step, -0.5, 0.4, 1100, 1.2))
    return [mixed(*side, rate=TUNE_RATE) for side in zip(*notes)]


def sounds():
    yield "tune", Sound(tune(), -6, rate=TUNE_RATE)
    yield "crickets", loop(crickets(), -16)
    yield "owl", mono(owl(), -12)


def barn():
    yield "door", mono(door(), -6)
