"""Signals are lists of numbers. This makes, shapes and joins them. Times are in seconds, frequencies
in hertz, levels in decibels of full scale. Noise comes from a seed, so it is the same each time."""

import math
import random

RATE = 22050
TURN = 2 * math.pi
FADE_IN, FADE_OUT = 0.002, 0.012


class Sound:
    """Whole numbers, channel by channel. The loudest sample has the level; what is no loop begins
    and ends at zero."""

    def __init__(self, signals, level, rate=RATE, precision=16, loop=False):
        self.rate, self.precision = rate, precision
        if not loop:
            signals = [faded(signal, FADE_IN, FADE_OUT, rate) for signal in signals]
        loudest = max(abs(value) for signal in signals for value in signal)
        factor = 10 ** (level / 20) / loudest * ((1 << precision - 1) - 1)
        self.channels = [[round(value * factor) for value in signal] for signal in signals]


def mono(signal, level, **form):
    return Sound([signal], level, **form)


def loop(signal, level, **form):
    """A sound that begins where the signal is nearest to zero."""
    begin = min(range(len(signal)), key=lambda i: abs(signal[i]))
    return Sound([signal[begin:] + signal[:begin]], level, loop=True, **form)


def times(seconds, rate=RATE):
    return [i / rate for i in range(round(seconds * rate))]


def shaped(signal, envelope, rate=RATE):
    """envelope tells the factor at a time."""
    return [value * envelope(i / rate) for i, value in enumerate(signal)]


def strike(attack, decay):
    """An envelope that rises in a time and falls to a third in another, again and again."""
    return lambda t: min(t / attack, 1.0) * math.exp(-max(t - attack, 0.0) / decay)


def swell(length):
    """An envelope that rises and falls like half a wave."""
    return lambda t: math.sin(math.pi * min(t / length, 1.0)) ** 2


def faded(signal, begin, end, rate=RATE):
    """From zero and to zero, in straight lines."""
    first, last = round(begin * rate), round(end * rate)
    count = len(signal)
    return [value * min(1.0, i / first, (count - 1 - i) / last) for i, value in enumerate(signal)]


def noise(seconds, seed, rate=RATE):
    value = random.Random(seed).random
    return [value() * 2 - 1 for _ in range(round(seconds * rate))]


def sine(seconds, pitch, rate=RATE):
    """A tone; pitch is a frequency, or a function that tells it at a time."""
    if not callable(pitch):
        return [math.sin(TURN * pitch * t) for t in times(seconds, rate)]
    result = []
    phase = 0.0
    for t in times(seconds, rate):
        result.append(math.sin(phase))
        phase += TURN * pitch(t) / rate
    return result


def glide(begin, end, seconds):
    """A pitch that moves by equal intervals in equal times."""
    return lambda t: begin * (end / begin) ** min(t / seconds, 1.0)


def partials(seconds, fundamental, parts, rate=RATE):
    """Tones that die away: factor of the frequency, strength and time of decay of each."""
    def partial(factor, strength, decay):
        tone = sine(seconds, fundamental * factor, rate)
        return louder(shaped(tone, strike(0.003, decay), rate), strength)

    return mixed(*((0, partial(*part)) for part in parts), rate=rate)


def lowpass(signal, cutoff, rate=RATE):
    """One pole: 6 dB an octave above the cutoff."""
    part = 1 - math.exp(-TURN * cutoff / rate)
    result = []
    last = 0.0
    for value in signal:
        last += part * (value - last)
        result.append(last)
    return result


def highpass(signal, cutoff, rate=RATE):
    return [value - low for value, low in zip(signal, lowpass(signal, cutoff, rate))]


def bandpass(signal, center, quality, rate=RATE):
    """Two poles with 0 dB at the center, after Robert Bristow-Johnson's "Cookbook formulae for audio
    equalizer biquad filter coefficients". center may be a function that tells it at a time."""

    def coefficients(at):
        turn = TURN * at / rate
        alpha = math.sin(turn) / (2 * quality)
        return alpha / (1 + alpha), -2 * math.cos(turn) / (1 + alpha), (1 - alpha) / (1 + alpha)

    result = []
    x1 = x2 = y1 = y2 = 0.0
    moving = callable(center)
    if not moving:
        gain, a1, a2 = coefficients(center)
    for i, x in enumerate(signal):
        if moving:
            gain, a1, a2 = coefficients(center(i / rate))
        y = gain * (x - x2) - a1 * y1 - a2 * y2
        x1, x2, y1, y2 = x, x1, y, y1
        result.append(y)
    return result


def mixed(*parts, rate=RATE, length=None):
    """Signals with the time at which each begins. A length, in seconds, makes a loop: what goes over
    its end goes on at its beginning."""
    count = (
        round(length * rate)
        if length
        else max(round(begin * rate) + len(signal) for begin, signal in parts)
    )
    result = [0.0] * count
    for begin, signal in parts:
        place = round(begin * rate)
        for i, value in enumerate(signal, place):
            result[i % count] += value
    return result


def louder(signal, factor):
    return [value * factor for value in signal]


def seamless(signal, overlap, rate=RATE):
    """A loop of noise: what is behind its end fades out over its beginning."""
    extra = round(overlap * rate)
    count = len(signal) - extra
    result = signal[:count]
    for i in range(extra):
        angle = math.pi / 2 * i / extra
        result[i] = signal[i] * math.sin(angle) + signal[count + i] * math.cos(angle)
    return result


def bubble(pitch, decay, rate=RATE):
    """A bubble of air in water: a tone that rises a little while it dies away."""
    seconds = decay * 6
    return shaped(sine(seconds, glide(pitch, pitch * 1.35, seconds), rate), strike(0.004, decay), rate)


def pluck(seconds, pitch, seed, softness, rate=RATE):
    """A string after Kevin Karplus and Alex Strong, "Digital synthesis of plucked-string and drum
    timbres", 1983. Its length is tuned by reading between two samples. softness is the cutoff of what
    plucks it."""
    # The mean of two neighbours takes half a sample.
    period = rate / pitch - 0.5
    whole = int(period)
    part = period - whole
    start = lowpass(lowpass(noise((whole + 2) / rate, seed, rate), softness, rate), softness, rate)
    middle = sum(start) / len(start)
    string = [value - middle for value in start]
    loss = 0.998
    for i in range(len(string), round(seconds * rate)):
        a, b, c = string[i - whole], string[i - whole - 1], string[i - whole - 2]
        string.append(loss * 0.5 * ((1 - part) * (a + b) + part * (b + c)))
    return string
