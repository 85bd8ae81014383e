#!/usr/bin/env python3
"""Turns Google Benchmark JSON output into a short report: each figure, its baseline from the
same run, the ratio, the team's target and whether it is met.

Three kinds of row:
- a benchmark BM_Name/args beside BM_NameBaseline/args: their times per iteration;
- a scaling row, for the benchmarks in SCALING: the time per item at a large argument beside the
  time per item at a small one, both from items_per_second;
- a figure row, for a benchmark that reports its own figure and baseline as counters (figure_s
  and baseline_s in seconds, or figure_bytes alone).
- a limit row, for the counters in LIMITS: the counter's value beside an absolute maximum.
Targets are a maximum ratio, or for a limit row that maximum. The rates a run reports
(items_per_second and counters named *_per_second) are shown beside it.
"""
import json
import re
import sys

# Maximum ratio to the baseline, by benchmark name without arguments; for a benchmark with
# several arguments, only those named in TARGET_ARGS are held to it.
TARGETS = {
    "BM_EngineCompile": 1.5,
    "BM_EngineRecompile": 2.0,
    "BM_AttributeWrite": 3.0,
    "BM_KeyedCollection": 3.0,
    "BM_AsyncDrain": 1.0,
    "BM_CbfReview": 10.0,
}
TARGET_ARGS = {
    "BM_AttributeWrite": {"4"},
}

# Benchmark: (reference argument, measured argument, maximum ratio of the time per item).
SCALING = {
    "BM_InterfaceChurn": ("16", "1024", 1.5),
    "BM_InterfaceChurnMarginal": ("16", "1024", 1.5),
    "BM_RunnerScale": ("10000", "80000", 1.3),
}

# Benchmark name without arguments other than those given: [(counter, what it is, unit,
# maximum)]; the row is named "<name> <what>".
MB = 1024.0 * 1024.0
LIMITS = {
    "BM_ClassCopyMemory": [
        ("figure_bytes", "heap bytes per class copy", "bytes", 1024.0),
        ("blocks", "allocations per class copy", "blocks", 12.0),
    ],
    "BM_InterfaceChurn/1024": [
        ("peak_rss_bytes", "peak resident memory", "MB", 100.0 * MB),
    ],
    "BM_RunnerScale/80000": [
        ("peak_bytes_per_entry", "peak resident memory per TCAM entry", "bytes", 2560.0),
    ],
    "BM_BoundedRecording": [
        ("peak_rss_bytes", "peak resident memory", "MB", 300.0 * MB),
    ],
}

# What the items of a benchmark are, where "items" would say too little.
ITEMS = {
    "BM_EngineCompile": "rules",
    "BM_EngineCompileBaseline": "rules",
    "BM_EngineRecompile": "rules",
    "BM_EngineRecompileBaseline": "rules",
    "BM_CbfReview": "keys",
    "BM_CbfReviewBaseline": "keys",
    "BM_CbfReviewRefused": "keys",
    "BM_CbfReviewRefusedBaseline": "keys",
    "BM_InterfaceChurn": "interface changes",
    "BM_InterfaceChurnMarginal": "interface changes",
    "BM_RunnerScale": "TCAM entries",
    "BM_BoundedRecording": "helper calls",
}

RATE_SUFFIX = "_per_second"


def load(paths):
    runs = {}
    context = None
    for path in paths:
        with open(path) as f:
            data = json.load(f)
        context = context or data.get("context", {})
        for b in data["benchmarks"]:
            if b.get("run_type", "iteration") != "iteration":
                continue
            runs[plain(b["name"])] = b
    return runs, context


def plain(name):
    """The name without the decorations the library adds: /iterations:1, /manual_time."""
    return re.sub(r"/(iterations:\d+|manual_time|real_time)", "", name)


def split(name):
    base, _, args = name.partition("/")
    return base, args


def si(value):
    for factor, prefix in ((1e9, "G"), (1e6, "M"), (1e3, "k")):
        if abs(value) >= factor:
            return "%.3g%s" % (value / factor, prefix)
    return "%.3g" % value


def seconds(value):
    for factor, unit in ((1.0, "s"), (1e-3, "ms"), (1e-6, "us")):
        if abs(value) >= factor:
            return "%.4g %s" % (value / factor, unit)
    return "%.4g ns" % (value * 1e9)


def rates(run):
    """The run's rates as "3.1M rules/s, 4.2M subrules/s"; empty when it reports none."""
    if run is None:
        return ""
    base, _ = split(run["name"])
    shown = []
    for key, value in run.items():
        if not key.endswith(RATE_SUFFIX) or not isinstance(value, (int, float)):
            continue
        what = key[: -len(RATE_SUFFIX)]
        if what == "items":
            what = ITEMS.get(base, what)
        shown.append("%s %s/s" % (si(value), what))
    return ", ".join(shown)


class Row:
    def __init__(self, name, figure, baseline="", ratio=None, target=None, rate="",
                 baseline_rate=""):
        self.name = name
        self.figure = figure
        self.baseline = baseline
        self.ratio = ratio
        self.target = target
        self.rate = rate
        self.baseline_rate = baseline_rate

    def met(self):
        if self.target is None or self.ratio is None:
            return ""
        return "yes" if self.ratio <= self.target else "no"

    def line(self):
        return "| %s | %s | %s | %s | %s | %s | %s | %s |" % (
            self.name, self.figure, self.baseline,
            "" if self.ratio is None else "%.2f" % self.ratio,
            "" if self.target is None else "<= %.2f" % self.target,
            self.met(), self.rate, self.baseline_rate)


def target_of(base, args):
    wanted = TARGET_ARGS.get(base)
    if wanted is not None and args not in wanted:
        return None
    return TARGETS.get(base)


def time_text(run):
    return "%.4g %s" % (run["real_time"], run["time_unit"])


def paired_row(name, run, runs):
    base, args = split(name)
    baseline = runs.get(base + "Baseline" + ("/" + args if args else ""))
    if baseline is None:
        return None
    return Row(name, time_text(run), time_text(baseline),
               run["real_time"] / baseline["real_time"], target_of(base, args), rates(run),
               rates(baseline))


def figure_row(name, run):
    base, args = split(name)
    if "figure_bytes" in run:
        return Row(name, "%s bytes" % si(run["figure_bytes"]), rate=rates(run))
    if "figure_s" in run and "baseline_s" in run:
        return Row(name, seconds(run["figure_s"]), seconds(run["baseline_s"]),
                   run["figure_s"] / run["baseline_s"], target_of(base, args), rates(run))
    return None


def scaling_rows(runs):
    rows = []
    for base, (small, large, target) in SCALING.items():
        reference = runs.get(base + "/" + small)
        measured = runs.get(base + "/" + large)
        if reference is None or measured is None:
            continue
        per_item = [1.0 / r["items_per_second"] for r in (reference, measured)]
        rows.append(Row("%s per item, %s vs %s" % (base, large, small), seconds(per_item[1]),
                        seconds(per_item[0]), per_item[1] / per_item[0], target))
    return rows


def limit_rows(runs):
    rows = []
    for name, limits in LIMITS.items():
        run = runs.get(name)
        if run is None:
            continue
        for counter, what, unit, maximum in limits:
            if counter not in run:
                continue
            scale = MB if unit == "MB" else 1.0
            shown = lambda v: "%s %s" % (si(v / scale), unit)
            value = run[counter]
            rows.append(Row("%s %s" % (name, what), shown(value), ratio=value / maximum,
                            target=1.0, baseline="limit " + shown(maximum)))
    return rows


def main(paths):
    runs, context = load(paths)
    rows = []
    for name, run in runs.items():
        base, _ = split(name)
        if base.endswith("Baseline"):
            continue
        row = paired_row(name, run, runs) or figure_row(name, run)
        rows.append(row or Row(name, time_text(run), rate=rates(run)))
    rows += scaling_rows(runs)
    rows += limit_rows(runs)
    host = context.get("host_name", "?")
    cpus = context.get("num_cpus", "?")
    print("Benchmark report (host %s, %s CPUs); ratio = figure / baseline, same run\n"
          % (host, cpus))
    print("| benchmark | figure | baseline | ratio | target | met | rates | baseline rates |")
    print("|---|---|---|---|---|---|---|---|")
    for row in rows:
        print(row.line())
    missed = [row.name for row in rows if row.met() == "no"]
    print("\nTargets met: %d of %d." % (sum(row.met() == "yes" for row in rows),
                                         sum(row.met() != "" for row in rows)))
    if missed:
        print("Missed: " + ", ".join(missed))
    return 0


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit("usage: report.py RESULT.json [RESULT.json ...]")
    sys.exit(main(sys.argv[1:]))
