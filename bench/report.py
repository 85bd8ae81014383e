#!/usr/bin/env python3
"""Turns Google Benchmark JSON output into a short report of ratios.

Every benchmark BM_Name/args is paired with BM_NameBaseline/args measured in the same run;
the ratio is the benchmark's time per iteration divided by its baseline's. Targets, where the
team has set one, are a maximum ratio.
"""
import json
import sys

# Maximum ratio to the baseline, by benchmark name without arguments.
TARGETS = {}


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


def main(paths):
    runs, context = load(paths)
    lines = [
        "| benchmark | time per iteration | baseline | ratio | target | met |",
        "|---|---|---|---|---|---|",
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
            lines.append("| %s | %s | | | | |" % (name, figure))
            continue
        ratio = run["real_time"] / baseline["real_time"]
        target = TARGETS.get(base)
        met = "" if target is None else ("yes" if ratio <= target else "no")
        failed |= met == "no"
        lines.append("| %s | %s | %.4g %s | %.2f | %s | %s |" % (
            name, figure, baseline["real_time"], baseline["time_unit"], ratio,
            "" if target is None else "<= %.2f" % target, met))
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
