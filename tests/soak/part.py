# What the parts of the soak have in common: counting, progress, failures, and figures that may not grow.
import json
import os
import statistics
import time

PROGRESS_SECONDS = 15
FAILURES_SHOWN = 20
FEWEST_VALUES = 20  # fewer say nothing about growth


class Series:
    """A figure that is taken over and over, and may not grow. The first tenth is the warm-up and does not count."""

    def __init__(self, name, unit, allowed, allowed_share=0.0):
        """`allowed`, and the share of the first figure, is how much the last quarter may lie above the first one."""
        self.name, self.unit, self.allowed, self.allowed_share = name, unit, allowed, allowed_share
        self.values = []

    def take(self, value):
        self.values.append(value)

    def summary(self):
        steady = self.values[len(self.values) // 10:]
        quarter = max(1, len(steady) // 4)
        first, last = statistics.median(steady[:quarter]), statistics.median(steady[-quarter:])
        return {"name": self.name, "unit": self.unit, "first": first, "last": last, "peak": max(self.values),
                "taken": len(self.values), "grows": len(self.values) >= FEWEST_VALUES and
                last - first > self.allowed + self.allowed_share * first}


class Part:
    """One part of the soak while it runs: what was done, and what went wrong."""

    def __init__(self, name, is_short):
        self.name, self.is_short = name, is_short
        self.begun = time.monotonic()
        self.shown, self.stopped = self.begun, False
        self.counts, self.wanted, self.failures, self.series = {}, {}, [], []

    def want(self, what, count):
        """What a full run does at least; a run that does less is reported as one that did not run in full."""
        self.wanted[what] = count
        self.counts.setdefault(what, 0)

    def count(self, what, number=1):
        self.counts[what] = self.counts.get(what, 0) + number

    def fail(self, text):
        self.failures.append(text)
        if len(self.failures) <= FAILURES_SHOWN:
            self.say(f"FAILED: {text}")

    def check(self, condition, text):
        if not condition:
            self.fail(text)
        return condition

    def measure(self, *arguments):
        self.series.append(Series(*arguments))
        return self.series[-1]

    def say(self, text):
        seconds = int(time.monotonic() - self.begun)
        print(f"[{seconds // 60:3d}:{seconds % 60:02d}] {self.name}: {text}", flush=True)

    def progress(self, text=None):
        """Says how far the part is, a few times a minute."""
        if time.monotonic() - self.shown >= PROGRESS_SECONDS:
            self.shown = time.monotonic()
            self.say(text or ", ".join(f"{count:,} {what}" for what, count in self.counts.items()))

    def result(self):
        series = [one.summary() for one in self.series if one.values]
        for one in series:
            if one["grows"]:
                self.fail(f"{one['name']} grows: {one['first']:g} to {one['last']:g} {one['unit']}")
        return {"part": self.name, "short": self.is_short, "counts": self.counts, "wanted": self.wanted,
                "failures": self.failures, "stopped": self.stopped, "series": series, "seconds": round(time.monotonic() - self.begun),
                "date": time.strftime("%Y-%m-%d")}


def keep(result, folder):
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, result["part"] + ".json"), "w", encoding="utf-8") as file:
        json.dump(result, file, indent=1)
