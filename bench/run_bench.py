"""Runs the export benchmark and prints the table: for each configuration the
exporter, the to_chars limit, the straightforward Qt writer and pandas'
to_csv, each in a process of its own, on the same rows; then an end-to-end
export of a generated recording through asciiexport.

Usage: run_bench.py BUILD_DIR [ROWS]
"""

import hashlib
import json
import os
import resource
import subprocess
import sys
import time

SCRATCH = "/dev/shm" if os.path.isdir("/dev/shm") else "/tmp"
TARGETS = {"default": 4.0, "inertial": 2.0, "full": None}


def run_child(arguments):
    process = subprocess.Popen(arguments, stdout=subprocess.PIPE)
    output, _ = process.communicate()
    if process.returncode != 0:
        sys.exit(f"{' '.join(arguments)} failed")
    return output


def digest(path):
    sha = hashlib.sha256()
    with open(path, "rb") as f:
        for block in iter(lambda: f.read(1 << 20), b""):
            sha.update(block)
    return sha.hexdigest()


PANDAS_CHILD = r"""
import json, resource, sys, time
import numpy, pandas
table, rows, out = sys.argv[1], int(sys.argv[2]), sys.argv[3]
pool = pandas.read_csv(table)
repeat = -(-rows // len(pool))
frame = pandas.DataFrame(numpy.tile(pool.to_numpy(), (repeat, 1))[:rows], columns=pool.columns)
frame = frame.astype(pool.dtypes.to_dict())
start = time.perf_counter()
frame.to_csv(out, sep="\t", index=False, header=True, float_format="%.6f", na_rep="")
seconds = time.perf_counter() - start
print(json.dumps({"seconds": seconds, "peak_kib": resource.getrusage(resource.RUSAGE_SELF).ru_maxrss}))
"""


def main():
    build = sys.argv[1]
    rows = int(sys.argv[2]) if len(sys.argv) > 2 else 1000000
    bench = os.path.join(build, "bin", "bench_export")
    results = {}
    identical = {}
    for config in TARGETS:
        digests = {}
        for method in ("exporter", "limit", "qt"):
            out = os.path.join(SCRATCH, f"asciiexporter-bench-{config}-{method}.txt")
            result = json.loads(run_child([bench, "--config", config, "--method", method,
                                           "--rows", str(rows), "--out", out]))
            digests[method] = digest(out)
            os.remove(out)
            results[(config, method)] = result
        identical[config] = len(set(digests.values())) == 1

        table = os.path.join(SCRATCH, f"asciiexporter-bench-{config}-table.csv")
        run_child([bench, "--config", config, "--method", "table", "--out", table])
        out = os.path.join(SCRATCH, f"asciiexporter-bench-{config}-pandas.txt")
        pandas = json.loads(run_child([sys.executable, "-c", PANDAS_CHILD, table, str(rows), out]))
        pandas["bytes"] = os.path.getsize(out)
        pandas["rows"] = rows
        os.remove(out)
        os.remove(table)
        results[(config, "pandas")] = pandas

    print(f"{rows} rows per run, files on {SCRATCH}; each way in a process of its own")
    print()
    print(f"{'configuration':<14}{'way':<10}{'ns/row':>10}{'MB/s':>10}{'peak MiB':>10}")
    for config in TARGETS:
        for method in ("exporter", "limit", "qt", "pandas"):
            r = results[(config, method)]
            ns = r["seconds"] / rows * 1e9
            mbs = r["bytes"] / r["seconds"] / 1e6
            print(f"{config:<14}{method:<10}{ns:>10.0f}{mbs:>10.0f}{r['peak_kib'] / 1024:>10.1f}")
    print()
    print(f"{'configuration':<14}{'exporter/limit':>16}{'target':>8}{'qt/exporter':>13}{'pandas/exporter':>17}"
          f"{'same bytes':>12}")
    ok = True
    for config, target in TARGETS.items():
        exporter = results[(config, "exporter")]["seconds"]
        limit = exporter / results[(config, "limit")]["seconds"]
        qt = results[(config, "qt")]["seconds"] / exporter
        pandas = results[(config, "pandas")]["seconds"] / exporter
        met = (target is None or limit <= target) and qt >= 2.0 and pandas >= 4.0
        ok = ok and met and identical[config]
        print(f"{config:<14}{limit:>16.2f}{(f'<= {target}' if target else 'report'):>8}{qt:>13.2f}{pandas:>17.2f}"
              f"{('yes' if identical[config] else 'NO'):>12}")
    print()
    print("targets: exporter/limit as above, qt/exporter >= 2, pandas/exporter >= 4;"
          " pandas writes integers unpadded and every float with six decimals")

    # End to end: the program on a generated recording.
    program = os.path.join(build, "bin", "asciiexport")
    settings = os.path.join(SCRATCH, "asciiexporter-bench-settings.ini")
    peaks = {}
    for samples in (1000, rows):
        recording = os.path.join(SCRATCH, f"asciiexporter-bench-{samples}.jsonl")
        output = os.path.join(SCRATCH, f"asciiexporter-bench-{samples}.txt")
        run_child([program, "generate", "--samples", str(samples), "-o", recording])
        start = time.perf_counter()
        process = subprocess.Popen([program, "export", "--quiet", "--settings", settings, "-o", output, recording])
        _, status, usage = os.wait4(process.pid, 0)
        seconds = time.perf_counter() - start
        if status != 0:
            sys.exit("asciiexport export failed")
        peaks[samples] = usage.ru_maxrss
        size = os.path.getsize(recording)
        os.remove(recording)
        os.remove(output)
        print(f"asciiexport export, {samples} samples (every key, {size / 1e6:.0f} MB of recording, default "
              f"settings): {samples / seconds:,.0f} rows/s, peak {usage.ru_maxrss / 1024:.1f} MiB")
    growth = (peaks[rows] - peaks[1000]) / 1024
    print(f"peak memory growth from 1000 to {rows} samples: {growth:.1f} MiB")
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main())
