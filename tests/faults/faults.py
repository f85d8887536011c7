#!/usr/bin/env python3
"""Judges what the programs do when memory, files or the system fail.

    tests/faults/faults.py [--quick] [--programs BUILD] [--share FOLDER]

Runs small jobs and lets each allocation and each system call fail in turn. A run is
right when it gives what an unhindered run gives, or a message and the documented
status; when the old picture is whole, no other file has changed and nothing is left;
and when it ends, and not by a signal of its own. Prints a table, and a line to see it
again for what is wrong.
"""
import argparse
import os
import shutil
import sys
import tempfile

import rows
import stress
import sweep
from place import ROOT, Programs


def parse():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--programs", default=os.path.join(ROOT, "build", "release"))
    parser.add_argument("--share", default=os.path.join(ROOT, "share"))
    parser.add_argument("--quick", action="store_true", help="a part of it, under a minute")
    parser.add_argument("--job", action="append", help="only this one of the table")
    parser.add_argument("--call", action="append", help="only this one of the table")
    parser.add_argument("--row", action="append", help="only the named faults with this word")
    parser.add_argument("--stress", action="append", help="only this one of them")
    parser.add_argument("--fault", nargs="+", help="one fault of one job, and what comes of it")
    return parser.parse_args()


def judge(folder, programs, arguments):
    """How much is wrong."""
    only = arguments.row or arguments.job or arguments.call or arguments.stress
    wrong = 0
    if arguments.row or not only:
        wrong += rows.run_rows(folder, programs, arguments.row)
    if arguments.stress or not only:
        wrong += stress.run_all(folder, programs, arguments.quick, arguments.stress)
    if arguments.job or arguments.call or not only:
        wrong += sweep.sweep_all(folder, programs, arguments.quick, arguments.job, arguments.call)
    print("%d wrong" % wrong)
    return wrong


def main():
    arguments = parse()
    folder = tempfile.mkdtemp(prefix="faults-")
    programs = Programs(arguments.programs, arguments.share)
    try:
        if arguments.fault:
            sweep.show_one(folder, programs, arguments.job[0], arguments.fault)
            return 0
        return 1 if judge(folder, programs, arguments) else 0
    finally:
        shutil.rmtree(folder)


if __name__ == "__main__":
    sys.exit(main())
