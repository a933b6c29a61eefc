#!/usr/bin/env python3
"""Checks that programs.txt names each test executable of the tree once, run or left out, and nothing else.
   list_check.py PROGRAMS.TXT TEST-EXECUTABLES"""
import collections
import re
import sys

listed = collections.Counter(
    found.group(1).split("/")[-1]
    for found in re.finditer(r"^(?:run|leave-out) +(\S+)", open(sys.argv[1]).read(), re.M))
tree = set(open(sys.argv[2]).read().split())
wrong = [f"{name} is in neither list: can it run on a real Windows?" for name in sorted(tree - listed.keys())]
wrong += [f"{name} is no test executable of the tree" for name in sorted(listed.keys() - tree)]
wrong += [f"{name} is listed {times} times" for name, times in listed.items() if times > 1]
for line in wrong:
    print(f"{sys.argv[1]}: {line}")
if not wrong:
    print(f"{len(tree)} test executables, each run or left out with a reason")
sys.exit(bool(wrong))
