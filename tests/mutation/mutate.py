#!/usr/bin/env python3
"""Mutation testing: plants one-line faults in the sources and asks whether a test notices.

Each mutant changes one line of one file by a rule (an operator swapped, a constant
moved by one, a condition negated, a statement dropped). It is built incrementally in a
private copy of the tree and run against the fast suites in order, stopping at the first
that fails: unit, end-to-end, renumbered programs, command line, sandbox, examples, and
for the terminal's own files the shell on a tmux pane, for the window code real windows,
for the code of files, runs and signals the process tests. A
mutant that every suite passes survived: some behaviour is not tested, or the mutant
changes nothing a user can observe (then it belongs in EQUIVALENT.md).

Usage: mutate.py [--files F1,F2] [--n 10] [--seed S] [--jobs 2] [--report PATH]
       mutate.py --replay RUN_OUTPUT --at COMMIT   (the survivors of a run, again)
Files default to those changed since origin/main (or, without that branch, the last
commit and the uncommitted changes). The seed is printed, so a run can be repeated.
"""
import argparse
import os
import random
import re
import shutil
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
WORK = os.environ.get("MUTATE_WORK") or os.path.join(ROOT, "build-mutate")  # one per run at once
TREE = os.path.join(WORK, "tree")  # a private copy: the checkout is never touched
BUILD = os.path.join(WORK, "build")
EQUIVALENT = os.path.join(ROOT, "tests", "mutation", "EQUIVALENT.md")

# Suites in the order they run; each is a command and a time limit in seconds.
# The limits are many times a suite's time on a busy machine; a mutant that makes a
# loop endless is killed by the limit, and a long limit would cost minutes each time.
# The unit tests need only their own binary, so the interpreter is linked after them.
SUITES = [
    ("unit", ["{build}/basic_tests", "--gtest_brief=1"], 60),
    ("e2e", ["{tree}/tests/run_e2e.sh", "{build}/basic"], 300),
    ("renumber", ["{tree}/tests/renumber_programs.sh", "{build}/basic"], 300),
    ("command line", ["{tree}/tests/command_line.sh", "{build}/basic"], 120),
    ("sandbox", ["{tree}/tests/sandbox.sh", "{build}/basic"], 120),
    ("examples", ["{tree}/tests/examples.sh", "{build}/basic"], 120),
    # The terminal's own code runs only on a terminal: a tmux pane, for those files alone.
    ("terminal", ["sh", "-c", "{tree}/tests/terminal/shell_tmux.sh {build}/basic && "
                  "{tree}/tests/terminal/commands_tmux.sh {build}/basic"], 180),
    # Real windows need a display: an Xvfb server of the test's own, for the window code.
    ("windows", ["{tree}/tests/gdi/window_xvfb.sh", "{build}"], 120),
    # Files shared between processes and killed writers: for the code of files and runs.
    ("process", ["sh", "-c", "{tree}/tests/process/process_tests.sh {build}/basic && "
                 "{tree}/tests/process/files_tests.sh {build}/basic"], 300),
]
ONLY = {"terminal": re.compile(r"^src/(console/terminal_|platform/(terminal_restore|signals)|"
                               r"shell/catalog)"),
        "windows": re.compile(r"^src/gdi/(window_thread|gdi)\.cpp$"),
        "process": re.compile(r"^src/(files/|program/run\.cpp|platform/(host_files|signals))")}

# Rules: a pattern and its replacement, applied at one match on one line. Each
# rule is one kind of fault a test should catch. Binary operators stand between
# blanks in this code's format, which tells them from templates, pointers and signs.
RULES = [
    (r" == ", " != "), (r" != ", " == "),
    (r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "), (r" >= ", " > "),
    (r" && ", " || "), (r" \|\| ", " && "),
    (r" \+ ", " - "), (r" - ", " + "), (r" \* ", " / "), (r" / ", " * "), (r" % ", " * "),
    (r" & ", " | "), (r" \| ", " & "),
    (r"\+\+", "--"), (r"(?<![-])--(?![-])", "++"),
    (r" \+= ", " -= "), (r" -= ", " += "),
    (r"\btrue\b", "false"), (r"\bfalse\b", "true"),
    (r"\b0\b", "1"), (r"\b1\b", "0"), (r"\b([2-9]|[1-9][0-9]+)\b", "+1"),
    (r"\bif \(", "if (!("),
    (r"\bbreak;", "{}"), (r"\bcontinue;", "{}"),
    (r"^(\s*)(\S.*;)\s*$", "drop"),
]

SKIP_LINE = re.compile(
    r"^\s*(#|//|/\*|\*|static_assert|namespace|using |template|class |struct |enum |public:|"
    r"private:|protected:|case .*:$|default:)")
DECLARATION = re.compile(r"^\s*(const |constexpr |static |inline |virtual |explicit |[\w:<>,*& ]+\s[\w_]+\s*(\(|=|\{|;))")


def code_spans(line):
    """Ranges of the line outside string and character literals and trailing comments."""
    spans, start, i, quote = [], 0, 0, None
    while i < len(line):
        c = line[i]
        if quote:
            if c == "\\":
                i += 1
            elif c == quote:
                quote, start = None, i + 1
        elif c in "\"'":
            spans.append((start, i))
            quote = c
        elif line.startswith("//", i):
            spans.append((start, i))
            return spans
        i += 1
    if not quote:
        spans.append((start, len(line)))
    return spans


def mutants_of(path):
    """Every (line number, old line, new line, description) the rules give for a file."""
    with open(path, encoding="utf-8", errors="surrogateescape") as f:
        return mutants_in(f.readlines())


def mutants_in(lines):
    found = []
    in_block_comment = False
    for number, line in enumerate(lines, 1):
        text = line.rstrip("\n")
        stripped = text.strip()
        if in_block_comment:
            in_block_comment = "*/" not in stripped
            continue
        if stripped.startswith("/*"):
            in_block_comment = "*/" not in stripped
            continue
        if not stripped or SKIP_LINE.match(text):
            continue
        spans = code_spans(text)
        for pattern, replacement in RULES:
            if replacement == "drop":
                # Dropping a statement: not a declaration (it would not compile or
                # would only move an error), not a lone closing brace or return.
                if (not stripped.endswith(";") or DECLARATION.match(text) or
                        stripped.startswith(("return", "}", "{")) or "(" not in stripped):
                    continue
                indent = text[: len(text) - len(text.lstrip())]
                found.append((number, text, indent + "{}  // mutant: dropped", "drop the statement"))
                continue
            for m in re.finditer(pattern, text):
                if not any(a <= m.start() and m.end() <= b for a, b in spans):
                    continue
                if replacement == "+1":
                    new = text[: m.start()] + str(int(m.group(0)) + 1) + text[m.end():]
                    what = f"{m.group(0)} -> {int(m.group(0)) + 1}"
                elif replacement == "if (!(":
                    # Negate the whole condition: find its closing parenthesis.
                    depth, end = 0, None
                    for j in range(m.end() - 1, len(text)):
                        depth += {"(": 1, ")": -1}.get(text[j], 0)
                        if depth == 0:
                            end = j
                            break
                    if end is None:
                        continue
                    new = text[: m.start()] + "if (!(" + text[m.end(): end] + "))" + text[end + 1:]
                    what = "negate the condition"
                else:
                    new = text[: m.start()] + replacement + text[m.end():]
                    what = f"{m.group(0)} -> {replacement}"
                found.append((number, text, new, what))
    return lines, found


def run(cmd, timeout, cwd=None, env=None):
    try:
        r = subprocess.run(cmd, cwd=cwd, env=env, timeout=timeout,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        return r.returncode
    except subprocess.TimeoutExpired:
        return "timeout"


def default_files():
    def git(*args):
        r = subprocess.run(["git", *args], cwd=ROOT, capture_output=True, text=True)
        return r.stdout.split() if r.returncode == 0 else None
    changed = git("diff", "--name-only", "origin/main...HEAD")
    if changed is None:  # no such branch: the last commit and what is not committed yet
        changed = (git("diff", "--name-only", "HEAD~1", "HEAD") or []) + (git("diff", "--name-only") or [])
    return sorted({f for f in changed if f.startswith("src/") and f.endswith((".cpp", ".h"))
                   and os.path.exists(os.path.join(ROOT, f))})


def refresh(src, dst):
    """Copies a file whose content differs, with a new time so that make rebuilds it: a run
    stopped half-way may have left a mutant's object newer than the checkout's file."""
    if os.path.exists(dst):
        with open(src, "rb") as a, open(dst, "rb") as b:
            if a.read() == b.read():
                return dst
    shutil.copyfile(src, dst)
    return dst


def prune(src, dst):
    """Removes the files of dst that src does not have."""
    for folder, _, names in os.walk(dst):
        for name in names:
            path = os.path.join(folder, name)
            if not os.path.exists(os.path.join(src, os.path.relpath(path, dst))):
                os.remove(path)


def prepare(jobs):
    """Copies the tree and builds it once; later builds only recompile what a mutant touched."""
    os.makedirs(WORK, exist_ok=True)
    ignore = shutil.ignore_patterns("build*", ".git", "node_modules", "dist")
    for part in ("src", "tests", "examples", "docs", "packaging", "web", "CMakeLists.txt", "Makefile"):
        src, dst = os.path.join(ROOT, part), os.path.join(TREE, part)
        if os.path.isdir(src):
            # A file of an earlier copy that the checkout no longer has would still be built.
            if os.path.isdir(dst):
                prune(src, dst)
            shutil.copytree(src, dst, ignore=ignore, dirs_exist_ok=True, copy_function=refresh)
        elif os.path.exists(src):
            os.makedirs(TREE, exist_ok=True)
            refresh(src, dst)
    if run(["cmake", "-S", TREE, "-B", BUILD, "-DCMAKE_BUILD_TYPE=Release"], 600) != 0:
        sys.exit("mutate: cmake failed in " + BUILD)
    if build(jobs) != 0:
        sys.exit("mutate: the unmutated tree does not build")
    build(jobs, "picture_tool", "x11_close")  # the window test's tools; it skips without them
    for name, cmd, limit in SUITES:
        if name not in ONLY and suite(cmd, limit) != 0:
            sys.exit(f"mutate: the {name} suite fails without any mutant; fix that first")


def build(jobs, *targets):
    targets = targets or ("basic", "basic_tests")
    return run(["cmake", "--build", BUILD, "-j", str(jobs), "--target", *targets], 900)


def suite(cmd, limit):
    env = dict(os.environ, SDL_VIDEODRIVER="dummy")
    env.pop("DISPLAY", None)
    return run([c.format(build=BUILD, tree=TREE) for c in cmd], limit, cwd=TREE, env=env)


def known_equivalents():
    """File:line and change of the mutants recorded as changing nothing observable."""
    known = set()
    if os.path.exists(EQUIVALENT):
        for line in open(EQUIVALENT, encoding="utf-8"):
            m = re.match(r"^- `([^`]+):(\d+)` `([^`]*)`", line)
            if m:
                known.add((m.group(1), int(m.group(2)), m.group(3).strip()))
    return known


def sampled(files, n, rng):
    """n mutants drawn at random from each file."""
    for rel in files:
        # Read from the private copy: the checkout may change while a long run goes on.
        lines, candidates = mutants_of(os.path.join(TREE, rel))
        for mutant in rng.sample(candidates, min(n, len(candidates))):
            yield rel, lines, mutant


def replayed(log, commit, known):
    """The survivors a run's log names, made again in today's sources: each change is
    found in the file as it was at the run's commit, then on the same line of text today
    (the nearest one, if the line moved). Mutants listed as equivalent are left out."""
    for entry in open(log, encoding="utf-8"):
        if not entry.rstrip().endswith("SURVIVED"):
            continue
        place, what = entry.strip()[: -len("SURVIVED")].strip().split(None, 1)
        rel, number = place.rsplit(":", 1)
        number, what = int(number), what.strip()
        if (rel, number, what) in known:
            continue
        then = subprocess.run(["git", "show", f"{commit}:{rel}"], cwd=ROOT, capture_output=True,
                              text=True, errors="surrogateescape").stdout.splitlines(True)
        match = [m for m in mutants_in(then)[1] if m[0] == number and m[3].strip() == what]
        with open(os.path.join(TREE, rel), encoding="utf-8", errors="surrogateescape") as f:
            lines = f.readlines()
        today = [i for i, line in enumerate(lines, 1) if match and line.rstrip("\n") == match[0][1]]
        if not today:
            print(f"  {rel}:{number}  {what:<22} not found today: skipped", flush=True)
            continue
        _, old, new, _ = match[0]
        yield rel, lines, (min(today, key=lambda i: abs(i - number)), old, new, what)


def main():
    ap = argparse.ArgumentParser(description="Plants one-line faults and runs the fast suites.")
    ap.add_argument("--files", default=os.environ.get("FILES", ""))
    ap.add_argument("--n", type=int, default=int(os.environ.get("N", "10") or 10))
    ap.add_argument("--seed", type=int, default=int(os.environ.get("SEED", "0") or 0))
    ap.add_argument("--jobs", type=int, default=int(os.environ.get("JOBS", "2") or 2))
    ap.add_argument("--report", default=os.path.join(ROOT, "tests", "mutation", "LAST.md"))
    ap.add_argument("--replay", metavar="LOG", help="run again the survivors of a run's output")
    ap.add_argument("--at", metavar="COMMIT", help="the commit the replayed run mutated")
    args = ap.parse_args()
    files = [f for f in re.split(r"[,\s]+", args.files) if f] or (
        [] if args.replay else default_files())
    # The web build's own files are not compiled here: their mutants would all survive.
    files = [f for f in files if not re.search(r"(/web_[a-z_]+|_web)\.cpp$", f)]
    if not files and not args.replay:
        print("mutate: no source files to mutate (name them with FILES=src/...)")
        return 0
    seed = args.seed or random.SystemRandom().randrange(1, 2**31)
    rng = random.Random(seed)
    if args.replay:
        print(f"mutate: the survivors of {args.replay} (run at {args.at}) again")
    else:
        print(f"mutate: seed {seed}, {args.n} mutants per file, files: {' '.join(files)}")
    prepare(args.jobs)
    known = known_equivalents()
    rows, killed, survived, stillborn, equivalent = [], 0, [], 0, 0
    started = time.time()
    mutants = (replayed(args.replay, args.at or "HEAD", known) if args.replay
               else sampled(files, args.n, rng))
    for rel, lines, (number, old, new, what) in mutants:
        target = os.path.join(TREE, rel)
        mutated = list(lines)
        mutated[number - 1] = new + "\n"
        with open(target, "w", encoding="utf-8", errors="surrogateescape") as f:
            f.writelines(mutated)
        try:
            verdict, linked = None, False
            for name, cmd, limit in SUITES:
                if name in ONLY and not ONLY[name].match(rel):
                    continue
                if name == "unit" or not linked:
                    if build(args.jobs, "basic_tests" if name == "unit" else "basic") != 0:
                        verdict = "does not build"
                        break
                    linked = name != "unit"
                code = suite(cmd, limit)
                if code != 0:
                    verdict = f"killed by {name}" + (" (timeout)" if code == "timeout" else "")
                    break
            if verdict == "does not build":
                stillborn += 1
            else:
                if verdict:
                    killed += 1
                elif (rel, number, what.strip()) in known:
                    equivalent += 1
                    verdict = "equivalent (EQUIVALENT.md)"
                else:
                    survived.append((rel, number, old.strip(), new.strip(), what))
                    verdict = "SURVIVED"
        finally:
            with open(target, "w", encoding="utf-8", errors="surrogateescape") as f:
                f.writelines(lines)
        rows.append((rel, number, what, verdict))
        print(f"  {rel}:{number}  {what:<22} {verdict}", flush=True)
    build(args.jobs)  # leave the private tree built as it is in the checkout
    scored = killed + len(survived)
    score = 100.0 * killed / scored if scored else 100.0
    minutes = (time.time() - started) / 60
    summary = (f"{killed} killed, {len(survived)} survived, {equivalent} equivalent, "
               f"{stillborn} did not build; score {score:.1f}% of {scored} "
               f"(seed {seed}, {minutes:.1f} min)")
    print("mutate: " + summary)
    for rel, number, old, new, what in survived:
        print(f"  survivor {rel}:{number}: {what}\n    - {old}\n    + {new}")
    with open(args.report, "w", encoding="utf-8") as f:
        f.write("# Last mutation run\n\n")
        if args.replay:
            f.write(f"`tests/mutation/mutate.py --replay {args.replay} --at {args.at}` repeats it.\n\n")
        else:
            f.write(f"`make mutate FILES=\"{' '.join(files)}\" N={args.n} SEED={seed}` repeats it.\n\n")
        f.write(summary + ".\n\n")
        if survived:
            f.write("## Survivors\n\n")
            for rel, number, old, new, what in survived:
                f.write(f"- `{rel}:{number}` `{what}`\n  - `{old}`\n  + `{new}`\n")
            f.write("\n")
        f.write("## Every mutant\n\n| File:line | Change | Verdict |\n|---|---|---|\n")
        for rel, number, what, verdict in rows:
            f.write(f"| `{rel}:{number}` | `{what.replace('|', '¦')}` | {verdict} |\n")
    return 0


if __name__ == "__main__":
    sys.exit(main())
