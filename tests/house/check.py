#!/usr/bin/env python3
"""The rules of this tree that a program can check. Prints each breach and exits 1 if there is one.

check.py            all of them
check.py NAME...    only those, by the names of CHECKS below
"""
import os
import subprocess
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import art
import art_proof
import attributes
import binaries
import clang_tools
import docs
import facts
import facts_proof
import headers
import includes
import layers
import owners
import plain
import texts
import texts_proof
import tidy

CHECKS = {
    "layers": layers.main,
    "owners": owners.main,
    "attributes": attributes.main,
    "standalone": headers.main,
    "includes": includes.main,
    "words": plain.words,
    "usings": plain.usings,
    "sizes": plain.sizes,
    "format": plain.formatting,
    "texts": lambda: texts.main() + texts_proof.main(),
    "facts": lambda: facts.main() + facts_proof.main(),
    "art": lambda: art.main() + art_proof.main(),
    "docs": docs.main,
    "binaries": binaries.main,
    "tidy": tidy.main,
}


def run():
    names = sys.argv[1:] or list(CHECKS)
    failed = not_run = 0
    for name in names:
        try:
            breaches = CHECKS[name]()
        except clang_tools.NotRun as reason:
            print(f"  {name}: not run: {reason}", flush=True)
            not_run += 1
            continue
        print(f"  {name}: {'ok' if not breaches else str(len(breaches)) + ' breaches'}", flush=True)
        for breach in breaches:
            print(f"    {breach}")
        failed += bool(breaches)
    print(f"house rules: {len(names) - failed - not_run} passed, {failed} failed, {not_run} not run")
    return 1 if failed else 0


if __name__ == "__main__":
    os.chdir(subprocess.check_output(["git", "rev-parse", "--show-toplevel"], text=True).strip())
    sys.exit(run())
