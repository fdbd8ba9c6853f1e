#!/usr/bin/env python3
"""Changes steps in small ways, and lists the changes that no case of the step notices.

usage: mutate.py BUILD STEP... [--jobs N]

BUILD is the folder of a build with the tests. STEP is the class name of a step. Each change is made in a copy of the
step's source: an operator, a number, a text or a statement. The copy is compiled, linked with the tests, and the
cases of the step are run. A change that they do not notice is printed: either a case is missing, or the change makes no
difference that a document could show.
"""

import argparse
import concurrent.futures
import json
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
SWAPS = {"==": "!=", "!=": "==", "<=": "<", ">=": ">", " < ": " <= ", " > ": " >= ", "&&": "||", "||": "&&", " + ": " - ",
         " - ": " + ", " * ": " / ", " / ": " * ", "++": "--", "true": "false", "false": "true"}
TOKEN = re.compile(r'''
    (?P<comment>//[^\n]*|/\*.*?\*/|^\s*\#[^\n]*|^using[^\n]*)
  | (?P<text>"(?:\\.|[^"\\])*")
  | (?P<character>'(?:\\.|[^'\\])')
  | (?P<number>(?<![\w.])\d+(?:\.\d+)?(?:[eE][-+]?\d+)?(?:u|U|L|LL|ULL)?(?![\w.]))
  | (?P<word>[A-Za-z_]\w*)
  | (?P<arrow>->|::|<<|>>)
  | (?P<operator>==|!=|<=|>=|&&|\|\||\+\+|[ ][<>+*/-][ ])
  | (?P<not>!(?!=))
''', re.VERBOSE | re.MULTILINE | re.DOTALL)
STATEMENT = re.compile(r"^( +)((?!return [^;]|const |auto |using |case |default|static |for |if |else|while )[^\n{}]*;)$", re.MULTILINE)


def mutants_of(source):
    """Yields (place, old text, new text)."""
    for token in TOKEN.finditer(source):
        kind, old = token.lastgroup, token.group()
        if kind == "operator" or kind == "word" and old in ("true", "false"):
            yield token.start(), old, SWAPS[old]
        elif kind == "not":
            yield token.start(), old, ""
        elif kind == "text":
            yield token.start(), old, old[:-1] + 'X"'
        elif kind == "number":
            digits = re.match(r"[\d.]+", old).group()
            yield token.start(), old, (str(float(digits) * 2 + 1) if "." in digits else str(int(digits) + 1)) + old[len(digits):]
    for statement in STATEMENT.finditer(source):
        if "//" not in statement.group(2) and not re.match(r"[\w:<>, *&]+ \w+(\(.*\))?;$", statement.group(2)):
            yield statement.start(2), statement.group(2), ";"


class Step:
    """What is needed to compile a step's source and to link the tests with it."""

    def __init__(self, build, name):
        self.build, self.name = build, name
        sources = list((ROOT / "library/Adaptors").rglob(name + ".cpp"))
        if len(sources) != 1:
            sys.exit("there is no source of %s" % name)
        self.source = sources[0]
        commands = json.loads((build / "compile_commands.json").read_text())
        self.compile = shlex.split(next(entry["command"] for entry in commands
                                        if pathlib.Path(entry["file"]).resolve() == self.source))
        if "ccache" in self.compile[0]:
            self.compile = self.compile[1:]
        self.object = self.compile[self.compile.index("-o") + 1]
        lines = subprocess.run(["ninja", "-C", str(build), "-t", "commands", "tests/adaptors-tests"], check=True,
                               capture_output=True, text=True).stdout.splitlines()
        link = next(line for line in reversed(lines) if " -o tests/adaptors-tests " in line)
        self.link = [word for word in shlex.split(link) if word not in (":", "&&", "ccache")]

    def try_mutant(self, mutant):
        """Gives how a mutant ended: "killed", "survived" or "not compiled"."""
        place, old, new = mutant
        text = self.source.read_text()
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            changed = folder / self.source.name
            changed.write_text(text[:place] + new + text[place + len(old):])
            compiled, program = folder / "step.o", folder / "tests"
            words = [str(changed) if pathlib.Path(word).name == self.source.name else word for word in self.compile]
            words[words.index("-o") + 1] = str(compiled)
            if "-MF" in words:
                words[words.index("-MF") + 1] = str(folder / "dependencies")
            words += ["-I", str(self.source.parent), "-w", "-g0"]
            if subprocess.run(words, cwd=self.build, capture_output=True).returncode != 0:
                return "not compiled"
            # Of two objects with the same functions the linker takes the first.
            words = [self.link[0], str(compiled), "-Wl,-z,muldefs", "-Wl,-s", *self.link[1:]]
            words[words.index("-o") + 1] = str(program)
            linked = subprocess.run(words, cwd=self.build, capture_output=True, text=True)
            if linked.returncode != 0:
                sys.exit("the tests do not link: " + linked.stderr[-2000:])
            return "survived" if self.passes(program) else "killed"

    def passes(self, program):
        try:
            run = subprocess.run([str(program), "--gtest_brief=1", "--gtest_fail_fast", "--gtest_filter=*Case*" + self.name + "*"],
                                 cwd=self.build, capture_output=True, text=True, errors="replace", timeout=120)
        except subprocess.TimeoutExpired:
            return False
        if "[==========] 0 tests" in run.stdout:
            sys.exit("%s has no case" % self.name)
        return run.returncode == 0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("steps", nargs="+", metavar="STEP")
    parser.add_argument("--jobs", type=int, default=2)
    options = parser.parse_args()
    print("%-42s %8s %8s %8s" % ("", "changes", "noticed", "not"))
    totals = [0, 0]
    for name in options.steps:
        step = Step(options.build.resolve(), name)
        if not step.passes(step.build / "tests/adaptors-tests"):
            sys.exit("%s: its cases fail without a change" % name)
        source = step.source.read_text()
        mutants = list(mutants_of(source))
        with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
            ends = list(pool.map(step.try_mutant, mutants))
        killed, survived = ends.count("killed"), ends.count("survived")
        totals[0] += killed
        totals[1] += survived
        print("%-42s %8d %8d %8d" % (name, killed + survived, killed, survived))
        for (place, old, new), end in zip(mutants, ends):
            if end == "survived":
                print("    line %d: %s -> %s" % (source.count("\n", 0, place) + 1, old.strip(), new.strip()))
        sys.stdout.flush()
    print("%-42s %8d %8d %8d" % ("all", sum(totals), *totals))


if __name__ == "__main__":
    main()
