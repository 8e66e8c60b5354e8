"""Runs tests with ctest or with node's runner and reads what they report. Part of scripts/test."""
import json
import re
import subprocess
import sys
import xml.etree.ElementTree as ET
from collections import Counter
from dataclasses import dataclass
from pathlib import Path

PASSED, FAILED, NOT_RUN = "passed", "failed", "not run"

# GoogleTest ends with success where a test skipped itself or is disabled.
SKIPPED_INSIDE = re.compile(r"^\[  SKIPPED \]|^ *YOU HAVE \d+ DISABLED TEST", re.MULTILINE)
SANITIZER_REPORT = re.compile(r"^.*((Address|Leak|Memory|Thread|UndefinedBehavior)Sanitizer|runtime error:)",
                              re.MULTILINE)

# More than any test prints: ctest would cut off the end, where a sanitizer's report stands.
OUTPUT_BYTES = 100_000_000
# For tests that set no limit of their own.
TEST_SECONDS = 300

# Of a long output these many lines are told.
FIRST_LINES, LAST_LINES = 30, 30

REPORTER = Path(__file__).resolve().parent / "test_reporter.mjs"


@dataclass
class Test:
    """What is known of a test. The scope is what runs where it is run again: itself, or the file that it stands in."""
    name: str
    scope: str
    outcome: str
    output: str = ""
    second_output: str = ""
    unsteady: bool = False

    def title(self):
        return self.name if self.name == self.scope else f"{Path(self.scope).name}: {self.name}"

    def may_run_again(self):
        return self.outcome == FAILED and not SANITIZER_REPORT.search(self.output)

    def settle(self, second):
        """Takes in what came of a second run of its scope."""
        again = [test for test in second if self.name in (test.name, self.scope)]
        good = bool(again) and all(test.outcome == PASSED for test in again)
        if self.may_run_again():
            self.outcome, self.unsteady = (PASSED, True) if good else (FAILED, False)
            self.second_output = "\n".join(test.output for test in again) if again else "it did not run"
        elif self.outcome == PASSED and again and not good:
            self.outcome = FAILED
            self.output = "\n".join(["passed, but not when its file was run again", *(test.output for test in again)])


def told_output(output):
    """What of a test's output is told in the end: all, or its begin and end, or a sanitizer's report from its begin."""
    report = SANITIZER_REPORT.search(output)
    lines = output[report.start() if report else 0:].strip().split("\n")
    if len(lines) <= FIRST_LINES + LAST_LINES:
        return "\n".join(lines)
    return "\n".join([*lines[:FIRST_LINES], "[...]", *lines[-LAST_LINES:]])


def run_ctest(folder, options, report, scope="ctest"):
    """The tests of a build folder that ctest chooses by its options."""
    status = run(report, "ctest", "--test-dir", folder, "--output-on-failure", "--no-tests=error",
                 "--timeout", TEST_SECONDS, "--output-junit", report,
                 "--test-output-size-passed", OUTPUT_BYTES, "--test-output-size-failed", OUTPUT_BYTES, *options)
    return accounted(read_junit(report), status, scope)


def run_one_of_ctest(folder, name, report):
    """The test of that name, alone."""
    exactly = "^" + re.sub(r"([][^$.*+?|()\\-])", r"\\\1", name) + "$"
    return run_ctest(folder, ["--tests-regex", exactly, "--parallel", "1"], report, name)


def run_node(file, report):
    """The tests of one file."""
    status = run(report, "node", "--test", "--test-reporter=spec", "--test-reporter-destination=stdout",
                 f"--test-reporter={REPORTER.as_uri()}", f"--test-reporter-destination={report}", file)
    return accounted(read_events(report, str(file)), status, str(file))


def run(report, *command):
    Path(report).unlink(missing_ok=True)
    return subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL, check=False).returncode


def accounted(tests, status, scope):
    """The tests, and one more where the runner failed and none of them did."""
    if not tests:
        return [Test(scope, scope, NOT_RUN, f"no test ran (status {status})")]
    if status != 0 and all(test.outcome == PASSED for test in tests):
        return [*tests, Test(scope, scope, NOT_RUN, f"did not run to its end (status {status})")]
    return tests


def read_junit(report):
    try:
        cases = list(ET.parse(report).getroot().iter("testcase"))
    except (OSError, ET.ParseError) as error:
        print(f"no readable report: {error}", file=sys.stderr)
        return []
    return [junit_test(case) for case in cases]


def junit_test(case):
    name, output = case.get("name"), case.findtext("system-out") or ""
    outcome = {"run": PASSED, "fail": FAILED}.get(case.get("status"), NOT_RUN)
    if outcome == PASSED and SKIPPED_INSIDE.search(output):
        outcome = NOT_RUN
    reasons = [part.get("message") for part in case if part.tag in ("failure", "skipped") and part.get("message")]
    return Test(name, name, outcome, "" if outcome == PASSED else "\n".join([*reasons, output]))


def read_events(report, file):
    """The tests in what test_reporter.mjs has written about a file."""
    tests, above, begun, printed = [], [], Counter(), ""
    try:
        # Texts may have line ends of other kinds.
        events = [json.loads(line) for line in Path(report).read_text(encoding="utf-8").split("\n") if line]
    except (OSError, ValueError) as error:
        print(f"no readable report: {error}", file=sys.stderr)
        return []
    for event in events:
        if event["event"] == "printed":
            printed += event["text"]
            continue
        whole_file = event["nesting"] == 0 and Path(event["name"]).name == Path(file).name
        if event["event"] == "enqueue":
            begun[event["nesting"], event["name"]] += not whole_file
        elif event["event"] == "start":
            above[event["nesting"]:] = [event["name"]]
        else:
            begun[event["nesting"], event["name"]] -= not whole_file
            outcome = node_outcome(event, whole_file)
            if outcome:
                name = file if whole_file else " > ".join([*above[:event["nesting"]], event["name"]])
                tests.append(Test(name, file, outcome, printed + event.get("error", "")))
                printed = ""
    lost = sorted(name for (_, name), count in begun.items() for _ in range(count))
    return tests + [Test(name, file, NOT_RUN, "begun or waiting when its file ended") for name in lost]


def node_outcome(event, whole_file):
    """How a test ended; nothing for groups of tests and files that have nothing to tell but their tests."""
    if event["skipped"]:
        return NOT_RUN
    group = event["suite"] or whole_file
    if event["event"] == "pass":
        return None if group else PASSED
    return None if group and event.get("failure") == "subtestsFailed" else FAILED
