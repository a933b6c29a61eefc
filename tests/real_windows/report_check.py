#!/usr/bin/env python3
"""Checks that the report and its XML agree on all tests.  report_check.py FOLDER PROGRAMS-CHOSEN (0: all)"""
import collections
import re
import sys
import xml.etree.ElementTree as xml

folder, chosen = sys.argv[1], int(sys.argv[2])
text = open(folder + "/kestraboot-tests.txt", encoding="utf-8-sig", newline="").read()
assert "\n" not in text.replace("\r\n", ""), "a line does not end as Notepad wants it"
lines = text.split("\r\n")

counted = collections.Counter()
program, of_text = "", collections.Counter()
for line in lines[lines.index("Each test"):]:
    test = re.match(r" {8}(passed|FAILED|skipped) +(\d+) ms  (\S.*)$", line)
    if test:
        of_text[program, test.group(3), test.group(1).lower()] += 1
        counted[test.group(1).lower()] += 1
    elif line.startswith("    "):
        program = line.strip()

of_xml = collections.Counter()
suites = list(xml.parse(folder + "/kestraboot-tests.xml").getroot().iter("testsuite"))
for suite in suites:
    for case in suite.iter("testcase"):
        told = next(iter(case), None)
        outcome = "passed" if told is None else {"failure": "failed"}.get(told.tag, told.tag)
        group = case.get("classname").removeprefix(suite.get("name")).removeprefix(".")
        of_xml[suite.get("name"), (group + "." if group else "") + case.get("name"), outcome] += 1
assert of_text == of_xml, f"report and XML differ: {(of_text - of_xml) + (of_xml - of_text)}"
assert all(times == 1 for times in of_text.values()), "a test is reported twice"

summary = re.search(r"^(\d+) passed, (\d+) failed, (\d+) skipped\r?$", text, re.M)
assert [int(number) for number in summary.groups()] == [counted[word] for word in ("passed", "failed", "skipped")]
reasons = text[text.index("Skipped, and why"):text.index("Each test")]
assert sum(int(number) for number in re.findall(r"^    (\d+)  \S", reasons, re.M)) == counted["skipped"]

programs = re.findall(r"^ *run +(\S+)", open(folder + "/bin/programs.txt").read(), re.M)
left_out = set(re.findall(r"^leave-out +(\S+)", open(folder + "/bin/programs.txt").read(), re.M))
ran = {suite.get("name") for suite in suites} - left_out
assert len(ran) == (chosen or len(programs)) and ran <= set(programs), f"ran: {sorted(ran)}"
assert left_out <= {suite.get("name") for suite in suites}, "a program that is left out has no tests"
for word in ("Windows", "Edition", "Processors", "Rights", "Language", "Took"):
    assert re.search(rf"^{word} +\S", text, re.M), f"{word} is missing"
print(f"{len(ran)} programs: {summary.group(0).strip()}; the XML says the same")
