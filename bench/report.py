#!/usr/bin/env python3
"""Turns Google Benchmark JSON output into a short report of ratios.

Every benchmark BM_Name/args is paired with BM_NameBaseline/args measured in the same run;
the ratio is the benchmark's time per iteration divided by its baseline's. Targets, where the
team has set one, are a maximum ratio. The rates a run reports (items_per_second and counters
named *_per_second) are shown beside it and its baseline.
"""
import json
import sys

# Maximum ratio to the baseline, by benchmark name without arguments.
TARGETS = {
    "BM_EngineCompile": 1.5,
}

# What the items of a benchmark are, where "items" would say too little.
ITEMS = {
    "BM_EngineCompile": "rules",
    "BM_EngineCompileBaseline": "rules",
    "BM_CbfReview": "keys",
    "BM_CbfReviewBaseline": "keys",
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
            runs[b["name"]] = b
    return runs, context


def split(name):
    base, _, args = name.partition("/")
    return base, args


def si(value):
    for factor, prefix in ((1e9, "G"), (1e6, "M"), (1e3, "k")):
        if abs(value) >= factor:
            return "%.3g%s" % (value / factor, prefix)
    return "%.3g" % value


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


def main(paths):
    runs, context = load(paths)
    lines = [
        "| benchmark | time per iteration | baseline | ratio | target | met | rates "
        "| baseline rates |",
        "|---|---|---|---|---|---|---|---|",
    ]
    failed = False
    for name, run in runs.items():
        base, args = split(name)
        if base.endswith("Baseline"):
            continue
        baseline = runs.get(base + "Baseline" + ("/" + args if args else ""))
        unit = run["time_unit"]
        figure = "%.4g %s" % (run["real_time"], unit)
        if baseline is None:
            lines.append("| %s | %s | | | | | %s | |" % (name, figure, rates(run)))
            continue
        ratio = run["real_time"] / baseline["real_time"]
        target = TARGETS.get(base)
        met = "" if target is None else ("yes" if ratio <= target else "no")
        failed |= met == "no"
        lines.append("| %s | %s | %.4g %s | %.2f | %s | %s | %s | %s |" % (
            name, figure, baseline["real_time"], baseline["time_unit"], ratio,
            "" if target is None else "<= %.2f" % target, met, rates(run), rates(baseline)))
    host = context.get("host_name", "?")
    cpus = context.get("num_cpus", "?")
    print("Benchmark report (host %s, %s CPUs); ratio = time / baseline time, same run\n"
          % (host, cpus))
    print("\n".join(lines))
    return 1 if failed else 0


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit("usage: report.py RESULT.json [RESULT.json ...]")
    sys.exit(main(sys.argv[1:]))
