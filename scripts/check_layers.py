#!/usr/bin/env python3
"""Checks that no folder of the library includes a folder that stands above it, and that the
products include only what they may. Usage: check_layers.py [REPOSITORY]"""

import pathlib
import re
import sys

# A folder may include its own headers and those of lower ranks.
RANKS = {
    "frame": 1,
    "engine": 2,
    "cache": 3,
    "project": 4,
    "code": 5,
    "image": 6,
    "editor": 7,
    "render": 8,
    "animation": 9,
    "sprite": 9,
    "sound": 9,
    "emulator": 9,
    "script": 10,
}

# What the trees outside the library may include besides their own files: folders of the library.
# A host never sees an engine's headers, and an engine never a host's.
PRODUCTS = {"studio": "studio", "engines/lantern": "lantern"}

INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"')


def includes(path):
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match.group(1)


def sources(folder):
    return sorted(p for p in folder.rglob("*") if p.suffix in (".h", ".cpp"))


def check_library(root):
    for path in sources(root / "src"):
        folder = path.relative_to(root / "src").parts[0]
        if folder not in RANKS:
            yield f"{path.relative_to(root)}: the folder '{folder}' has no rank"
            continue
        for number, name in includes(path):
            target = name.split("/")[0]
            where = f"{path.relative_to(root)}:{number}"
            if "/" not in name:
                # Generated beside the source: forms, moc files, the version.
                if not name.startswith(("ui_", "moc_")) and not name.endswith(".moc") and name != "version.h":
                    yield f"{where}: \"{name}\" is written without its folder"
            elif target not in RANKS:
                yield f"{where}: \"{name}\" is not of the library"
            elif target != folder and RANKS[target] >= RANKS[folder]:
                yield f"{where}: {folder}/ may not include {target}/ ({name})"


def check_products(root):
    for folder, own in PRODUCTS.items():
        for path in sources(root / folder):
            for number, name in includes(path):
                target = name.split("/")[0]
                if "/" in name and target != own and target not in RANKS:
                    yield f"{path.relative_to(root)}:{number}: {folder}/ may not include \"{name}\""


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()
    faults = [*check_library(root), *check_products(root)]
    for fault in faults:
        print(fault)
    print(f"check_layers: {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
