#!/usr/bin/env python3
"""Fails when a file of src/ includes a layer that does not stand below its own.

    layers.py SRC

The layers, from the lowest: a folder may use itself and what stands before it. `sync` is two libraries; its CMakeLists.txt
says which file belongs to which. An adapter in platform/ knows the ports of core and no logic; only apps/program wires both.
"""

import re
import sys
from pathlib import Path

LAYERS = ["core", "store", "formats", "log", "sync_matching", "organizer", "phone", "sync_runs", "ui", "apps"]
INCLUDE = re.compile(r'^\s*#include\s+"([^"]+)"', re.MULTILINE)
# The standard library has no such headers: outside libraries are for adapters and the program.
FOREIGN = re.compile(r"^\s*#include\s+<(\w+/|[^>]+\.h>|libical|sys|unistd)", re.MULTILINE)


def sync_libraries(src):
    """File stem in src/sync to the library that compiles it."""
    text = (src / "sync/CMakeLists.txt").read_text()
    return {Path(name).stem: library
            for library, sources in re.findall(r"tandolin_library\((\w+)\s+SOURCES(.*?)LINKS", text, re.DOTALL)
            for name in sources.split()}


def layer_of(path, sync):
    parts = Path(path).parts
    if parts[0] == "sync":
        return sync.get(Path(path).stem, "sync_runs")
    if parts[0] == "platform":
        return "/".join(parts[:2])
    return "program" if parts[:2] == ("apps", "program") else parts[0]


def allowed(user, used):
    if user == "program" or user == used:
        return True
    if user.startswith("platform/"):
        return used == "core" or used == "platform/system_posix"
    return used in LAYERS and LAYERS.index(used) < LAYERS.index(user)


def main():
    src = Path(sys.argv[1])
    sync = sync_libraries(src)
    wrong, seen = [], 0
    for file in sorted([*src.rglob("*.h"), *src.rglob("*.cpp"), *src.rglob("*.inc")]):
        name = file.relative_to(src)
        text = file.read_text()
        user = layer_of(name, sync)
        for included in INCLUDE.findall(text):
            seen += 1
            if not (src / included).exists():
                wrong.append(f"{name} includes {included}, which is not there")
            elif not allowed(user, layer_of(included, sync)):
                wrong.append(f"{name} ({user}) includes {included} ({layer_of(included, sync)})")
        if user in LAYERS and FOREIGN.search(text):
            wrong.append(f"{name} includes more than the standard library")
    print("\n".join(wrong) or f"{seen} includes, all in the right direction")
    return 1 if wrong or seen == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
