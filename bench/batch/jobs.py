#!/usr/bin/env python3
"""How two jobs on two cores do against one job held to one: jobs.py TARNOVEL BUDGET PHOTO...

Prints photos a second of both, their ratio, and the ratio of the processor time that a photo takes, which tells on a busy
machine what the first one would be on a quiet one. Exit status 1 where the best ratio of all rounds is below BUDGET."""
import ctypes
import os
import resource
import shutil
import subprocess
import sys
import tempfile
import time

ROUNDS = 3
PR_SET_CHILD_SUBREAPER = 36


def processor_time():
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def run(program, jobs, cores, photos):
    """Seconds by the clock, and of processor time of all processes, also those that outlive their parents."""
    folder = tempfile.mkdtemp()
    before, began = processor_time(), time.monotonic()
    subprocess.run(["taskset", "-c", cores, program, "export", "-q", "-t", "full", "-j", str(jobs), "-o", folder, *photos],
                   check=True)
    clock = time.monotonic() - began
    try:
        while True:
            os.waitpid(-1, 0)
    except ChildProcessError:
        pass
    shutil.rmtree(folder)
    return clock, processor_time() - before


def main():
    program, budget, photos = os.path.abspath(sys.argv[1]), float(sys.argv[2]), sys.argv[3:]
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    best, work = 0.0, 0.0
    for _ in range(ROUNDS):
        one, one_work = run(program, 1, "0", photos)
        two, two_work = run(program, 2, "0,1", photos)
        best, work = max(best, one / two), max(work, 2 * one_work / two_work)
        print(f"one job {len(photos) / one:5.2f} photos/s, two {len(photos) / two:5.2f}: {one / two:4.2f} by the clock, "
              f"{2 * one_work / two_work:4.2f} by processor time", flush=True)
    print(f"two jobs ÷ one: {best:4.2f} (processor time allows {work:4.2f}, budget {budget})")
    sys.exit(1 if best < budget else 0)


main()
