#!/usr/bin/env python3
"""SciPy on the samples of bench/fourier.cpp: one line `SciPy/<what>/<n> nanoseconds` of CPU each, the best of some runs."""
import sys
import time

import numpy as np
from scipy import fft

CASES = {"fft": fft.fft, "rfft": fft.rfft}


def best(function, samples, seconds):
    function(samples)
    times = []
    end = time.process_time() + seconds
    while len(times) < 3 or time.process_time() < end:
        start = time.process_time()
        function(samples)
        times.append(time.process_time() - start)
    return min(times)


for n in [int(text) for text in sys.argv[1:]] or [1 << 10, 1 << 20, 1 << 24]:
    data = np.random.default_rng(1).uniform(-1, 1, n)
    for name, function in CASES.items():
        print(f"SciPy/{name}/{n} {best(function, data, 0.5) * 1e9:.0f}", flush=True)
