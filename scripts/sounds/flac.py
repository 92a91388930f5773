"""Writes FLAC streams (RFC 9639): blocks of 4096 frames, fixed predictors and Rice codes. The same
samples make the same bytes."""

import hashlib
import struct

BLOCK = 4096
PARTITIONS = 4  # exponent of their number in a whole block
INDEPENDENT, MID_SIDE = 0, 10
PRECISIONS = {8: 1, 16: 4, 24: 6}  # bits a sample to their number in a frame
RATE_FOLLOWS = 13
BLOCK_FOLLOWS = 7


def crc_table(polynomial, bits):
    table = []
    for value in range(256):
        value <<= bits - 8
        for _ in range(8):
            value = value << 1 ^ (polynomial if value >> (bits - 1) & 1 else 0)
        table.append(value & (1 << bits) - 1)
    return table


CRC8 = crc_table(0x07, 8)
CRC16 = crc_table(0x8005, 16)


def crc8(data):
    crc = 0
    for byte in data:
        crc = CRC8[crc ^ byte]
    return crc


def crc16(data):
    crc = 0
    for byte in data:
        crc = (crc << 8 & 0xFF00) ^ CRC16[crc >> 8 ^ byte]
    return crc


def bits(value, width):
    return format(value & (1 << width) - 1, f"0{width}b")


def bytes_of(text):
    """The bytes of a text of bits, filled with zeros."""
    text += "0" * (-len(text) % 8)
    return int(text, 2).to_bytes(len(text) // 8, "big")


def residuals(samples):
    """What the fixed predictors of the orders 0 to 4 miss, behind as many samples as the order."""
    result = [samples]
    while len(result) < 5 and len(result[-1]) > 1:
        last = result[-1]
        result.append([after - before for before, after in zip(last, last[1:])])
    return result


def rice(part):
    """The codes of a partition, behind the parameter in 5 bits."""
    folded = [value << 1 if value >= 0 else ~(value << 1) for value in part]
    total = sum(folded)
    shift = min(range(26), key=lambda k: len(folded) * (k + 1) + (total >> k))
    stop, mask = 1 << shift, (1 << shift) - 1
    codes = (format(stop | value & mask, f"0{(value >> shift) + 1 + shift}b") for value in folded)
    return bits(shift, 5) + "".join(codes)


def subframe(samples, precision):
    """One channel of a block."""
    missed = residuals(samples)
    order = min(range(len(missed)), key=lambda i: sum(map(abs, missed[i])))
    exponent = PARTITIONS if len(samples) == BLOCK else 0
    size = len(samples) >> exponent
    # The first partition lacks what the predictor begins with.
    ends = [size * (i + 1) - order for i in range(1 << exponent)]
    parts = (missed[order][begin:end] for begin, end in zip([0] + ends, ends))
    return "".join(
        (
            bits(8 | order, 7) + "0",
            *(bits(sample, precision) for sample in samples[:order]),
            bits(1, 2) + bits(exponent, 4),  # parameters of 5 bits
            *map(rice, parts),
        )
    )


def frame(number, block, rate, precision):
    """A block of one or two channels; two are written as their mean and their difference."""
    assignment = INDEPENDENT
    if len(block) == 2:
        assignment = MID_SIDE
        left, right = block
        block = [[a + b >> 1 for a, b in zip(left, right)], [a - b for a, b in zip(left, right)]]
    head = b"".join(
        (
            b"\xff\xf8",
            bytes((BLOCK_FOLLOWS << 4 | RATE_FOLLOWS, assignment << 4 | PRECISIONS[precision] << 1)),
            chr(number).encode(),
            struct.pack(">HH", len(block[0]) - 1, rate),
        )
    )
    head += bytes((crc8(head),))
    text = (subframe(samples, precision + i) for i, samples in enumerate(block))
    data = head + bytes_of("".join(text))
    return data + struct.pack(">H", crc16(data))


def packed(channels, rate, precision):
    """The bytes of a FLAC stream. channels has a list of whole numbers for each of one or two; rate
    is below 65536."""
    count = len(channels[0])
    frames = [
        frame(number, [samples[begin : begin + BLOCK] for samples in channels], rate, precision)
        for number, begin in enumerate(range(0, count, BLOCK))
    ]
    plain = b"".join(
        value.to_bytes(precision // 8, "little", signed=True)
        for values in zip(*channels)
        for value in values
    )
    sizes = [len(data) for data in frames]
    info = b"".join(
        (
            struct.pack(">HH", BLOCK, BLOCK),
            min(sizes).to_bytes(3, "big"),
            max(sizes).to_bytes(3, "big"),
            bytes_of(
                bits(rate, 20) + bits(len(channels) - 1, 3) + bits(precision - 1, 5) + bits(count, 36)
            ),
            hashlib.md5(plain).digest(),
        )
    )
    # The one block of metadata is the last one.
    return b"fLaC" + struct.pack(">I", 1 << 31 | len(info)) + info + b"".join(frames)
