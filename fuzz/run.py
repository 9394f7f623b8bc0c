#!/usr/bin/env python3
"""Runs the fuzz targets. ./dev fuzz builds them and calls this program.

usage: run.py PROGRAMS [--seconds N] TARGET   fuzz one target
       run.py PROGRAMS --minutes N            share N minutes out over all targets, on all processors
       run.py PROGRAMS --rates                measure how many inputs each target takes in a second, on one processor
       run.py PROGRAMS --test                 replay all seeds, and fuzz each target a little, always in the same way
       run.py PROGRAMS --merge                choose the fewest seeds, of those that runs have found, that reach all that is reached

PROGRAMS is the folder of the programs. What a run has found is kept beside it: inputs that reach something new, from
which the next run goes on, and findings, the inputs that failed.
"""

import argparse
import concurrent.futures
import ctypes
import dataclasses
import os
import re
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
FORMATS = ("mrc", "dm", "ser", "emi", "npy", "raw", "bin", "lattice")


@dataclasses.dataclass
class Target:
    """A target of fuzz_lumora, or another program of the same name, and what it needs."""
    name: str
    # The folders of its seeds in fuzz/corpus. If there are several, they belong to other targets.
    folders: tuple
    # How many inputs it should take in a second.
    rate: int
    # Runs of --test: a second or two of work.
    runs: int
    longest: int = 4096
    dictionary: str = ""
    program: str = "fuzz_lumora"
    options: tuple = ()


# Where a corpus has many features, the fuzzer would spend half of the time on its own account of the rare ones.
WITHOUT_RARITY = ("-entropic=0",)

# How often a loop over a text has run says nothing new about the text, but the fuzzer would keep an input for each count
# and spend most of the time on comparing counts. Other targets of the same code count.
WITHOUT_COUNTS = ("-use_counters=0",)


def all_targets():
    header_options = {"dm": WITHOUT_RARITY, "lattice": WITHOUT_COUNTS}
    for name in FORMATS:
        yield Target(f"headers_{name}", (name,), 10000, 10000, longest=12288, dictionary=name,
                     options=header_options.get(name, ()))
        yield Target(f"pictures_{name}", (name,), 1000, 4000, longest=12288, dictionary=name)
    for name in ("headers_hdf", "pictures_hdf"):
        yield Target(name, ("hdf",), 250, 1000, longest=16384, dictionary="hdf", options=WITHOUT_RARITY)
    yield Target("boundary", ("boundary",), 1000, 5000, program="fuzz_boundary")
    for name in ("built_dm", "built_emi", "built_ser"):
        yield Target(name, (name,), 1000, 4000)
    yield Target("frames", ("frames",), 1000, 4000)
    yield Target("copies", ("copies",), 10000, 10000, longest=64)
    yield Target("properties", FORMATS, 10000, 10000, longest=12288, options=WITHOUT_COUNTS)
    yield Target("facts", ("facts",), 10000, 10000)
    yield Target("identification", ("identification",), 10000, 10000, longest=64, dictionary="identification")
    yield Target("lattice_header", ("lattice_header",), 10000, 10000, longest=512, dictionary="lattice")
    yield Target("npy_dictionary", ("npy_dictionary",), 10000, 10000, longest=246, dictionary="npy")
    yield Target("json", ("json",), 10000, 10000)


TARGETS = {target.name: target for target in all_targets()}


@dataclasses.dataclass
class Result:
    target: Target
    inputs: int
    # Of the processor, and on the clock.
    processor_seconds: float
    seconds: float
    # Edges that are reached by the seeds, and by everything.
    edges_at_first: int
    edges: int
    has_failed: bool
    output: str


class Runner:
    def __init__(self, programs):
        self.programs = os.path.abspath(programs)
        self.work = os.path.dirname(self.programs)
        self.findings = os.path.join(self.work, "findings")

    def folder(self, *names):
        path = os.path.join(self.work, *names)
        os.makedirs(path, exist_ok=True)
        return path

    def run(self, target, *arguments):
        """Runs a target to the end, or until an input fails."""
        self.folder("findings")
        command = [os.path.join(self.programs, target.program), f"--target={target.name}", f"-max_len={target.longest}",
                   "-timeout=10", "-rss_limit_mb=2048", "-print_final_stats=1",
                   f"-artifact_prefix={self.findings}/{target.name}-", *target.options, *arguments]
        if target.dictionary and os.path.exists(f"{HERE}/dictionaries/{target.dictionary}"):
            command.append(f"-dict={HERE}/dictionaries/{target.dictionary}")
        log = os.path.join(self.folder("logs"), target.name)
        began = time.monotonic()
        with open(log, "wb") as output:
            process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output, stderr=output)
            _, status, usage = os.wait4(process.pid, 0)
        process.returncode = os.waitstatus_to_exitcode(status)
        with open(log, errors="replace") as output:
            text = output.read()
        inputs = re.search(r"stat::number_of_executed_units: +(\d+)", text)
        seeds = re.search(r"^#\d+\tINITED .*?cov: (\d+)", text, re.M)
        edges = re.findall(r"^#\d+\t\w+ .*?cov: (\d+)", text, re.M)
        return Result(target, int(inputs[1]) if inputs else 0, usage.ru_utime + usage.ru_stime,
                      time.monotonic() - began, int(seeds[1]) if seeds else 0, int(edges[-1]) if edges else 0,
                      process.returncode != 0, text)

    def seed_folders(self, target):
        return [path for path in (f"{HERE}/corpus/{name}" for name in target.folders) if os.path.isdir(path)]

    def run_on_seeds(self, target, runs):
        """Runs the seeds, the inputs that once failed, and so many inputs made of them: always the same ones."""
        folders = [*self.seed_folders(target), f"{HERE}/regressions"]
        seeds = [entry.path for folder in folders for entry in sorted(os.scandir(folder), key=lambda entry: entry.name)
                 if not entry.name.startswith(".")]
        listed = os.path.join(self.folder("lists"), target.name)
        with open(listed, "w") as names:
            names.write(",".join(seeds))
        return self.run(target, "-seed=1", f"-runs={len(seeds) + runs}", f"-seed_inputs=@{listed}")

    def replay(self, target):
        return self.run(target, "-runs=0", *self.seed_folders(target), f"{HERE}/regressions")

    def fuzz(self, target, seconds):
        return self.run(target, f"-max_total_time={seconds}", self.folder("inputs", target.name),
                        *self.seed_folders(target), f"{HERE}/regressions")

    def take_found(self, folder):
        """Takes what the fuzzer has found out of the seeds, so that a merge chooses anew."""
        for entry in list(os.scandir(f"{HERE}/corpus/{folder}")):
            if re.fullmatch("[0-9a-f]{40}", entry.name):
                os.replace(entry.path, os.path.join(self.folder("found", folder), entry.name))

    def merge(self, target):
        folder = target.folders[0]
        seeds = f"{HERE}/corpus/{folder}"
        os.makedirs(seeds, exist_ok=True)
        return self.run(target, "-merge=1", seeds, self.folder("found", folder), self.folder("inputs", target.name))


def show_failure(result):
    """The part of the output that tells what has failed."""
    lines = result.output.splitlines()
    signs = [i for i, line in enumerate(lines) if "ERROR" in line or "runtime error" in line]
    first = signs[0] if signs else max(0, len(lines) - 40)
    print(f"\n{result.target.name} has failed:", *lines[first:first + 40], sep="\n")


def show_table(results):
    print(f"{'target':16} {'inputs':>10} {'seconds':>8} {'a second':>9} {'edges':>6} {'new':>5}  findings")
    for result in results:
        print(f"{result.target.name:16} {result.inputs:10} {result.seconds:8.0f} "
              f"{result.inputs / result.processor_seconds:9.0f} {result.edges:6} "
              f"{result.edges - result.edges_at_first:5}  {1 if result.has_failed else 0}")


def run_all(work):
    """Runs all targets, as many at a time as there are processors. Returns the results in the order of the targets."""
    with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        return list(pool.map(work, TARGETS.values()))


def fix_addresses():
    """Lets the programs have the same addresses in every run: the fuzzer also learns from addresses that it sees."""
    no_randomisation = 0x0040000
    ctypes.CDLL(None).personality(no_randomisation)


def show_rates(runner):
    slow = False
    print(f"{'target':16} {'a second':>9} {'wanted':>7}")
    for target in TARGETS.values():
        result = runner.run_on_seeds(target, 5 * target.rate)
        if result.has_failed:
            show_failure(result)
            return True
        rate = result.inputs / result.processor_seconds
        slow = slow or rate < target.rate
        print(f"{target.name:16} {rate:9.0f} {target.rate:7}{'  too slow' if rate < target.rate else ''}", flush=True)
    return slow


def main():
    parser = argparse.ArgumentParser(usage=__doc__.split("usage: ")[1])
    parser.add_argument("programs")
    parser.add_argument("target", nargs="?", choices=TARGETS)
    parser.add_argument("--seconds", type=int, default=60)
    parser.add_argument("--minutes", type=float)
    for action in ("rates", "test", "replay", "merge"):
        parser.add_argument(f"--{action}", action="store_true")
    options = parser.parse_intermixed_args()
    runner = Runner(options.programs)
    if options.test or options.rates:
        fix_addresses()

    if options.rates:
        sys.exit(show_rates(runner))
    if options.target:
        results = [runner.fuzz(TARGETS[options.target], options.seconds)]
    elif options.test:
        results = run_all(lambda target: runner.run_on_seeds(target, target.runs))
    elif options.replay:
        results = run_all(runner.replay)
    elif options.merge:
        # One after another: two targets can share a folder of seeds.
        for folder in os.listdir(f"{HERE}/corpus"):
            runner.take_found(folder)
        results = [runner.merge(target) for target in TARGETS.values() if len(target.folders) == 1]
        sys.exit(any(result.has_failed for result in results))
    elif options.minutes:
        seconds = options.minutes * 60 * len(os.sched_getaffinity(0)) / len(TARGETS)
        results = run_all(lambda target: runner.fuzz(target, max(1, round(seconds))))
    else:
        parser.error("name a target, or one of the options")
    for result in results:
        if result.has_failed:
            show_failure(result)
    show_table(results)
    if any(result.has_failed for result in results):
        sys.exit(f"The inputs that failed are in {runner.findings}; keep them in fuzz/regressions.")


if __name__ == "__main__":
    main()
