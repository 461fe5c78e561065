#!/usr/bin/env python3
"""Compares what sources include with the table of layers in docs/architecture.md.

    layers.py FOLDER    the folder with src/, tool/, policy/, lab/ and docs/

The page has a table for src/, with a column that says what is open to tool/, and one for policy/.

Prints a line for each include that does not run downwards, for each file without a layer and for
each pattern of the table that fits no file; returns 1 if there was any.
"""

import os
import re
import sys

ROW = re.compile(r"\| *([^|]+?) *\| *((?:`[^`|]+`[, ]*)+)\| *(yes)? *\|")
POLICY_ROW = re.compile(r"\| *([^|]+?) *\| *((?:`[^`|]+`[, ]*)+)\|()")
HEAD = re.compile(r"\| *Layer *\| *Files in `(\w+)/` *\|")
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)', re.MULTILINE)
SOURCES = (".h", ".cpp", ".inc", ".l", ".y")


def stem(name):
    return os.path.splitext(name)[0]


class Table:
    """The rows from top to bottom; a layer may have several."""

    def __init__(self, path, folder, form):
        self.layers, self.rows = [], []
        here = False
        with open(path, encoding="utf-8") as page:
            for line in page:
                head = HEAD.match(line)
                here = head.group(1) == folder if head else here and line.startswith("|")
                row = form.match(line) if here else None
                if row is None:
                    continue
                layer, patterns, is_open = row.groups()
                if layer not in self.layers:
                    self.layers.append(layer)
                for pattern in re.findall("`([^`]+)`", patterns):
                    self.rows.append((pattern, layer, is_open is not None))
        self.used = set()

    def row(self, name):
        """The row of a file: of its whole name, else of its ending, else of its longest beginning."""
        best = None
        for pattern, layer, is_open in self.rows:
            if pattern.startswith("*"):
                rank = (1, len(pattern)) if name.endswith(pattern[1:]) else None
            elif pattern.endswith("*"):
                rank = (0, len(pattern)) if name.startswith(pattern[:-1]) else None
            else:
                rank = (2, 0) if name == pattern else None
            if rank is not None and (best is None or rank > best[0]):
                best = (rank, pattern, layer, is_open)
        if best is None:
            return None, False
        self.used.add(best[1])
        return best[2], best[3]


def sources(root, folder):
    """Names of the folder's sources with what each includes of the tree."""
    found = {}
    for name in sorted(os.listdir(os.path.join(root, folder))):
        if name.endswith(SOURCES):
            with open(os.path.join(root, folder, name), encoding="utf-8") as source:
                found[name] = [other for mark, other in INCLUDE.findall(source.read())
                               if mark == '"' or os.path.exists(os.path.join(root, "src", other))]
    return found


def upwards(folder, found, table):
    """Includes of a folder's files among themselves that do not run downwards; files without a layer."""
    faults = [f"{folder}/{name}: no layer in docs/architecture.md"
              for name in sorted({stem(name) for name in found}) if table.row(name)[0] is None]
    for name, included in found.items():
        layer, _ = table.row(stem(name))
        for other in included:
            above, _ = table.row(stem(other)) if other in found else (None, False)
            if None in (layer, above):
                continue
            if table.layers.index(above) < table.layers.index(layer):
                faults.append(f"{folder}/{name} ({layer}) includes {other} ({above}), a layer above")
    return faults


def check(root):
    page = os.path.join(root, "docs/architecture.md")
    table, policy_table = Table(page, "src", ROW), Table(page, "policy", POLICY_ROW)
    src, tool, policy, lab = (
        sources(root, folder) for folder in ("src", "tool", "policy", "lab"))
    library = {stem(name) for name in src}
    faults = upwards("src", src, table)
    for name, included in src.items():
        faults += [f"src/{name} includes {other}, which is not in src/"
                   for other in included if stem(other) not in library]
    for name, included in tool.items():
        for other in included:
            if other not in tool and not table.row(stem(other))[1]:
                faults.append(f"tool/{name} includes {other}, which is not open to tool/")
    for name, included in policy.items():
        faults += [f"policy/{name} includes {other}, which is not in policy/ or src/"
                   for other in included if other not in policy and stem(other) not in library]
    faults += upwards("policy", policy, policy_table)
    for name, included in lab.items():
        faults += [f"lab/{name} includes {other}, which is not in lab/"
                   for other in included if other not in lab]
    faults += [f"docs/architecture.md: no file for {pattern}"
               for one in (table, policy_table)
               for pattern, _, _ in one.rows if pattern not in one.used]
    return faults


if __name__ == "__main__":
    FAULTS = check(sys.argv[1])
    print("".join(fault + "\n" for fault in FAULTS), end="")
    sys.exit(1 if FAULTS else 0)
