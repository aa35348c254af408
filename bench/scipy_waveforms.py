#!/usr/bin/env python3
"""NumPy and SciPy on the work of bench/waveforms.cpp: one line `SciPy/<what>/<n> nanoseconds` of CPU each, the best of some runs."""
import sys
import time

import numpy as np
from scipy import integrate, signal


def running_rms(s):
    a, b = s["y"][:-1], s["y"][1:]
    total = np.cumsum((b * b + a * a + b * a) / 3 * np.diff(s["x"]))
    return np.sqrt(total / (s["x"][1:] - s["x"][0]))


def crossings(s):
    x, y = s["x"], s["y"]
    i = np.flatnonzero(np.diff(np.signbit(y - 0.25)))
    return x[i] + (x[i + 1] - x[i]) * ((0.25 - y[i]) / (y[i + 1] - y[i]))


def peaks(s):
    i = signal.find_peaks(s["y"])[0]
    return s["x"][i], s["y"][i]


def even_grid(s):
    return np.linspace(s["x"][0], s["x"][-1], s["x"].size, endpoint=False)


def truncated(s):
    n = s["x"].size
    low, high = np.searchsorted(s["x"], [s["x"][n // 4], s["x"][n * 3 // 4 - 1]])
    return s["x"][low : high + 1].copy(), s["y"][low : high + 1].copy()


CASES = {
    "integ": lambda s: integrate.cumulative_trapezoid(s["y"], s["x"], initial=0),
    "avg": lambda s: integrate.cumulative_trapezoid(s["y"], s["x"]) / (s["x"][1:] - s["x"][0]),
    "Rms": running_rms,
    "diff": lambda s: np.diff(s["y"]) / np.diff(s["x"]),
    "Interp1": lambda s: np.interp(even_grid(s), s["x"], s["y"]),
    "XFromY": crossings,
    "Maxima": peaks,
    "Histogram": lambda s: np.histogram(s["y"], 100),
    "FIR": lambda s: signal.lfilter(s["taps"], 1, s["y"]),
    "Truncate": truncated,
}


def signal_of(n):
    random = np.random.default_rng(1)
    x = np.cumsum(random.uniform(0.5, 1.5, n))
    turn = 2 * np.pi / 100
    return {"x": x, "y": np.sin(turn * x) + 0.2 * np.sin(3 * turn * x), "taps": random.uniform(-1, 1, 32)}


def best(function, s, seconds):
    function(s)
    times = []
    end = time.process_time() + seconds
    while len(times) < 3 or time.process_time() < end:
        start = time.process_time()
        function(s)
        times.append(time.process_time() - start)
    return min(times)


for n in [int(float(text)) for text in sys.argv[1:]] or [10000, 10000000]:
    data = signal_of(n)
    for name, function in CASES.items():
        print(f"SciPy/{name}/{n} {best(function, data, 0.5) * 1e9:.0f}", flush=True)
