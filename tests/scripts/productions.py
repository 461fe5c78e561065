#!/usr/bin/env python3
"""Compares the numbers that stand in a grammar with those that bison gives its productions.

    productions.py GRAMMAR.y

A number stands in a comment at the end of its production. In the generated parser a production has
the number of bison's report plus 1. Prints a line for each difference; returns 1 if there was any.
"""

import os
import re
import subprocess
import sys
import tempfile

TOKEN = re.compile(r'^%token\s+(?:<\w+>\s+)?(\w+)\s+("[^"]*")', re.MULTILINE)
PART = re.compile(r"/\*\s*(\d+)[^*]*\*/|([A-Za-z]\w*):|(%empty|\w+)|([|;])")
REPORTED = re.compile(r"^ *(\d+) +(?:([$@\w]+):|\|) ?(.*)$")


def without_actions(rules):
    """The rules with their actions taken out; a comment inside of an action goes with it."""
    text, depth = [], 0
    for c in rules:
        if c == "}":
            depth -= 1
        elif c == "{":
            depth += 1
        elif depth == 0:
            text.append(c)
    return "".join(text)


def written(path):
    """(number, production) for each production of the grammar, the number None where none stands."""
    with open(path, encoding="utf-8") as grammar:
        declarations, rules = grammar.read().split("\n%%\n")[:2]
    names = dict(TOKEN.findall(declarations))
    productions, left, right, number = [], None, [], None

    def close():
        productions.append((number, f"{left}: {' '.join(right)}".strip()))

    for comment, name, symbol, mark in PART.findall(without_actions(rules)):
        if comment:
            number = int(comment)
        elif name:
            left, right, number = name, [], None
        elif symbol:
            right += [] if symbol == "%empty" else [names.get(symbol, symbol)]
        else:
            close()
            right, number = [], None
    return productions


def reported(path):
    """(number, production) for each production of the report but those of actions inside of others."""
    with tempfile.TemporaryDirectory() as folder:
        report = os.path.join(folder, "report")
        subprocess.run(["bison", "-Wnone", "-v", "--report-file=" + report,
                        "--output=" + os.path.join(folder, "parser.c"), os.path.abspath(path)],
                       check=True, cwd=folder, env={**os.environ, "LC_ALL": "C"})
        with open(report, encoding="utf-8") as lines:
            grammar = ("\n" + lines.read()).split("\nGrammar\n")[1].split("\nTerminals")[0]
    productions, left = [], None
    for line in grammar.splitlines():
        found = REPORTED.match(line)
        if not found:
            continue
        number, name, right = found.groups()
        left = name or left
        if left.startswith("$"):
            continue
        right = re.sub(r"\$?@\d+ ?|%empty", "", right).strip()
        productions.append((int(number) + 1, f"{left}: {right}".strip()))
    return productions


def check(path):
    ours, theirs = written(path), reported(path)
    faults = 0
    for (number, production), (right, name) in zip(ours, theirs):
        if (number, production) != (right, name):
            print(f"{production} has {number}, bison has {right} for {name}")
            faults += 1
    if len(ours) != len(theirs):
        print(f"{len(ours)} productions are numbered, bison has {len(theirs)}")
        faults += 1
    if not faults:
        print(f"{len(ours)} productions")
    return faults


if __name__ == "__main__":
    sys.exit(1 if check(sys.argv[1]) else 0)
