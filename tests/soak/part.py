# What all parts of the soak use: counts, progress, failures, and figures that may not grow.
import statistics
import time

PROGRESS_SECONDS = 15
FAILURES_SHOWN = 20
FEWEST_VALUES = 20  # with fewer values, growth is not checked


class Series:
    """A figure that is measured again and again and may not grow. The first tenth is the warm-up and is left out."""

    def __init__(self, name, unit, allowed, allowed_share=0.0):
        """The last quarter may be larger than the first one by `allowed` plus `allowed_share` of the first."""
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
    """A part of the soak while it runs: its counts, figures and failures."""

    def __init__(self, name, is_short):
        self.name, self.is_short = name, is_short
        self.begun = time.monotonic()
        self.shown, self.stopped = self.begun, False
        self.counts, self.wanted, self.failures, self.series = {}, {}, [], []

    def want(self, what, count):
        """Sets the least count of a full run. The report says so if a run has less."""
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
        """Prints the counts, a few times a minute."""
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

