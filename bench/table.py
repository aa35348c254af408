#!/usr/bin/env python3
"""The last run against its peers and limits, as a table.     bench/table.py RESULTS_FOLDER

Reads the JSON of the benchmark programs and the times of other programs in *.txt. A ratio is this project's time over the time
of the other: below 1 this project is faster.
"""
import json
import re
import sys
from pathlib import Path

# This project's benchmark, and what it is held against; {n} is each size measured.
PAIRS = [
    ("Evaluate/add_scalar/{n}", ["Limit/copy/{n}", "NumPy/add_scalar/{n}"]),
    ("Evaluate/mul/{n}", ["Limit/copy_bytes_mul/{n}", "Limit/mul/{n}", "NumPy/mul/{n}"]),
    ("Evaluate/mul_add/{n}", ["Limit/mul_add/{n}", "NumPy/mul_add/{n}"]),
    ("Evaluate/sum_difference/{n}", ["Limit/sum_difference/{n}", "NumPy/sum_difference/{n}"]),
    ("Evaluate/sum/{n}", ["NumPy/sum/{n}"]),
    ("Evaluate/sin/{n}", ["NumPy/sin/{n}"]),
    ("Evaluate/exp/{n}", ["NumPy/exp/{n}"]),
    ("Evaluate/ln/{n}", ["NumPy/ln/{n}"]),
    ("Evaluate/db/{n}", ["NumPy/db/{n}"]),
    ("Evaluate/complex_mul/{n}", ["NumPy/complex_mul/{n}"]),
    ("Evaluate/mag/{n}", ["NumPy/mag/{n}"]),
    ("Divisions/v*2/{n}", ["Limit/flat_v*2/{n}"]),
    ("Divisions/v+w/{n}", ["Limit/flat_v+w/{n}"]),
    ("Divisions/integ(v)/{n}", ["Limit/flat_integ(v)/{n}"]),
    ("Divisions/Mean1(v)/{n}", ["Limit/flat_Mean1(v)/{n}"]),
    *(
        (f"Waveform/{what}/{{n}}", [f"Limit/loop_{what}/{{n}}", f"SciPy/{what}/{{n}}"])
        for what in ("integ", "avg", "Rms", "diff", "Interp1", "Interp2", "XFromY", "Maxima", "Histogram", "FIR", "Truncate")
    ),
    ("Incremental/db(a/b)/10000000", ["Incremental/db(a/b)/1000"]),
    ("Incremental/a+b/10000000", ["Incremental/a+b/1000"]),
    ("Text/complex/{n}", ["Limit/fast_float_complex/{n}"]),
    ("Text/table/{n}", ["Limit/fast_float_table/{n}", "NumPy/loadtxt/{n}", "Pandas/read_csv/{n}",
                        "Pandas/read_csv_exact/{n}"]),
    ("Text/column/{n}", ["Limit/fast_float_column/{n}"]),
    ("Csdf/real/{n}", ["Limit/fast_float_csdf/{n}"]),
    ("Csdf/complex/{n}", ["Limit/fast_float_csdf_complex/{n}"]),
    ("Quadrel/real/{n}", ["Limit/fast_float_quadrel/{n}"]),
    ("PSpice/flat/{n}", ["Limit/read_flat/{n}", "Limit/widen_flat/{n}"]),
    ("PSpice/flat_complex/{n}", ["Limit/read_flat_complex/{n}"]),
    ("PSpice/records/{n}", ["Limit/read_records/{n}"]),
    ("Spice2/real/{n}", ["Limit/read_real/{n}", "Limit/read_fresh_real/{n}"]),
    ("Spice2/complex/{n}", ["Limit/read_complex/{n}", "Limit/read_fresh_complex/{n}"]),
    ("Spice3/read/{n}", ["Limit/fast_float/{n}", "Ngspice/load/{n}"]),
    ("Spectrum/fft/{n}", ["Limit/fftw_measured/{n}", "Limit/fftw_estimated/{n}", "SciPy/rfft/{n}", "SciPy/fft/{n}"]),
    ("Spectrum/fft_none/{n}", ["Limit/fftw_measured/{n}", "Limit/fftw_estimated/{n}", "SciPy/rfft/{n}", "SciPy/fft/{n}"]),
    ("Spectrum/Fourier_lines/{n}", ["Limit/recurrence_lines/{n}"]),
    ("Spectrum/Fourier_parabolas/{n}", ["Limit/recurrence_parabolas/{n}"]),
    *(
        (f"Stream/engine/{place}", [f"Limit/stream/{peer}/{place}" for peer in (
            "write", "columns", "fwrite", "hdf5_matrix_by_row", "hdf5_matrix_gathered", "hdf5_sets")])
        for place in ("memory", "disk")
    ),
    ("Open/engine/{n}", []),
    ("Read/one", ["Limit/read/one"]),
    ("Read/engine/{n}", ["Limit/read/pread/{n}"]),
    ("Shared/engine", ["Limit/shared/write"]),
    ("Store/make_vectors/{n}", ["Limit/map_make/{n}"]),
    ("Store/find_vectors/{n}", ["Limit/map_find/{n}"]),
    ("Store/list_vectors/{n}", ["Limit/sort_names/{n}"]),
    ("Store/groups/{n}", []),
    ("Store/contexts/{n}", []),
    ("Store/context_beside_temporaries/{n}", []),
    ("Small/2+3*4", []),
    ("Small/sin(x)+1", []),
    ("Small/sum(v*2)", []),
]
UNITS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def load(folder):
    """Nanoseconds of CPU for a call, by name; the best of the repetitions."""
    times = {}
    for path in folder.glob("*.json"):
        for run in json.loads(path.read_text())["benchmarks"]:
            if run.get("run_type") == "aggregate":
                continue
            # Where parts of the work are not timed, the program gives the time itself.
            clock = "real_time" if run["name"].endswith("/manual_time") else "cpu_time"
            nanoseconds = run[clock] * UNITS[run["time_unit"]]
            name = re.sub(r"/iterations:\d+|/repeats:\d+|/manual_time", "", run["name"])
            times[name] = min(nanoseconds, times.get(name, nanoseconds))
    for path in folder.glob("*.txt"):
        for line in path.read_text().splitlines():
            name, nanoseconds = line.split()
            times[name] = float(nanoseconds)
    # A product moves half as much again as a copy of one operand.
    for name in [name for name in times if name.startswith("Limit/copy/")]:
        times[name.replace("copy", "copy_bytes_mul")] = times[name] * 1.5
    return times


def shown(nanoseconds):
    for unit, factor in (("ms", 1e6), ("us", 1e3)):
        if nanoseconds >= factor:
            return f"{nanoseconds / factor:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


def main():
    times = load(Path(sys.argv[1]))
    sizes = sorted({name.rsplit("/", 1)[1] for name in times if name.rsplit("/", 1)[1].isdigit()}, key=int)
    print("| this project | time | against | time | ratio |\n|---|---|---|---|---|")
    for pattern, others in PAIRS:
        for size in sizes if "{n}" in pattern else [""]:
            own = times.get(pattern.format(n=size))
            if own is None:
                continue
            against = [other.format(n=size) for other in others if other.format(n=size) in times]
            for other in against or [None]:
                rest = f"{other} | {shown(times[other])} | {own / times[other]:.2f}" if other else " | | "
                print(f"| {pattern.format(n=size)} | {shown(own)} | {rest} |")


main()
