#!/usr/bin/env python3
"""Mutation testing of the core library and the widgets.

Makes a fixed, seeded sample of mutants of src/core and src/widgets, applies them one at a
time in a build folder of its own, rebuilds incrementally, runs the tests that can see the
mutated file, and reports which mutants the tests killed and which survived.

A mutant is named by its file, the text of its line, the occurrence on that line and the
change, never by a line number: the sample is drawn by hashing that name with the seed, so
the same mutants are drawn again after the tests are rewritten or unrelated code moves.
"""

import argparse
import dataclasses
import hashlib
import json
import os
import re
import resource
import signal
import subprocess
import sys
import time
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
SOURCES = ("src/core", "src/widgets")


@dataclasses.dataclass
class Mutant:
    path: str      # relative to the project
    line_no: int   # 1-based, for the report only
    original: str  # the whole line
    mutated: str   # the whole line after the change
    kind: str      # the family of the change
    ident: str = ""

    def key(self, seed: int) -> str:
        return hashlib.sha256(f"{seed}\0{self.ident}".encode()).hexdigest()


# --- finding mutants ---------------------------------------------------------------------

STRING = re.compile(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])*\'')
SKIP_LINE = re.compile(r'^\s*(#|//|\*|/\*|static_assert|assert\(|Q_OBJECT|Q_PROPERTY|Q_ENUM|namespace|using |template)')
RELATIONAL = {" < ": " <= ", " <= ": " < ", " > ": " >= ", " >= ": " > ", " == ": " != ", " != ": " == "}
ARITHMETIC = {" + ": " - ", " - ": " + ", " * ": " / ", " / ": " * ", " += ": " -= ", " -= ": " += ",
              " && ": " || ", " || ": " && "}
NUMBER = re.compile(r'(?<![\w.])(\d+)(?![\w.])')
CALL_STATEMENT = re.compile(r'^\s*(?!return\b|delete\b|throw\b|case\b|else\b|break\b|continue\b)'
                            r'[A-Za-z_][\w:]*(?:(?:\.|->)[A-Za-z_]\w*|\[[^\]]*\])*\s*(?:\(.*\)|[+-]?=\s.*);\s*$')
EMIT = re.compile(r'^\s*emit\s+\w+\(.*\);\s*$')
RETURN = re.compile(r'^(\s*return\s+)(.+);\s*$')


def masked(line: str) -> str:
    """The line with its strings, characters and end comment blanked out (same length)."""
    out = STRING.sub(lambda m: '"' + " " * (len(m.group(0)) - 2) + '"', line)
    cut = out.find("//")
    return out if cut < 0 else out[:cut] + " " * (len(out) - cut)


def balanced_end(text: str, start: int) -> int:
    """Index just past the parenthesis that closes the one at start, or -1."""
    depth = 0
    for i in range(start, len(text)):
        if text[i] == "(":
            depth += 1
        elif text[i] == ")":
            depth -= 1
            if depth == 0:
                return i + 1
    return -1


# Lines that only share out a window's room: stretch factors, spacing, margins, minimum and
# maximum sizes. No rule of the product fixes them; what matters about them (every named
# control inside its window, none over another) the layout test checks. Column widths and the
# grids' cell sizes stay in the sample: the maps and their printing depend on them.
LAYOUT_ONLY = re.compile(r'\b(addStretch|addSpacing|setSpacing|setContentsMargins|setStretch|setColumnStretch|'
                         r'setRowStretch|set(Minimum|Maximum)(Size|Width|Height))\(|'
                         r'\badd(Widget|Layout)\([^,()]+(\([^()]*\))?, \d+\);')


def line_mutants(path: str, no: int, line: str):
    if SKIP_LINE.match(line) or not line.strip():
        return
    mask = masked(line)
    if re.search(r'\b(qDebug|qWarning|std::cerr|Q_ASSERT|assert)\b', mask) or LAYOUT_ONLY.search(mask):
        return

    def at(kind, index, old, new):
        return Mutant(path, no, line, line[:index] + new + line[index + len(old):], kind)

    for table, kind in ((RELATIONAL, "relational"), (ARITHMETIC, "arithmetic")):
        for old, new in table.items():
            for m in re.finditer(re.escape(old), mask):
                text_operand = mask[:m.start()].rstrip().endswith('"') or mask[m.end():].lstrip().startswith('"')
                if kind == "arithmetic" and text_operand:
                    continue  # joining texts: the change would not compile
                yield at(kind, m.start(), old, new)
    if not re.search(r'\b(case|enum|constexpr|const\s+\w+\s+k\w+)\b', mask) and "[" not in mask.split("=")[0]:
        for m in NUMBER.finditer(mask):
            value = int(m.group(1), 10) if not m.group(1).startswith("0") or m.group(1) == "0" else None
            if value is not None:
                yield at("constant", m.start(), m.group(1), str(value + 1))
    for m in re.finditer(r'\b(if|while)\s*\(', mask):
        open_at = m.end() - 1
        close_at = balanced_end(mask, open_at)
        if close_at > 0:
            cond = line[open_at + 1:close_at - 1]
            yield Mutant(path, no, line, line[:open_at + 1] + "!(" + cond + ")" + line[close_at - 1:], "negated")
    if (CALL_STATEMENT.match(mask) or EMIT.match(mask)) and mask.rstrip().endswith(";"):
        indent = line[:len(line) - len(line.lstrip())]
        yield Mutant(path, no, line, indent + ";\n", "deleted")
    r = RETURN.match(mask)
    if r:
        value = line[len(r.group(1)):len(r.group(1)) + len(r.group(2))]
        replacement = {"true": "false", "false": "true"}.get(value.strip())
        if replacement is None and not re.fullmatch(r'\{\}|nullptr|\d+|std::nullopt|\*this', value.strip()):
            replacement = "{}"
        if replacement is not None:
            yield Mutant(path, no, line, r.group(1) + replacement + ";\n", "return")


def linux_sources():
    """The sources this platform's build compiles (the Windows-only files are left out)."""
    return [f for folder in SOURCES for f in sorted((ROOT / folder).rglob("*.cpp"))
            if not f.name.endswith("Windows.cpp")]


def built_here(lines):
    """For each line, whether this platform compiles it: lines under "#ifdef _WIN32" (or the
    "#else" of "#ifndef _WIN32") are Windows-only, and a mutant of them could never fail here."""
    stack, out = [], []
    for line in lines:
        directive = re.match(r'\s*#\s*(ifdef|ifndef|if|else|elif|endif)\b\s*(\w*)', line)
        if directive:
            word, name = directive.groups()
            if word in ("ifdef", "ifndef", "if"):
                # True: the Windows branch of a _WIN32 test, False: its other branch, None: another test
                stack.append(word == "ifdef" if word != "if" and name == "_WIN32" else None)
            elif word in ("else", "elif") and stack and stack[-1] is not None:
                stack[-1] = not stack[-1]
            elif word == "endif" and stack:
                stack.pop()
        out.append(not any(windows for windows in stack if windows))
    return out


def all_mutants():
    found = []
    for file in linux_sources():
        rel = file.relative_to(ROOT).as_posix()
        seen = {}
        lines = file.read_text(encoding="utf-8").splitlines(keepends=True)
        for no, (line, here) in enumerate(zip(lines, built_here(lines)), 1):
            if not here:
                continue
            for m in line_mutants(rel, no, line if line.endswith("\n") else line + "\n"):
                base = f"{rel}\0{m.original.strip()}\0{m.kind}\0{m.mutated.strip()}"
                seen[base] = seen.get(base, 0) + 1
                m.ident = f"{base}\0{seen[base]}"
                found.append(m)
    return found


def sample(count: int, seeds):
    """The first count mutants of each seed's order, each mutant once, with the seeds that drew it."""
    found = all_mutants()
    drawn = {}
    for seed in seeds:
        for m in sorted(found, key=lambda m: m.key(seed))[:count]:
            drawn.setdefault(m.ident, (m, []))[1].append(seed)
    return sorted(drawn.values(), key=lambda d: (d[0].path, d[0].line_no, d[0].kind))


def short_id(m: Mutant, seed: int) -> str:
    return m.key(seed)[:8]


def tally(outcomes):
    """Counts of each outcome and the score: killed and timed out among those that compiled."""
    count = {k: sum(1 for _, o, _ in outcomes if o == k) for k in ("killed", "timeout", "survived", "not compiled", "stale")}
    compiled = count["killed"] + count["timeout"] + count["survived"]
    return count, compiled, 100.0 * (count["killed"] + count["timeout"]) / compiled if compiled else 0.0


def tally_line(count, compiled, score):
    return (f"killed {count['killed']}, timed out {count['timeout']}, survived {count['survived']}, "
            f"not compiled {count['not compiled']}" + (f", stale {count['stale']}" if count["stale"] else "") +
            f"; score {score:.1f} % of {compiled} compiled")


# --- running them ------------------------------------------------------------------------

TEST_MEMORY = 4 << 30  # a mutant that allocates without end is stopped here, not by the machine


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (TEST_MEMORY, TEST_MEMORY))


def run(cmd, cwd=None, timeout=None, quiet=True, capped=False):
    """Runs a command in its own process group; returns (exit code or None on timeout, seconds)."""
    start = time.monotonic()
    proc = subprocess.Popen(cmd, cwd=cwd, start_new_session=True, stdout=subprocess.DEVNULL if quiet else None,
                            stderr=subprocess.DEVNULL if quiet else None, env=dict(os.environ, QT_QPA_PLATFORM="offscreen"),
                            preexec_fn=limit_memory if capped else None)
    try:
        code = proc.wait(timeout=timeout)
    except subprocess.TimeoutExpired:
        os.killpg(proc.pid, signal.SIGKILL)
        proc.wait()
        code = None
    return code, time.monotonic() - start


class Suite:
    """The build folder and the tests that can see a mutated file."""

    def __init__(self, build: Path, every_test=False):
        self.build = build
        self.limits = {}
        self.every_test = every_test  # run every test and name those that fail, instead of stopping at the first
        self.failed = []

    def configure(self):
        if (self.build / "build.ninja").exists():
            return
        code, _ = run(["cmake", "-S", str(ROOT), "-B", str(self.build), "-G", "Ninja", "-DCMAKE_BUILD_TYPE=",
                       "-DCMAKE_CXX_FLAGS=-O1", "-DKESTRIN_WERROR=OFF", "-DKESTRIN_BENCHMARKS=OFF"], quiet=False)
        if code != 0:
            sys.exit("mutants: configuring the build failed")

    @staticmethod
    def family(path: str) -> str:
        return "widgets" if path.startswith("src/widgets/") else "core"

    # The widgets, the demo host and the tool are built on the core, and their tests see a fault
    # in it too; the tool draws and prints maps through the widgets; the host's tour runs the tool.
    # The fuzz targets' replays of their corpora check the readers and the layout round trip.
    FUZZ_TARGETS = ["profile", "layout", "project", "langdll", "catalog"]

    def targets(self, family):
        widgets = ["kestrin-widget-tests", "kestrin-host-tests", "kestrin-cli-tests", "kestrin-host", "kestrin"]
        fuzz = [f"kestrin-fuzz-{t}" for t in self.FUZZ_TARGETS]
        return {"core": ["kestrin-core-tests", *widgets, *fuzz], "widgets": widgets}[family]

    def test_commands(self, family):
        fail_fast = "--gtest_fail_fast"
        widgets = [[str(self.build / "tests/widgets/kestrin-widget-tests"), fail_fast],
                   [str(self.build / "tests/host/kestrin-host-tests"), fail_fast],
                   [str(self.build / "tests/cli/kestrin-cli-tests"), fail_fast]]
        if family == "core":
            return [[str(self.build / "tests/kestrin-core-tests"), fail_fast], *widgets,
                    ["ctest", "--test-dir", str(self.build), "-R", r"^(cli\.(examples|generated)|host\..*|fuzz\.replay\..*)$",
                     "--stop-on-failure"]]
        return [*widgets, ["ctest", "--test-dir", str(self.build), "-R", r"^host\.", "--stop-on-failure"]]

    def build_family(self, family) -> bool:
        code, _ = run(["cmake", "--build", str(self.build), "--target", *self.targets(family)])
        return code == 0

    def run_tests(self, family, limit):
        """'killed', 'survived' or 'timeout'."""
        deadline = time.monotonic() + limit
        self.failed = []
        for cmd in self.test_commands(family):
            left = deadline - time.monotonic()
            if left <= 0:
                return "timeout"
            report = self.build / ("failed.json" if cmd[0] != "ctest" else "failed.xml")
            if self.every_test:
                report.unlink(missing_ok=True)
                cmd = [a for a in cmd if a not in ("--gtest_fail_fast", "--stop-on-failure")]
                cmd += [f"--gtest_output=json:{report}"] if cmd[0] != "ctest" else ["--output-junit", str(report)]
            code, _ = run(cmd, cwd=self.build, timeout=left, capped=True)
            if code is None:
                return "timeout"
            if code != 0 and not self.every_test:
                return "killed"
            if code != 0:
                self.failed += failed_tests(report) or [Path(cmd[0]).name]
        return "killed" if self.failed else "survived"

    def calibrate(self, families, factor):
        for family in families:
            if not self.build_family(family):
                sys.exit(f"mutants: the unmutated {family} build fails")
            start = time.monotonic()
            if self.run_tests(family, 3600) != "survived":
                sys.exit(f"mutants: the unmutated {family} tests fail")
            took = time.monotonic() - start
            self.limits[family] = max(20.0, took * factor)
            print(f"unmutated {family} tests: {took:.1f} s, limit {self.limits[family]:.0f} s", flush=True)


def failed_tests(report: Path):
    """The tests a gtest JSON or ctest JUnit report names as failed; [] when it is missing (a crash)."""
    try:
        if report.suffix == ".json":
            suites = json.loads(report.read_text())["testsuites"]
            return [f"{s['name']}.{t['name']}" for s in suites for t in s["testsuite"] if t.get("failures")]
        return re.findall(r'<testcase name="([^"]+)"[^>]*status="fail"', report.read_text())
    except (OSError, ValueError, KeyError):
        return []


def apply_and_test(suite: Suite, m: Mutant) -> str:
    file = ROOT / m.path
    original = file.read_bytes()
    lines = original.decode("utf-8").splitlines(keepends=True)
    if lines[m.line_no - 1] != m.original and lines[m.line_no - 1] != m.original.rstrip("\n"):
        return "stale"
    ending = lines[m.line_no - 1][len(lines[m.line_no - 1].rstrip("\r\n")):]
    lines[m.line_no - 1] = m.mutated.rstrip("\n") + ending
    family = suite.family(m.path)
    try:
        file.write_bytes("".join(lines).encode("utf-8"))
        if not suite.build_family(family):
            return "not compiled"
        return suite.run_tests(family, suite.limits[family])
    finally:
        file.write_bytes(original)
        os.utime(file)  # newer than the mutant's objects, so the next build recompiles it
        if file.read_bytes() != original:
            sys.exit(f"mutants: could not restore {m.path}")


def seed_list(text: str):
    try:
        seeds = [int(x) for x in text.split(",") if x.strip()]
    except ValueError:
        seeds = []
    if not seeds:
        raise argparse.ArgumentTypeError(f"not a list of seeds: {text}")
    return seeds


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--count", type=int, default=200, help="mutants in the sample of each seed (200)")
    parser.add_argument("--seed", type=int, default=1, help="the sample's seed (1)")
    parser.add_argument("--seeds", type=seed_list, help="several seeds, separated by commas: their samples are run "
                        "together (a mutant two seeds draw runs once) and scored each and in all")
    parser.add_argument("--list", action="store_true", help="print the sample and stop")
    parser.add_argument("--only", help="run only the mutants of these ids, separated by commas (as --list prints them)")
    parser.add_argument("--build", default=str(ROOT / "build/mutants"), help="build folder (build/mutants)")
    parser.add_argument("--factor", type=float, default=3.0, help="time limit as a multiple of the clean run (3)")
    parser.add_argument("--which-tests", action="store_true",
                        help="run every test of each mutant and list those that kill it (slower; shows which tests "
                             "are the only ones to catch a fault)")
    args = parser.parse_args()
    seeds = args.seeds or [args.seed]

    drawn = sample(args.count, seeds)
    ident = {m.ident: short_id(m, by[0]) for m, by in drawn}  # named by the first seed that drew it
    if args.only:
        wanted = set(args.only.split(","))
        drawn = [d for d in drawn if ident[d[0].ident] in wanted]
        if len(drawn) != len(wanted):
            sys.exit(f"mutants: not every one of {args.only} is in the sample")
    chosen = [m for m, _ in drawn]
    if args.list:
        for m in chosen:
            print(f"{ident[m.ident]}  {m.path}:{m.line_no}  {m.kind}\n    - {m.original.strip()}\n"
                  f"    + {m.mutated.strip()}")
        return

    build = Path(args.build)
    suite = Suite(build, args.which_tests)
    suite.configure()
    suite.calibrate(sorted({suite.family(m.path) for m in chosen}), args.factor)

    started = time.monotonic()
    outcomes = []
    for n, m in enumerate(chosen, 1):
        outcome = apply_and_test(suite, m)
        outcomes.append((m, outcome, " ".join(suite.failed)))
        print(f"[{n}/{len(chosen)}] {outcome:12} {ident[m.ident]} {m.path}:{m.line_no} {m.kind}", flush=True)
    for family in sorted({suite.family(m.path) for m in chosen}):
        suite.build_family(family)  # leave the build matching the sources

    seeds_of = {m.ident: by for m, by in drawn}
    report = [f"mutants: {len(chosen)} (seed{'s' if len(seeds) > 1 else ''} {','.join(map(str, seeds))}, "
              f"{args.count} each), run in {(time.monotonic() - started) / 60:.0f} min"]
    if len(seeds) > 1:
        for seed in seeds:
            report.append(f"seed {seed}: " + tally_line(*tally([o for o in outcomes if seed in seeds_of[o[0].ident]])))
    report += [("in all: " if len(seeds) > 1 else "") + tally_line(*tally(outcomes)),
               "(the score counts killed and timed out among those that compiled)", "", "survivors:"]
    for m, outcome, _ in outcomes:
        if outcome == "survived":
            report += [f"{ident[m.ident]}  {m.path}:{m.line_no}  {m.kind}  (seed {','.join(map(str, seeds_of[m.ident]))})",
                       f"    - {m.original.strip()}", f"    + {m.mutated.strip()}"]
    text = "\n".join(report) + "\n"
    print("\n" + text)
    build.mkdir(parents=True, exist_ok=True)
    (build / "report.txt").write_text(text)
    with open(build / "results.tsv", "w") as out:
        out.write("id\tseeds\tfile\tline\tkind\toutcome\toriginal\tmutated\tkilled by\n")
        for m, outcome, killers in outcomes:
            out.write(f"{ident[m.ident]}\t{','.join(map(str, seeds_of[m.ident]))}\t{m.path}\t{m.line_no}\t{m.kind}\t"
                      f"{outcome}\t{m.original.strip()}\t{m.mutated.strip()}\t{killers}\n")


if __name__ == "__main__":
    main()
