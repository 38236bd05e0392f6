"""A real consumer reads what asciiexport writes.

Exports a generated recording with every data group, once with tabs and once
with commas, reads each file with pandas (skipping the five comment lines) and
checks the column names, the row count, and that every checked value equals
the recording's to the precision the file prints.

Usage: read_with_pandas.py ASCIIEXPORT WORKDIR
"""

import json
import math
import os
import subprocess
import sys

import pandas

SAMPLES = 200


def euler_from_quaternion(q0, q1, q2, q3):
    norm = math.sqrt(q0 * q0 + q1 * q1 + q2 * q2 + q3 * q3)
    q0, q1, q2, q3 = q0 / norm, q1 / norm, q2 / norm, q3 / norm
    roll = math.atan2(2 * (q0 * q1 + q2 * q3), 1 - 2 * (q1 * q1 + q2 * q2))
    pitch = math.asin(max(-1.0, min(1.0, 2 * (q0 * q2 - q3 * q1))))
    yaw = math.atan2(2 * (q0 * q3 + q1 * q2), 1 - 2 * (q2 * q2 + q3 * q3))
    return [math.degrees(roll), math.degrees(pitch), math.degrees(yaw)]


def check_close(what, actual, expected, decimals, failures):
    # the file rounds to `decimals`; derived values may differ in the last digit
    if abs(actual - expected) > 0.5 * 10 ** -decimals + 1e-9 * max(1.0, abs(expected)):
        failures.append(f"{what}: {actual!r} in the file, {expected!r} in the recording")


def main():
    program, workdir = sys.argv[1], sys.argv[2]
    os.makedirs(workdir, exist_ok=True)
    recording = os.path.join(workdir, "consumer.jsonl")
    subprocess.run([program, "generate", "--samples", str(SAMPLES), "--seed", "5", "-o", recording],
                   check=True)
    with open(recording) as f:
        lines = f.read().splitlines()
    samples = [json.loads(line) for line in lines[1:]]
    assert len(samples) == SAMPLES

    failures = []
    for name, sep, extra in (("tab", "\t", []), ("comma", ",", ["--delimiter", ","])):
        output = os.path.join(workdir, f"consumer-{name}.txt")
        subprocess.run([program, "export", "--quiet", "--settings", os.path.join(workdir, "settings.ini"),
                        "-o", output, "--groups", "all"] + extra + [recording], check=True)
        with open(output) as f:
            header = f.read().splitlines()[5].split(sep)
        frame = pandas.read_csv(output, sep=sep, skiprows=5)

        # pandas tells repeated names apart by a suffix; the names themselves are the file's
        if len(frame.columns) != 410 or len(header) != 410:
            failures.append(f"{name}: {len(frame.columns)} columns read, {len(header)} in the header")
        names = [str(c) for c in frame.columns]
        for read, written in zip(names, header):
            if read != written and not (read.startswith(written + ".") and read[len(written) + 1:].isdigit()):
                failures.append(f"{name}: column {read!r} read for {written!r}")
        for expected in ("PacketCounter", "Acc_X", "Roll", "Latitude", "SVQI[15]", "Flags[59]",
                         "TrigIn2_FrameNumber"):
            if expected not in names:
                failures.append(f"{name}: no column {expected}")
        if len(frame) != SAMPLES:
            failures.append(f"{name}: {len(frame)} rows, {SAMPLES} samples")
            continue

        for i, sample in enumerate(samples):
            row = frame.iloc[i]
            where = f"{name} row {i}"
            if int(row["PacketCounter"]) != sample["packetCounter"]:
                failures.append(f"{where}: packet counter {row['PacketCounter']}")
            if int(row["SampleTimeFine"]) != sample["sampleTimeFine"]:
                failures.append(f"{where}: sample time {row['SampleTimeFine']}")
            status = sample["statusWord"] & 0xFFFFFFFF
            status = status - (1 << 32) if status >= 1 << 31 else status
            if int(row["StatusWord"]) != status:
                failures.append(f"{where}: status word {row['StatusWord']}")
            for axis, column in enumerate(("Acc_X", "Acc_Y", "Acc_Z")):
                check_close(f"{where} {column}", row[column], sample["calibratedAcceleration"][axis], 6, failures)
            for axis, column in enumerate(("Gyr_X", "Gyr_Y", "Gyr_Z")):
                check_close(f"{where} {column}", row[column], sample["calibratedAngularVelocity"][axis], 6, failures)
            euler = sample.get("orientationEuler") or euler_from_quaternion(*sample["orientationQuaternion"])
            for axis, column in enumerate(("Roll", "Pitch", "Yaw")):
                check_close(f"{where} {column}", row[column], euler[axis], 6, failures)
            check_close(f"{where} Latitude", row["Latitude"], sample["latitudeLongitude"][0], 9, failures)
            check_close(f"{where} Longitude", row["Longitude"], sample["latitudeLongitude"][1], 9, failures)
            check_close(f"{where} Altitude", row["Altitude"], sample["altitude"], 6, failures)
            check_close(f"{where} Pressure", row["Pressure"], sample["pressure"], 4, failures)
            check_close(f"{where} Temperature", row["Temperature"], sample["temperature"], 2, failures)
            for axis, column in enumerate(("SCRAcc_X", "SCRAcc_Y", "SCRAcc_Z")):
                if int(row[column]) != math.trunc(sample["scrAcceleration"][axis]):
                    failures.append(f"{where}: {column} {row[column]}")
            pvt = sample["gnssPvt"]
            # the GNSS group repeats the position names after the position group
            check_close(f"{where} GNSS longitude", row["Longitude.1"], pvt["lon"] * 1e-7, 7, failures)
            check_close(f"{where} GNSS latitude", row["Latitude.1"], pvt["lat"] * 1e-7, 7, failures)
            if int(row["Height"]) != pvt["height"]:
                failures.append(f"{where}: height {row['Height']}")
            trigger = sample.get("triggerIn1")
            if trigger is None:
                if not math.isnan(row["TrigIn1_Timestamp"]):
                    failures.append(f"{where}: trigger 1 written but absent")
            elif int(row["TrigIn1_Timestamp"]) != trigger["timestamp"]:
                failures.append(f"{where}: trigger 1 timestamp {row['TrigIn1_Timestamp']}")

    for failure in failures[:40]:
        print(failure)
    print(f"{2 * SAMPLES} rows checked, {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
