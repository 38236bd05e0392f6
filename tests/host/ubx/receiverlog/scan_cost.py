"""The UBX frame scanner's work grows with the length of the stream, not with
the lengths its sync bytes announce: streams crafted to hold a long candidate
frame at every few bytes are scanned under callgrind, and the instructions
spent in the scanner, a count that does not depend on the machine or its
load, stay under a generous bound per byte.

Usage: scan_cost.py ASCIIEXPORT WORKDIR VALGRIND
"""

import os
import re
import subprocess
import sys

# A linear scan spends some 15 instructions a byte; a candidate checked byte
# by byte would spend thousands.
BOUND_PER_BYTE = 100
SIZE = 192 * 1024

STREAMS = {
    # a NAV-PVT of 65,535 bytes announced every six bytes
    "long frames every six bytes": b"\xb5\x62\x01\x07\xff\xff",
    # sync bytes only: every pair announces a frame of 25,269 bytes
    "nothing but sync bytes": b"\xb5\x62",
}


def main():
    program, workdir, valgrind = sys.argv[1], sys.argv[2], sys.argv[3]
    os.makedirs(workdir, exist_ok=True)
    failed = False
    for name, pattern in STREAMS.items():
        log = os.path.join(workdir, "crafted.ubx")
        with open(log, "wb") as f:
            f.write(pattern * (SIZE // len(pattern)))
        counts = os.path.join(workdir, "callgrind.out")
        subprocess.run([valgrind, "--tool=callgrind", "--callgrind-out-file=" + counts,
                        "--toggle-collect=UbxFrameScanner::*", program, "info", "--recording", log],
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=600)
        with open(counts) as f:
            instructions = int(re.search(r"^totals: (\d+)", f.read(), re.M).group(1))
        per_byte = instructions / SIZE
        print(f"{name}: {instructions} instructions in the scanner, {per_byte:.1f} a byte "
              f"(bound {BOUND_PER_BYTE})")
        failed = failed or per_byte > BOUND_PER_BYTE
        os.remove(log)
        os.remove(counts)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
