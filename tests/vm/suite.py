"""Checks: in the order in which they are written, with one line about each."""

import sys
import time
import unittest


class Check(unittest.TestCase):
    """A theme's checks. They share the boot's machine; what one leaves there the next one finds."""

    maxDiff = None
    machine = None


class WrittenOrder(unittest.TestLoader):
    def getTestCaseNames(self, theme):
        return [name for name in vars(theme) if name.startswith("test_")]


class Lines(unittest.TestResult):
    """Prints whether a check holds, how long it took, its theme and what it says."""

    def startTest(self, test):
        super().startTest(test)
        self.started = time.monotonic()

    def say(self, outcome, test):
        what = test.id().rpartition(".test_")[2].replace("_", " ")
        print(f"{outcome:6} {time.monotonic() - self.started:4.0f} s  {type(test).__name__}: {what}", flush=True)

    def addSuccess(self, test):
        self.say("ok", test)

    def addFailure(self, test, err):
        super().addFailure(test, err)
        self.say("FAILED", test)
        print(self.failures[-1][1], file=sys.stderr, flush=True)

    def addError(self, test, err):
        super().addError(test, err)
        self.say("FAILED", test)
        print(self.errors[-1][1], file=sys.stderr, flush=True)
