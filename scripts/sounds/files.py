"""Writes WAV files and the container of sounds that docs/lantern.md tells. Everything is written the
same way each time."""

import struct

from art.files import PREFERRED, VERSION, checksum

from .flac import packed

RAW, FLAC = 0, 1


def frames(sound):
    """The samples as WAV and the container have them: of 8 bits centred on 128, of more signed."""
    size = sound.precision // 8
    centre = 128 if size == 1 else 0
    return b"".join(
        (value + centre).to_bytes(size, "little", signed=size > 1)
        for values in zip(*sound.channels)
        for value in values
    )


def wav(sound):
    size = len(sound.channels) * (sound.precision // 8)
    form = (1, len(sound.channels), sound.rate, sound.rate * size, size, sound.precision)
    data = frames(sound)
    padded = data + bytes(len(data) % 2)
    body = struct.pack("<4s4sIHHIIHH4sI", b"WAVE", b"fmt ", 16, *form, b"data", len(data)) + padded
    return struct.pack("<4sI", b"RIFF", len(body)) + body


def stream(sound):
    """The fields of a stream but its offset, and its bytes: FLAC, unless that makes it no smaller."""
    count = len(sound.channels[0])
    head = struct.pack("<HHII", len(sound.channels), sound.precision, sound.rate, count)
    plain = head + frames(sound)
    flac = head + packed(sound.channels, sound.rate, sound.precision)
    encoding, stored = (FLAC, flac) if len(flac) < len(plain) else (RAW, plain)
    return struct.pack("<IIH", len(stored), checksum(plain), encoding) + head, stored


def container(sounds):
    """The bytes of a .sounds file of pairs of a name and a sound."""
    names = [name.encode() for name, _ in sounds]
    streams = [stream(sound) for _, sound in sounds]
    counts = (len(streams), len(sounds), sum(map(len, names)))
    head = struct.pack("<4sHHIII", b"LSND", VERSION, PREFERRED, *counts)
    rest = b"".join(struct.pack("<HI", len(name), i) for i, name in enumerate(names))
    rest += b"".join(names)
    offset = len(head) + 30 * len(streams) + len(rest) + 4
    table = b""
    for fields, data in streams:
        table += struct.pack("<Q", offset) + fields
        offset += len(data)
    tables = head + table + rest
    return tables + struct.pack("<I", checksum(tables)) + b"".join(data for _, data in streams)
