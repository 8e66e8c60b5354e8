#!/usr/bin/python3
"""Keeps how the stages of scripts/test ended, gives tests their second run, and tells all in the end.

    test_ledger.py FOLDER check NAME SECONDS STATUS
    test_ledger.py FOLDER ctest NAME once|twice BUILD_FOLDER CTEST_OPTION...
    test_ledger.py FOLDER node NAME once|twice FILE...
    test_ledger.py FOLDER end
    test_ledger.py FOLDER summary STATUS

FOLDER is for the reports and the ledger, which begins where there is none. `check` notes a stage that counts as one
test; `ctest` and `node` run the tests of a stage. `end` gives second runs: what failed in a stage of "twice" runs once
more, alone; passing then, it counts as passed and is told as unsteady. What did not run, and what a sanitizer accuses,
gets none. `summary` ends with the line "N passed, N failed" and with the exit status of the whole run; STATUS is that
of the script so far.
"""
import json
import re
import sys
import time
import traceback
from dataclasses import asdict, dataclass, field
from pathlib import Path

sys.dont_write_bytecode = True
from test_reports import FAILED, PASSED, Test, accounted, run_ctest, run_node, run_one_of_ctest, told_output


@dataclass
class Stage:
    name: str
    runs: str = "once"
    # Of a stage of ctest.
    build_folder: str = ""
    seconds: float = 0
    tests: list = field(default_factory=list)

    def count(self, passed):
        return sum((test.outcome == PASSED) == passed for test in self.tests)

    def to_run_again(self):
        """The scopes of the tests that get a second run."""
        return list(dict.fromkeys(test.scope for test in self.tests if self.runs == "twice" and test.may_run_again()))

    def settle(self, scope, second):
        """Takes in what came of a second run."""
        first = [test for test in self.tests if test.scope == scope]
        for test in first:
            test.settle(second)
        # A file may have ended before some of its tests.
        self.tests += [test for test in second if test.name not in {known.name for known in first}]


class Ledger:
    def __init__(self, folder):
        self.folder = Path(folder)
        self.stages = []
        self.complete = False

    @property
    def file(self):
        return self.folder / "ledger.json"

    def read(self):
        if not self.file.exists():
            return
        kept = json.loads(self.file.read_text(encoding="utf-8"))
        self.complete = kept["complete"]
        self.stages = [Stage(**stage) for stage in kept["stages"]]
        for stage in self.stages:
            stage.tests = [Test(**test) for test in stage.tests]

    def write(self):
        unfinished = self.file.with_suffix(".new")
        kept = {"complete": self.complete, "stages": [asdict(stage) for stage in self.stages]}
        unfinished.write_text(json.dumps(kept), encoding="utf-8")
        unfinished.replace(self.file)

    def report(self, *parts):
        return self.folder / re.sub(r"[^\w.-]", "-", "-".join(parts))

    def check(self, name, seconds, status):
        outcome = PASSED if status == "0" else FAILED
        test = Test(name, name, outcome, f"status {status}; what it said stands above")
        self.stages.append(Stage(name, seconds=float(seconds), tests=[test]))

    def ctest(self, name, runs, build_folder, *options):
        begun = time.monotonic()
        tests = run_ctest(build_folder, options, self.report(name, "tests.xml"))
        self.stages.append(Stage(name, runs, build_folder, time.monotonic() - begun, tests))

    def node(self, name, runs, *files):
        begun = time.monotonic()
        tests = [test for file in files for test in run_node(file, self.report(name, Path(file).name, "events"))]
        self.stages.append(Stage(name, runs, "", time.monotonic() - begun, tests or accounted([], 0, name)))

    def end(self):
        begun = time.monotonic()
        waiting = [(stage, scope) for stage in self.stages for scope in stage.to_run_again()]
        for stage, scope in waiting:
            print(f"== once more, alone: {stage.name}: {scope}", file=sys.stderr, flush=True)
            if stage.build_folder:
                second = run_one_of_ctest(stage.build_folder, scope, self.report("second", "tests.xml"))
            else:
                second = run_node(scope, self.report("second", "events"))
            stage.settle(scope, second)
        if waiting:
            # Its tests count where they ran first.
            self.stages.append(Stage("second runs", seconds=time.monotonic() - begun))
        self.complete = True

    def summary(self, status):
        """Prints the summary and gives the exit status."""
        passed, failed = (sum(stage.count(outcome) for stage in self.stages) for outcome in (True, False))
        if failed == 0 and (status != "0" or not self.complete):
            failed = 1
        tell("what failed", [(stage, test) for stage in self.stages for test in stage.tests if test.outcome != PASSED])
        print("== summary")
        for stage in self.stages:
            counts = f"{stage.count(passed=True):5d} passed {stage.count(passed=False):5d} failed"
            print(f"{stage.name:<22} {counts}   {stage.seconds:4.0f}s")
        tell("unsteady", [(stage, test) for stage in self.stages for test in stage.tests if test.unsteady])
        print(f"{passed} passed, {failed} failed", flush=True)
        return 1 if failed else 0


def tell(heading, found):
    if found:
        print(f"== {heading}")
    for stage, test in found:
        print(f"--- {stage.name}: {test.title()}")
        print(told_output(test.output))
        if test.second_output and not test.unsteady:
            print("run once more:")
            print(told_output(test.second_output))


def summarized(ledger, status):
    try:
        ledger.read()
        return ledger.summary(status)
    except Exception:
        # Whatever it is, the run has failed and has its last line.
        traceback.print_exc()
        print("0 passed, 1 failed")
        return 1


def main():
    # Tests print whatever they like.
    sys.stdout.reconfigure(errors="backslashreplace")
    folder, command, *words = sys.argv[1:]
    ledger = Ledger(folder)
    if command == "summary":
        sys.exit(summarized(ledger, *words))
    ledger.read()
    {"check": ledger.check, "ctest": ledger.ctest, "node": ledger.node, "end": ledger.end}[command](*words)
    ledger.write()


if __name__ == "__main__":
    main()
