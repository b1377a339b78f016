#!/usr/bin/env python3
"""Puts small faults into lumenta/, one at a time, and sees whether the tests notice.

Works on a copy of the tree, in build/mutants. A fault that the compiler refuses, or
that changes no object file, is thrown away, and another one is taken. A fault that the
tests of its own folder let through is shown to all other tests of the library before it
counts as a survivor. `accepted.txt` holds survivors that no test could notice, and why.
"""

import argparse
import hashlib
import json
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import threading
import time
from pathlib import Path

from candidates import in_random_order, mutants_of

TOP = Path(__file__).resolve().parent.parent
WORK = TOP / "build" / "mutants"
TREE = WORK / "tree"
BUILD = WORK / "build"

# Tests of contracts judge whatever has no folder of tests of its own name. Tests of the
# binary contract, of the host and of texts judge nothing.
CONTRACTS = "contracts"
MEMORY = 6_000_000  # KiB; a fault may want all there is
JOBS = 2


def fail(text):
    sys.exit(f"mutate: {text}")


def copy_tree():
    """Makes the copy equal to the tree; what is equal keeps its time, so that it isn't built again."""
    def files(top):
        for folder, folders, names in os.walk(top):
            folders[:] = [f for f in folders if not f.startswith(".") and f != "__pycache__"
                          and (folder != str(top) or f not in ("build", "out"))]
            yield from (Path(folder, name).relative_to(top) for name in names)

    wanted = set(files(TOP))
    for file in set(files(TREE)) - wanted:
        (TREE / file).unlink()
    for file in wanted:
        target = TREE / file
        if not target.exists() or target.read_bytes() != (TOP / file).read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copyfile(TOP / file, target)
            shutil.copymode(TOP / file, target)


def run(*command):
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if result.returncode != 0:
        fail(f"this failed: {' '.join(map(str, command))}\n{result.stdout[-4000:]}")


def ninja(targets):
    return subprocess.run(["ninja", "-C", BUILD, "-j", str(JOBS), *targets], stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL).returncode == 0


class Test:
    def __init__(self, described):
        properties = {p["name"]: p["value"] for p in described["properties"]}
        self.name = described["name"]
        self.command = described["command"]
        self.folder = properties["WORKING_DIRECTORY"]
        self.environment = dict(e.split("=", 1) for e in properties.get("ENVIRONMENT", []))
        self.seconds = 0.0

    def room(self):
        """The name of its folder in tests/."""
        return Path(self.folder).relative_to(BUILD / "tests").parts[0]

    def start(self):
        command = ["sh", "-c", f'ulimit -v {MEMORY}; exec "$@"', "sh", *self.command]
        return subprocess.Popen(command, cwd=self.folder, env={**os.environ, **self.environment},
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)


def find_tests():
    listed = json.loads(subprocess.check_output(["ctest", "--test-dir", BUILD, "--show-only=json-v1"]))
    tests = [Test(t) for t in listed["tests"] if Path(t.get("command", "-")[0]).parent == BUILD / "tests"]
    return [t for t in tests if t.room() == CONTRACTS or (TOP / "lumenta" / t.room()).is_dir()]


def end(process):
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()


def judge(tests, limits=True):
    """Runs tests until one fails: (failure, crash or timeout, its name), or None."""
    waiting, verdicts, lock = list(tests), [], threading.Lock()

    def work():
        while True:
            with lock:
                if not waiting or verdicts:
                    return
                test = waiting.pop(0)
            began, process, how = time.monotonic(), test.start(), None
            limit = 15 + 5 * test.seconds if limits else 600
            while process.poll() is None and not verdicts:
                if time.monotonic() - began > limit:
                    how = "timeout"
                    break
                time.sleep(0.01)
            if process.poll() is None:
                end(process)
            elif process.returncode != 0:
                how = "crash" if process.returncode < 0 or process.returncode > 127 else "failure"
            if how:
                with lock:
                    verdicts.append((how, test.name))
            elif not limits:
                test.seconds = time.monotonic() - began

    workers = [threading.Thread(target=work) for _ in range(JOBS)]
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    return verdicts[0] if verdicts else None


class Laboratory:
    """The built copy, its tests, and how its object files look without a fault."""

    def __init__(self):
        copy_tree()
        run("cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "--log-level=WARNING", "-DCMAKE_BUILD_TYPE=",
            "-DCMAKE_CXX_FLAGS=-O2", "-DCMAKE_CXX_COMPILER_LAUNCHER=", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
            "-DLUMENTA_BUILD_BENCHMARKS=OFF", "-DLUMENTA_BUILD_REFERENCE=OFF")
        self.tests = find_tests()
        self.targets = ["lumenta-core", *(t.name for t in self.tests)]
        run("ninja", "-C", BUILD, "-j", str(JOBS), *self.targets)
        if verdict := judge(self.tests, limits=False):
            fail(f"without any fault, {verdict[1]} fails: {verdict[0]}")
        self.tests.sort(key=lambda t: t.seconds)
        self.objects = {path: digest(path) for path in BUILD.rglob("*.o")}

    def tests_of(self, file):
        folder = Path(file).parts[1]
        return ([t for t in self.tests if t.room() == folder]
                or [t for t in self.tests if t.room() == CONTRACTS])

    def build(self, targets):
        """(whether it could be built, whether any object file came out different)"""
        began = time.time_ns()
        if not ninja(targets):
            return False, False
        touched = [path for path in self.objects if path.stat().st_mtime_ns >= began]
        return True, any(digest(path) != self.objects[path] for path in touched)

    def try_out(self, mutant, text):
        """What became of it: (how it ended, test that noticed)."""
        source = TREE / mutant.file
        source.write_text(text[:mutant.start] + mutant.text + text[mutant.end:])
        first = self.tests_of(mutant.file)
        built, changed = self.build(["lumenta-core", *(t.name for t in first)])
        is_header = mutant.file.endswith(".h")
        if built and is_header and not changed:
            built, changed = self.build(self.targets)
        if not built:
            return "not compiled", ""
        if not changed:
            return "no change", ""
        verdict = judge(first)
        if not verdict:
            # A header stands in the programs of other tests, too: also that of the last mutant.
            if not self.build(self.targets)[0]:
                return "not compiled", ""
            verdict = judge([t for t in self.tests if t not in first])
        return verdict or ("survived", "")


def digest(path):
    return hashlib.sha256(path.read_bytes()).digest()


def read_accepted():
    """{(file, line): {what it becomes, * for whatever: reason}}"""
    accepted, file, before, after = {}, "", "", ""
    for line in (TOP / "mutation" / "accepted.txt").read_text().splitlines():
        mark, rest = line[:2], line[2:]
        if mark == "- ":
            before = rest
        elif mark == "+ ":
            after = rest
        elif mark == "= ":
            accepted.setdefault((file, before), {})[after] = rest
        elif line and mark != "# ":
            file = line
    return accepted


def shares(lines, count):
    """Splits `count` by the numbers of lines of files, the largest remainders first."""
    total = sum(lines.values())
    exact = {file: count * n / total for file, n in lines.items()}
    share = {file: int(x) for file, x in exact.items()}
    for file in sorted(exact, key=lambda f: share[f] - exact[f])[:count - sum(share.values())]:
        share[file] += 1
    return share


def parse():
    parser = argparse.ArgumentParser(prog="./run mutants")
    parser.add_argument("--count", type=int, default=150, metavar="N", help="mutants that are built and change something")
    parser.add_argument("--seed", type=int, default=1, metavar="S", help="chooses among them")
    parser.add_argument("--part", default="1/1", metavar="K/N", help="only the K-th of N parts, for N machines")
    parser.add_argument("file", nargs="*", help="sources of lumenta/; all, where none is named")
    options = parser.parse_args()
    if options.count < 1:
        fail("--count needs a number above 0")
    options.part = re.fullmatch(r"([1-9]\d*)/([1-9]\d*)", options.part)
    if not options.part or int(options.part[1]) > int(options.part[2]):
        fail("--part needs K/N")
    return options


def sources(named):
    files = sorted(str(p.relative_to(TOP)) for p in (TOP / "lumenta").rglob("*") if p.suffix in (".h", ".cpp"))
    for file in named:
        if file not in files:
            fail(f"no source of lumenta/: '{file}'")
    return named or files


def main():
    options = parse()
    texts = {file: (TOP / file).read_text() for file in sources(options.file)}
    candidates = {file: mutants_of(file, text) for file, text in texts.items()}
    share = shares({file: len(lines) for file, lines in candidates.items() if lines}, options.count)
    if not share:
        fail("there is no code in these files")
    accepted = read_accepted()
    laboratory = Laboratory()
    began, ends, survivors = time.monotonic(), {}, []
    part, parts = map(int, options.part.groups())
    for file in sorted(file for file, n in share.items() if n)[part - 1::parts]:
        queue = in_random_order(candidates[file], random.Random(f"{options.seed} {file}"))
        counted = 0
        while counted < share[file] and (mutant := next(queue, None)):
            start = time.monotonic()
            how, test = laboratory.try_out(mutant, texts[file])
            reasons = accepted.get((file, mutant.before), {})
            if how == "survived" and (reason := reasons.get(mutant.after, reasons.get("*"))):
                how, test = "argued", reason
            counted += how not in ("not compiled", "no change")
            ends[how] = ends.get(how, 0) + 1
            row = f"{file}:{mutant.line}: {mutant.kind}\n  - {mutant.before}\n  + {mutant.after}"
            print(f"{how}{': ' if test else ''}{test} ({time.monotonic() - start:.0f} s)\n{row}", flush=True)
            if how == "survived":
                survivors.append(row)
        (TREE / file).write_text(texts[file])
    report(ends, survivors, began, options)
    return 1 if survivors else 0


def report(ends, survivors, began, options):
    killed = sum(ends.get(how, 0) for how in ("failure", "crash", "timeout"))
    counted = killed + ends.get("survived", 0) + ends.get("argued", 0)
    print("\nSurvivors:" if survivors else "\nNo survivors.")
    print(*survivors, sep="\n")
    print(f"\nseed {options.seed}, {time.monotonic() - began:.0f} s")
    print(f"generated {sum(ends.values())}: not compiled {ends.get('not compiled', 0)}, "
          f"no change {ends.get('no change', 0)}, counted {counted}")
    print(f"killed {killed} ({100 * killed / max(counted, 1):.1f} %): by failure {ends.get('failure', 0)}, "
          f"by crash {ends.get('crash', 0)}, by timeout {ends.get('timeout', 0)}")
    print(f"survived {ends.get('survived', 0)}, argued {ends.get('argued', 0)}")


if __name__ == "__main__":
    sys.exit(main())
