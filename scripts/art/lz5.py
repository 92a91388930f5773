"""Packs rows of indices below 32 into an LZ5 stream: runs, and copies of what is up to 1024 pixels
behind. The choices are those that Vela makes, so that its files and ours are equal."""

LONGEST_RUN = 263
LONGEST_COPY = 258
FARTHEST = 1024


def is_short(length, distance):
    """Whether a copy fits the shorter packet."""
    return length <= 64 and distance <= 256


def run_length(pixels, position, limit):
    end = min(position + limit, len(pixels))
    color = pixels[position]
    last = position + 1
    while last < end and pixels[last] == color:
        last += 1
    return last - position


def match_length(pixels, position, distance):
    end = min(position + LONGEST_COPY, len(pixels))
    last = position
    while last < end and pixels[last] == pixels[last - distance]:
        last += 1
    return last - position


def changes_of(pixels, position, length):
    """How often the colour changes, and whether 8 equal pixels stand in a row."""
    stretch = changes = 0
    long_run = False
    for i in range(position, position + length):
        changed = i > position and pixels[i] != pixels[i - 1]
        changes += changed
        stretch = 1 if changed else stretch + 1
        long_run = long_run or stretch == 8
    return changes, long_run


def is_worth(pixels, position, length, distance):
    """Whether a copy is taken; it has one change of colour at least."""
    changes, long_run = changes_of(pixels, position, length)
    if is_short(length, distance):
        last = position + length
        return changes > 1 or last == len(pixels) or pixels[last] != pixels[last - 1]
    return changes == 2 and long_run or length >= 4 and changes >= 3


def find_copy(pixels, position):
    """The longest copy that is worth it, the nearest of equal ones: (length, distance), or None."""
    best = None
    # A copy without a change of colour does not count, so it goes on behind the run.
    needed = run_length(pixels, position, LONGEST_COPY) + 1
    end = position - 2
    while needed <= LONGEST_COPY and position + needed <= len(pixels):
        begin = max(position - FARTHEST, 0)
        found = pixels.rfind(pixels[position : position + needed], begin, max(end + needed, 0))
        if found < 0 or end < begin:
            break
        distance = position - found
        length = match_length(pixels, position, distance)
        if is_worth(pixels, position, length, distance):
            best = (length, distance)
            needed = length + 1
        end = found - 1
    return best


def packets(pixels):
    """The packets one by one: (length, distance, colour), with a distance of 0 for a run."""
    position = 0
    while position < len(pixels):
        color = pixels[position]
        copy = find_copy(pixels, position)
        if not copy:
            run = run_length(pixels, position, 7)
            # A run of 7 that a copy follows stays short.
            follower = position + run < len(pixels) and run == 7 and find_copy(pixels, position + run)
            if not follower:
                run = run_length(pixels, position, LONGEST_RUN)
            yield run, 0, color
            position += run
            copy = follower
        if copy:
            yield *copy, color
            position += copy[0]


def packed(pixels):
    """The bytes of the stream."""
    chosen = list(packets(pixels))
    short = [distance - 1 for length, distance, _ in chosen if distance and is_short(length, distance)]
    result = bytearray()
    number = 0  # of short copies so far
    for index, (length, distance, color) in enumerate(chosen):
        if index % 8 == 0:
            result.append(sum((d > 0) << bit for bit, (_, d, _) in enumerate(chosen[index : index + 8])))
        if not distance:
            result += bytes((length << 5 | color,) if length < 8 else (color, length - 8))
        elif is_short(length, distance):
            # Four short copies make a set; the others of it carry the offset of the fourth.
            fourth, part = number // 4 * 4 + 3, number % 4
            recycled = short[fourth] if fourth < len(short) else 0
            result.append((recycled >> (6 - part * 2) & 3) << 6 | (length - 1))
            if number != fourth:
                result.append(distance - 1)
            number += 1
        else:
            result += bytes(((distance - 1) >> 8 << 6, (distance - 1) & 0xFF, length - 3))
    return bytes(result)
