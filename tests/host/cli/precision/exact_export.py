"""Exports random recordings whose numbers carry every digit a double can
hold, and more, and compares every row of the file, byte for byte, with rows
worked out here: the recording's numbers parsed by Python (correctly rounded)
and printed from their exact binary values with decimal arithmetic, ties
rounded away from zero as Qt's formatting does.

Usage: exact_export.py ASCIIEXPORT WORKDIR
"""

import json
import math
import os
import random
import struct
import subprocess
import sys
from decimal import ROUND_HALF_UP, Decimal, getcontext

getcontext().prec = 4000
SAMPLES = 1500
GROUPS = ["exportRssi", "exportCalibratedAcceleration", "exportFreeAcceleration", "exportCalibratedAngularVelocity",
          "exportMagneticField", "exportPressure", "exportPosition", "exportVelocity", "exportTemperature"]


def number_text(rng):
    """A number in one of the forms a recording may hold."""
    form = rng.randrange(7)
    if form == 0:
        value = struct.unpack("<d", rng.getrandbits(64).to_bytes(8, "little"))[0]
        while not math.isfinite(value):
            value = struct.unpack("<d", rng.getrandbits(64).to_bytes(8, "little"))[0]
        return repr(value)
    if form == 1:
        return "%.17g" % (rng.uniform(-1, 1) * 10.0 ** rng.randrange(-9, 10))
    if form == 2:
        sign = "-" if rng.random() < 0.5 else ""
        whole = str(rng.randrange(1, 10)) + "".join(str(rng.randrange(10)) for _ in range(rng.randrange(12)))
        return sign + whole + "." + "".join(str(rng.randrange(10)) for _ in range(rng.randrange(15, 30)))
    if form == 3:
        return str(rng.randrange(2 ** 53, 2 ** 64) * rng.choice([-1, 1]))
    if form == 4:
        return repr(struct.unpack("<d", (rng.getrandbits(52) | 1).to_bytes(8, "little"))[0])
    if form == 5:
        return rng.choice(["-0", "-0.0", "0", "1e-400", "-1e-400"])
    # Ties at the printed precision, exact in binary: k / 2^10.
    return repr(rng.randrange(-2 ** 20, 2 ** 20) / 1024)


def write_recording(path, seed):
    rng = random.Random(seed)
    lines = ['{"properties": {"StartTime": "2026-11-23 08:00:00", "DeviceId": "00ABCDEF"}, "updateRate": 100}']
    for i in range(SAMPLES):
        n = lambda: number_text(rng)
        vector = lambda: "[" + ", ".join(n() for _ in range(3)) + "]"
        fields = [f'"packetCounter": {i % 65536}', f'"sampleTimeFine": {rng.randrange(2 ** 32)}',
                  f'"rssi": {n()}', f'"calibratedAcceleration": {vector()}', f'"freeAcceleration": {vector()}',
                  f'"calibratedAngularVelocity": {vector()}', f'"magneticField": {vector()}',
                  f'"orientationQuaternion": [{n()}, {n()}, {n()}, {n()}]',
                  f'"latitudeLongitude": [{n()}, {n()}]', f'"altitude": {n()}', f'"velocity": {vector()}',
                  f'"pressure": {n()}', f'"temperature": {n()}']
        lines.append("{" + ", ".join(fields) + "}")
    with open(path, "w") as f:
        f.write("\n".join(lines) + "\n")


def fixed(x, decimals):
    if math.isnan(x):
        return "nan"
    if math.isinf(x):
        return "inf" if x > 0 else "-inf"
    text = format(Decimal(x).quantize(Decimal(1).scaleb(-decimals), rounding=ROUND_HALF_UP), "f")
    # An exact negative zero prints without its sign; a negative value that
    # rounds to zero keeps it.
    return text.lstrip("-") if x == 0 else text


def general(x, digits):
    if math.isnan(x):
        return "nan"
    if math.isinf(x):
        return "inf" if x > 0 else "-inf"
    if x == 0:
        return "0"
    exact = Decimal(x)
    rounded = exact.quantize(Decimal(1).scaleb(exact.adjusted() - digits + 1), rounding=ROUND_HALF_UP)
    exponent = rounded.adjusted()
    if -4 <= exponent < digits:
        text = format(rounded.quantize(Decimal(1).scaleb(-(digits - 1 - exponent))), "f")
        if "." in text:
            text = text.rstrip("0").rstrip(".")
        return text
    sign, numerals, _ = rounded.as_tuple()
    mantissa = "".join(map(str, numerals))[:digits].rstrip("0")
    text = ("-" if sign else "") + mantissa[0] + ("." + mantissa[1:] if len(mantissa) > 1 else "")
    return text + ("e-" if exponent < 0 else "e+") + "%02d" % abs(exponent)


def expected_rows(path, high):
    """The data rows of the export, worked out from the recording alone."""
    value = (lambda x, decimals: general(x, 18)) if high else fixed
    rows = []
    with open(path) as f:
        f.readline()
        for line in f:
            # Integer literals become doubles too, as the fields are doubles.
            s = json.loads(line, parse_int=lambda text: float(int(text)))
            fields = ["%05d" % int(s["packetCounter"]), "%05d" % int(s["sampleTimeFine"]), value(s["rssi"], 4)]
            for key in ("calibratedAcceleration", "freeAcceleration", "calibratedAngularVelocity", "magneticField"):
                fields += [value(x, 6) for x in s[key]]
            p = s["pressure"]
            fields.append(value(p, 4) if p > 0 else "")
            fields += [value(x, 6) for x in s["orientationQuaternion"]]
            fields += [value(x, 9) for x in s["latitudeLongitude"]]
            fields.append(value(s["altitude"], 6) if s["altitude"] != math.inf else "")
            fields += [value(x, 6) for x in s["velocity"]]
            t = s["temperature"]
            fields.append(fixed(t, 2) if t > -999.99 else "")
            rows.append("\t".join(fields))
    return rows


def main():
    program, workdir = sys.argv[1], sys.argv[2]
    os.makedirs(workdir, exist_ok=True)
    settings = os.path.join(workdir, "settings.ini")
    failures = 0
    for seed in (1, 2, 3):
        recording = os.path.join(workdir, f"precise-{seed}.jsonl")
        write_recording(recording, seed)
        for high in (True, False):
            output = os.path.join(workdir, f"precise-{seed}-{'high' if high else 'fixed'}.txt")
            arguments = [program, "export", "--quiet", "--settings", settings, "-o", output,
                         "--set", "exportOrientation=Quaternion", "--set", f"highPrecision={str(high).lower()}"]
            for group in GROUPS:
                arguments += ["--set", f"{group}=true"]
            subprocess.run(arguments + [recording], check=True)
            with open(output) as f:
                rows = f.read().split("\n")[6:-1]
            wanted = expected_rows(recording, high)
            differing = [i for i, (a, b) in enumerate(zip(rows, wanted)) if a != b]
            if len(rows) != len(wanted) or differing:
                failures += 1
                print(f"{output}: {len(rows)} rows, {len(wanted)} expected, {len(differing)} differ")
                for i in differing[:3]:
                    for got, want in zip(rows[i].split("\t"), wanted[i].split("\t")):
                        if got != want:
                            print(f"  row {i + 1}: {got!r}, expected {want!r}")
            else:
                print(f"{output}: all {len(rows)} rows as expected")
            os.remove(output)
        os.remove(recording)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
