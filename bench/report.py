#!/usr/bin/env python3
"""Prints the benchmark's results as a table: report.py RESULTS [--python FIGURES] [--compare BASELINE] [--save FILE].

RESULTS is what the benchmark writes with --benchmark_out. FIGURES is the output of python_frames.py. The times of
BASELINE, earlier results, stand beside the new ones. --save writes what a later run can be compared with: the figures
without the name of the machine.
"""

import argparse
import json


def results(path):
    """The benchmarks of a file by their names."""
    with open(path, encoding="utf-8") as file:
        return {each["name"]: each for each in json.load(file)["benchmarks"] if "error_message" not in each}


parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
parser.add_argument("results")
parser.add_argument("--python")
parser.add_argument("--compare")
parser.add_argument("--save")
arguments = parser.parse_args()

python = {}
if arguments.python:
    with open(arguments.python, encoding="utf-8") as figures:
        python = json.load(figures)
baseline = results(arguments.compare) if arguments.compare else {}

print(f"{'':42}{'ms':>9}{'x memcpy':>10}" + f"{'before':>9}{'change':>9}" * bool(baseline) + f"{'Python':>9}" * bool(python))
for name, each in results(arguments.results).items():
    milliseconds = each["real_time"]
    row = f"{name:42}{milliseconds:9.3f}"
    row += f"{each['x_memcpy']:10.1f}" if "x_memcpy" in each else " " * 10
    if name in baseline:
        before = baseline[name]["real_time"]
        row += f"{before:9.3f}{100 * (milliseconds / before - 1):+8.0f}%"
    elif baseline:
        row += " " * 18
    kind = name.split("/")
    if kind[0] == "Decode" and kind[2] == "4096" and kind[1] in python:
        row += f"{python[kind[1]]:9.1f}"
    print(row)

if arguments.save:
    kept = [{key: each[key] for key in ("name", "real_time", "x_memcpy") if key in each}
            for each in results(arguments.results).values()]
    with open(arguments.save, "w", encoding="utf-8") as file:
        json.dump({"benchmarks": kept}, file, indent=1)
        file.write("\n")
