"""Prints what reading through the Python package costs beside the same reading in C++, as medians of runs in turn.

Usage: python_reading.py LIBRARY-OF-ReadingCall.cpp
"""

import ctypes
import os
import statistics
import sys
import tempfile
import threading
import time

import numpy as np

import tovrdb
from tovrdb import _library

KEY = "a key for measuring"
ROUNDS = 15
BOUND = 1.03
READINGS = {"1920 x 1080": (0, 0, 1919, 1079), "128 x 128": (600, 400, 727, 527)}


def through_python(path, rect):
    with tovrdb.open(path, KEY) as wall:
        coef = wall.coef(type=1, dtype="uint16")
        rows, columns = slice(rect[1], rect[3] + 1), slice(rect[0], rect[2] + 1)
        coef[rows, columns]
        start = time.perf_counter()
        coef[rows, columns]
        return time.perf_counter() - start


def in_cpp(call, path, rect, tools_way):
    edges = (ctypes.c_int32 * 4)(*rect)
    plugin = _library.plugin_path(None)
    seconds = call(plugin.encode(), path.encode(), KEY.encode(), 1, edges, tools_way)
    if seconds < 0:
        sys.exit("the reading in C++ failed")
    return seconds


def other_threads_share(path):
    """How much a second thread gets done while the first one reads, as a share of what it does alone."""
    counted, running = [0], threading.Event()

    def count():
        while running.is_set():
            counted[0] += 1

    def counted_while(work):
        counted[0] = 0
        running.set()
        thread = threading.Thread(target=count)
        thread.start()
        start = time.perf_counter()
        work()
        seconds = time.perf_counter() - start
        running.clear()
        thread.join()
        return counted[0] / seconds

    with tovrdb.open(path, KEY) as wall:
        coef = wall.coef(type=1, dtype="uint16")
        return counted_while(lambda: [coef[...] for _ in range(5)]) / counted_while(lambda: time.sleep(1))


def apart_from_the_librarys_lines():
    """The stream for the results; standard output leads nowhere from here on, for the C++ side prints there."""
    results = os.fdopen(os.dup(1), "w", buffering=1)
    nowhere = os.open(os.devnull, os.O_WRONLY)
    os.dup2(nowhere, 1)
    return results


def main():
    sys.stdout = apart_from_the_librarys_lines()
    library = ctypes.CDLL(sys.argv[1])
    call = library.tovrReadingSeconds
    call.restype = ctypes.c_double
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "wall.db")
        with tovrdb.create(path, KEY, type=0, fast=True) as wall:
            wall.add_screen("main", rect=READINGS["1920 x 1080"])
            cells = np.random.default_rng(1).integers(0, 65536, (1080, 1920, 9), "uint16")
            wall.put(cells, type=1, at=(0, 0))
        print("| reading through Python | Python, ms | C++, ms | ratio | bound |\n|---|---|---|---|---|")
        for name, rect in READINGS.items():
            for beside, tools_way in (("the library's call", 0), ("the tool's way", 1)):
                runs = [(through_python(path, rect), in_cpp(call, path, rect, tools_way)) for _ in range(ROUNDS)]
                ours, theirs = (statistics.median(side) * 1e3 for side in zip(*runs))
                print(f"| {name}, {beside} | {ours:.3f} | {theirs:.3f} | {ours / theirs:.3f} | {BOUND:.3f} |")
        print(f"\nWhile one thread reads, a second one does {other_threads_share(path):.2f} of what it does alone.")


main()
