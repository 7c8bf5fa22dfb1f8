#!/usr/bin/env python3
"""Checks how the module folders of the library depend on each other.

The folders include each other's headers only along the allowed edges below
(data flows one way: files -> loader -> registries -> queries), the graph of
folder dependencies has no cycle, and nothing outside registry/ reaches into
a registry's containers (they are private members of the registry classes;
the old global names must not come back).

usage: check_layering.py SOURCE_DIR
"""
import os
import re
import sys

# folder -> folders whose headers it may include (besides its own, the
# public include/ headers and the standard and parser libraries).
ALLOWED = {
    "common": set(),
    "units": {"common"},
    "xml": {"common"},
    "registry": {"common", "units"},
    "langfile": {"common", "registry", "units", "xml"},
    "setup": {"common", "registry", "units", "xml", "langfile"},
    "capi": {"common", "registry", "units", "xml", "langfile", "setup"},
    # The tool is a client of libxun.so: xun.h and its own files only.
    "tools": set(),
}
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.M)
CONTAINERS = re.compile(
    r"\b(UnitList_|UnitMap_|UnitStringMap_|ItemTypeList_|ItemTypeMap_|ItemTypeStringMap_|"
    r"FilterList_|FilterMap_|FilterStringMap_|ProductFilter_)\b")


def main():
    root = sys.argv[1]
    problems = []
    edges = {folder: set() for folder in ALLOWED}
    for folder in ALLOWED:
        for name in sorted(os.listdir(os.path.join(root, folder))):
            if not name.endswith((".h", ".cpp")):
                continue
            path = os.path.join(folder, name)
            with open(os.path.join(root, path), encoding="utf-8") as source:
                text = source.read()
            for include in INCLUDE.findall(text):
                target = include.split("/")[0] if "/" in include else None
                if target is None or target == folder or target not in ALLOWED:
                    continue
                edges[folder].add(target)
                if target not in ALLOWED[folder]:
                    problems.append(f"{path} includes {include}: {folder}/ may not depend on {target}/")
            if folder != "registry":
                code = re.sub(r"//[^\n]*", "", text)
                for match in CONTAINERS.finditer(code):
                    problems.append(f"{path} names the registry container {match.group(1)}")
    # No cycle among the folders.
    state = {}

    def visit(folder, trail):
        if state.get(folder) == "done":
            return
        if state.get(folder) == "open":
            problems.append("include cycle: " + " -> ".join(trail + [folder]))
            return
        state[folder] = "open"
        for target in sorted(edges[folder]):
            visit(target, trail + [folder])
        state[folder] = "done"

    for folder in sorted(ALLOWED):
        visit(folder, [])
    for problem in problems:
        print(problem)
    if problems:
        return 1
    print("module folders depend on each other along the allowed edges only, without cycles")
    return 0


if __name__ == "__main__":
    sys.exit(main())
