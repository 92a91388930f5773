"""The folder of the example, and whether its files are what a script writes."""

import pathlib

MEADOW = pathlib.Path(__file__).resolve().parent.parent / "examples" / "meadow"


def written(contents, script, only_check):
    """Writes the bytes of files by their paths below the meadow, or prints which differ from them.
    Returns what the script exits with."""
    if not only_check:
        for path, data in contents.items():
            (MEADOW / path).write_bytes(data)
        return 0
    faults = 0
    for path, data in sorted(contents.items()):
        file = MEADOW / path
        if not file.is_file() or file.read_bytes() != data:
            print(f"examples/meadow/{path}: is not what scripts/{script}.py writes")
            faults += 1
    print(f"{script}: {faults} faults")
    return 1 if faults else 0
