#!/usr/bin/env python3
"""Holds every include of src/ against the table of rooms: an arrow may only point where the table says.

  scripts/check-rooms.py

Names each include that breaks it, and ends with 1 if there is one. The libraries of CMake keep most of
this already; here is also what only a header brings along.
"""

import pathlib
import re
import sys

# Room: the rooms that it may include beside itself. A single header may stand instead of its room.
PLATFORM = {
    "platform/base": [],
    "platform/files": ["platform/base"],
    "platform/database": ["platform/base"],
    "platform/richtext": ["platform/base", "platform/files"],
    "platform/network": ["platform/base"],
    "platform/controls": ["platform/base", "platform/richtext"],
    "platform/charts": ["platform/base"],
    "platform/desktop": ["platform/base"],
}
# The document asks the user through the interface of the dialogs, and links no widget.
DOCUMENT = ["platform/base", "platform/files", "platform/database", "platform/richtext",
            "platform/desktop/Dialogs.h"]
# Counting asks nobody: not even the dialogs.
STATISTICS = ["document", "platform/base", "platform/database", "platform/richtext"]
SCREEN = ["document", "statistics", "labelled", "tables", "exchange", *PLATFORM]
# The survey server knows nothing of the desktop program but what both exchange, and the code page, which
# is plain numbers.
SERVER = {
    "exchange": ["platform/base/CodePage1252.h"],
    "server/store": [],
    "server/accounts": ["exchange", "server/net", "server/store"],
    "server/net": [],
    "server/survey": ["exchange", "server/store"],
    "server/ftp": ["exchange", "server/accounts", "server/net", "server/store"],
    "server/protocol": ["exchange", "server/survey", "server/accounts", "server/net", "server/store"],
    "server/web": ["exchange", "server/survey", "server/accounts", "server/net", "server/store"],
}
ROOMS = {
    **PLATFORM,
    **SERVER,
    "server/app": list(SERVER),
    "document": DOCUMENT,
    "statistics": STATISTICS,
    "labelled": ["statistics", "platform/files", *STATISTICS],
    # The state of the program says whether the survey may be written.
    "tables": ["statistics", "document", *DOCUMENT],
    "design": SCREEN,
    "collection": SCREEN,
    "analysis": SCREEN,
    "explore": SCREEN,
    "web": SCREEN,
    "shell/help": list(PLATFORM),
    "shell": ["shell/help", "design", "collection", "analysis", "explore", "web", *SCREEN],
}


def room_of(path):
    """The longest room that the path lies in, or None."""
    rooms = [room for room in ROOMS if path.startswith(room + "/")]
    return max(rooms, key=len, default=None)


def main():
    source = pathlib.Path(__file__).resolve().parent.parent / "src"
    faults = []
    for file in sorted([*source.rglob("*.h"), *source.rglob("*.cpp")]):
        path = file.relative_to(source).as_posix()
        room = room_of(path)
        if room is None:
            faults.append(f"src/{path}: lies in no room of the table")
            continue
        for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
            include = re.match(r'\s*#\s*include\s+"([^"]+)"', line)
            if not include:
                continue
            target = include.group(1)
            if not (source / target).is_file():
                faults.append(f"src/{path}:{number}: there is no {target} below src/")
            elif room_of(target) != room and target not in ROOMS[room] \
                    and room_of(target) not in ROOMS[room]:
                faults.append(f"src/{path}:{number}: {room} must not know {target}")
    print("\n".join(faults) if faults else "Every include follows the table of rooms.")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
