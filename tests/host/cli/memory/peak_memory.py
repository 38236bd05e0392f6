"""Memory stays flat however long the recording: asciiexport holds one sample
at a time. Exports recordings of 1,000 and 1,000,000 samples and compares the
peak resident memory of the two runs. A UBX receiver log is read twice, and
between the two readings each epoch is held as an entry of some 50 bytes:
logs of 1,000 and 100,000 epochs may differ by that much.

Usage: peak_memory.py ASCIIEXPORT WORKDIR
"""

import os
import subprocess
import sys

KEYS = "packetCounter,sampleTimeFine,orientationQuaternion,calibratedAcceleration,calibratedAngularVelocity"
ALLOWED_GROWTH_KIB = 4 * 1024
UBX_EPOCHS = 100000
ALLOWED_BYTES_PER_EPOCH = 64


def peak_kib(arguments):
    process = subprocess.Popen(arguments)
    _, status, usage = os.wait4(process.pid, 0)
    if status != 0:
        sys.exit(f"{' '.join(arguments)} failed with status {status}")
    return usage.ru_maxrss


def main():
    program, workdir = sys.argv[1], sys.argv[2]
    os.makedirs(workdir, exist_ok=True)
    peaks = {}
    for samples in (1000, 1000000):
        recording = os.path.join(workdir, f"memory-{samples}.jsonl")
        output = os.path.join(workdir, f"memory-{samples}.txt")
        subprocess.run([program, "generate", "--samples", str(samples), "--groups", KEYS, "-o", recording],
                       check=True)
        peaks[samples] = peak_kib([program, "export", "--quiet", "--settings",
                                   os.path.join(workdir, "settings.ini"), "--set", "exportOrientation=Quaternion",
                                   "--set", "exportCalibratedAcceleration=true",
                                   "--set", "exportCalibratedAngularVelocity=true", "-o", output, recording])
        rows = sum(1 for _ in open(output)) - 6
        print(f"{samples} samples: {rows} rows, peak resident memory {peaks[samples]} KiB")
        os.remove(recording)
        os.remove(output)
    growth = peaks[1000000] - peaks[1000]
    print(f"growth {growth} KiB (allowed {ALLOWED_GROWTH_KIB} KiB)")
    ok = growth <= ALLOWED_GROWTH_KIB

    ubx = {}
    for epochs in (1000, UBX_EPOCHS):
        log = os.path.join(workdir, f"memory-{epochs}.ubx")
        output = os.path.join(workdir, f"memory-{epochs}-ubx.txt")
        subprocess.run([program, "generate", "--format", "ubx", "--samples", str(epochs), "--rate", "10",
                        "-o", log], check=True)
        ubx[epochs] = peak_kib([program, "export", "--quiet", "--settings", os.path.join(workdir, "settings.ini"),
                                "--set", "exportRawGps=true", "-o", output, log])
        print(f"UBX log of {epochs} epochs: peak resident memory {ubx[epochs]} KiB")
        os.remove(log)
        os.remove(output)
    per_epoch = (ubx[UBX_EPOCHS] - ubx[1000]) * 1024 / (UBX_EPOCHS - 1000)
    print(f"{per_epoch:.1f} bytes an epoch (allowed {ALLOWED_BYTES_PER_EPOCH})")
    return 0 if ok and per_epoch <= ALLOWED_BYTES_PER_EPOCH else 1


if __name__ == "__main__":
    sys.exit(main())
