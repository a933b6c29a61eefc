#!/usr/bin/env python3
"""Checks the runner's report on the planted programs.  expect.py FOLDER SCREEN EXIT-CODE"""
import re
import sys
import xml.etree.ElementTree as xml

EXPECTED = {  # outcome, and a part of the text
    "planted_tests (the program)": ("failure", "has no test to skip by the name Planted.Missing*"),
    "planted_tests Planted.Passes": ("", ""),
    "planted_tests Planted.Fails": ("failure", "as planted <&?>"),
    "planted_tests Planted.IsSkippedByItself": ("skipped", "no reason"),
    "planted_tests Planted.IsSkippedByTheList": ("skipped", "for no reason"),
    "planted_tests Planted.Crashes": ("failure", "exited with code 0xC0000005 (access violation)"),
    "planted_tests Planted.EndsTheProcess": ("failure", "the program exited with code 0"),
    "planted_tests Planted.HangsUnderTheWatchdog": ("failure", "exited with code 99 (hangs: terminated by the watchdog)"),
    "planted_tests Planted.PassesAfterAll": ("", ""),
    "planted_hang_tests (the program)": ("failure", "after its last test: the program exited with code 5"),
    "planted_hang_tests Hang.WithAChildThatHangsToo": ("failure", "hangs: no output for 14 seconds"),
    "planted_hang_tests Hang.Passes": ("", ""),
    "bare/planted_tests (the program)": ("failure", "cannot be listed: the program exited with code 0xC0000135"),
    "missing_tests (the program)": ("failure", "the program cannot be started: error 2"),
    "left_out_tests Left.Out": ("skipped", "they are not there"),
}

folder, screen, code = sys.argv[1], open(sys.argv[2]).read(), sys.argv[3]
wrong = []
seen = {}
for suite in xml.parse(folder + "/kestraboot-tests.xml").getroot().iter("testsuite"):
    for case in suite.iter("testcase"):
        group = case.get("classname").removeprefix(suite.get("name")).removeprefix(".")
        name = suite.get("name") + " " + (group + "." if group else "") + case.get("name")
        told = next(iter(case), None)
        seen[name] = ("", "") if told is None else (told.tag, told.get("message"))
for name in EXPECTED.keys() | seen.keys():
    outcome, text = EXPECTED.get(name, ("not expected", ""))
    got = seen.get(name, ("missing", ""))
    if got[0] != outcome or text not in got[1]:
        wrong.append(f"{name}: {outcome} ({text}) was expected; it is {got}")

failed = [name for name, (outcome, _) in EXPECTED.items() if outcome == "failure"]
summary = f"3 passed, {len(failed)} failed, 3 skipped"
text = open(folder + "/kestraboot-tests.txt", encoding="utf-8-sig", errors="replace", newline="").read()
for where, what in (("the screen", screen), ("the report", text)):
    if summary not in what:
        wrong.append(f"{where} does not say: {summary}")
for name in failed:
    program, test = name.split(" ", 1)
    if not re.search(rf"^FAILED  {re.escape(program)}  {re.escape(test)}\r?$", screen, re.M):
        wrong.append(f"the screen does not name {name}")
    if f"    {program}  {test}\r\n" not in text:
        wrong.append(f"the report does not name {name}")
if code != "1":
    wrong.append(f"exit code {code}, not 1")
print("\n".join(wrong) or f"{len(EXPECTED)} planted results, each as expected")
sys.exit(bool(wrong))
