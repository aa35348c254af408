#!/usr/bin/env python3
"""NumPy on the expressions of bench/evaluate.cpp: one line `NumPy/<what>/<n> nanoseconds` of CPU each, the best of some runs."""
import sys
import time

import numpy as np

CASES = {
    "add_scalar": lambda o: o["v"] + 1,
    "mul": lambda o: o["a"] * o["b"],
    "mul_add": lambda o: o["a"] * o["b"] + o["c"],
    "sum_difference": lambda o: (o["a"] + o["b"]) * (o["a"] - o["b"]) / 2,
    "sum": lambda o: (o["v"] * 2).sum(),
    "sin": lambda o: np.sin(o["v"]),
    "exp": lambda o: np.exp(o["v"]),
    "ln": lambda o: np.log(o["v"]),
    "db": lambda o: 20 * np.log10(np.abs(o["v"])),
    "complex_mul": lambda o: o["z"] * o["y"],
    "mag": lambda o: np.abs(o["z"]),
}


def operands(n):
    random = np.random.default_rng(1)
    o = {name: random.uniform(1, 2, n) for name in "abc"}
    o["v"] = random.uniform(0.1, 9, n)
    o["z"] = o["a"] + 1j * o["b"]
    o["y"] = o["b"] + 1j * o["c"]
    return o


def best(function, o, seconds):
    function(o)
    times = []
    end = time.process_time() + seconds
    while len(times) < 3 or time.process_time() < end:
        repeat = 1 if o["v"].size > 100000 else 1000
        start = time.process_time()
        for _ in range(repeat):
            function(o)
        times.append((time.process_time() - start) / repeat)
    return min(times)


for n in [int(float(text)) for text in sys.argv[1:]] or [10, 1000, 1000000, 10000000]:
    data = operands(n)
    for name, function in CASES.items():
        print(f"NumPy/{name}/{n} {best(function, data, 0.5) * 1e9:.0f}", flush=True)
