"""Builds UBX receiver logs here, with Python's struct and the public message
layouts, exports them through asciiexport with the raw GPS and GNSS groups,
and compares every line of the file, byte for byte, with lines worked out
here from the frames' values: which frames count, the epochs in time-of-week
order, the header block and each field's text. Then converts each log to JSON
Lines and checks that its export has the same bytes, and checks the summary
line on standard error and what info --recording lists.

Usage: ubx_export.py ASCIIEXPORT WORKDIR
"""

import os
import random
import struct
import subprocess
import sys
from decimal import ROUND_HALF_UP, Decimal

SOL = "<IihBBiiiIiiiIHBB4s"
DOP = "<IHHHHHHH"
UTC = "<IIiHBBBBBB"
PVT = "<IHBBBBBBIiBBBBiiiiIIiiiiiIIH6sihH"
PVT_SHORT = "<IHBBBBBBIiBBBBiiiiIIiiiiiIIH6s"
SVINFO = "<IBBH"
CHANNEL = "<BBBBBbhi"
SAT = "<IBB2s"
SATELLITE = "<BBBbhhI"
GGA = b"$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*76\r\n"
SETTINGS = ["--set", "exportSampleTimeFine=false", "--set", "exportOrientation=None",
            "--set", "exportRawGps=true", "--set", "exportRawGnss=true"]


def frame(cls, mid, payload):
    body = bytes([cls, mid]) + struct.pack("<H", len(payload)) + payload
    a = b = 0
    for byte in body:
        a = (a + byte) & 0xFF
        b = (b + a) & 0xFF
    return b"\xb5\x62" + body + bytes([a, b])


def random_value(rng, code):
    """A value for a struct field, often at the ends of its range."""
    if code.endswith("s"):
        return bytes(rng.randrange(256) for _ in range(int(code[:-1])))
    size = struct.calcsize("<" + code)
    signed = code.islower()
    low, high = (-(1 << (8 * size - 1)), (1 << (8 * size - 1)) - 1) if signed else (0, (1 << (8 * size)) - 1)
    return rng.choice([low, high, 0, -1 if signed else 1, rng.randint(low, high), rng.randint(low, high)])


def codes(layout):
    result, count = [], ""
    for c in layout[1:]:
        if c.isdigit():
            count += c
        else:
            result.append(count + c if c == "s" else c)
            count = ""
    return result


def random_payload(rng, layout, itow, **fixed):
    values = [random_value(rng, code) for code in codes(layout)]
    values[0] = itow
    for index, value in fixed.items():
        values[int(index[1:])] = value
    return struct.pack(layout, *values)


def satellite_list(rng, head, entry, itow, count, count_index):
    values = [random_value(rng, code) for code in codes(head)]
    values[0] = itow
    values[count_index] = count
    payload = struct.pack(head, *values)
    for _ in range(count):
        payload += struct.pack(entry, *[random_value(rng, code) for code in codes(entry)])
    return payload


def build_log(seed):
    """A log and the frames that count, as (kind, payload) in file order."""
    rng = random.Random(seed)
    times = [100000 + 200 * k for k in range(40)] + [0, 2 ** 31 + 600, 4294967000]
    order = times[:]
    rng.shuffle(order)
    log = bytearray(GGA)
    log += frame(0x0A, 0x04, b"EXT CORE 9.87 (abc)".ljust(30, b"\0") + b"0008".ljust(10, b"\0") + b"x" * 30)
    # The first epoch in time order has an undated PVT and a dated UTC time.
    first = min(t for t in times if t != 0)
    log += frame(0x01, 0x07, random_payload(rng, PVT, first, f2=0))
    log += frame(0x01, 0x21, random_payload(rng, UTC, first, f3=2031, f4=7, f5=4, f6=23, f7=5, f8=6))
    for index, itow in enumerate(order):
        kinds = ["sol", "dop", "utc", "svinfo", "pvt", "sat"]
        rng.shuffle(kinds)
        for kind in kinds:
            if rng.random() < 0.15:
                continue
            for _ in range(2 if rng.random() < 0.1 else 1):
                if kind == "sol":
                    log += frame(0x01, 0x06, random_payload(rng, SOL, itow))
                elif kind == "dop":
                    log += frame(0x01, 0x04, random_payload(rng, DOP, itow))
                elif kind == "utc":
                    log += frame(0x01, 0x21, random_payload(rng, UTC, itow))
                elif kind == "svinfo":
                    count = rng.choice([0, 5, 16, 17, 40, 255])
                    log += frame(0x01, 0x30, satellite_list(rng, SVINFO, CHANNEL, itow, count, 1))
                elif kind == "pvt":
                    layout = PVT_SHORT if rng.random() < 0.3 else PVT
                    log += frame(0x01, 0x07, random_payload(rng, layout, itow))
                else:
                    count = rng.choice([0, 7, 60, 61, 120, 255])
                    log += frame(0x01, 0x35, satellite_list(rng, SAT, SATELLITE, itow, count, 2))
            if rng.random() < 0.2:
                log += GGA
        if index % 7 == 3:
            # A frame whose checksum fails, and one of a message not read.
            bad = bytearray(frame(0x01, 0x06, random_payload(rng, SOL, itow)))
            bad[-1] ^= 0x40
            log += bad
            log += frame(0x01, 0x03, bytes(16))
    # A frame cut short at the end.
    log += frame(0x01, 0x06, random_payload(rng, SOL, 77))[:30]
    return bytes(log)


def scan(log):
    """The good frames of the log, as (class, id, payload) in order."""
    frames, i = [], 0
    while i < len(log) - 1:
        if log[i] == 0xB5 and log[i + 1] == 0x62 and i + 6 <= len(log):
            length = log[i + 4] | log[i + 5] << 8
            end = i + 6 + length + 2
            if end <= len(log):
                a = b = 0
                for byte in log[i + 2:i + 6 + length]:
                    a = (a + byte) & 0xFF
                    b = (b + a) & 0xFF
                if log[end - 2] == a and log[end - 1] == b:
                    frames.append((log[i + 2], log[i + 3], log[i + 6:i + 6 + length]))
                    i = end
                    continue
        i += 1
    return frames


def fixed(x, decimals):
    text = format(Decimal(x).quantize(Decimal(1).scaleb(-decimals), rounding=ROUND_HALF_UP), "f")
    return text.lstrip("-") if x == 0 else text


def signed32(value):
    return value - (1 << 32) if value >= 1 << 31 else value


def expected_file(log):
    names = {(1, 6): "sol", (1, 4): "dop", (1, 0x21): "utc", (1, 0x30): "svinfo", (1, 7): "pvt", (1, 0x35): "sat"}
    epochs, firmware = {}, None
    for cls, mid, payload in scan(log):
        if (cls, mid) == (0x0A, 0x04) and firmware is None:
            firmware = payload[:30].split(b"\0")[0].decode("latin-1").strip()
        kind = names.get((cls, mid))
        if kind is None:
            continue
        itow = struct.unpack_from("<I", payload)[0]
        epochs.setdefault(itow, {}).setdefault(kind, payload)
    times = sorted(epochs)

    start = "0"
    for itow in times:
        e = epochs[itow]
        if itow == 0:
            continue
        if "pvt" in e and all(struct.unpack_from("<HBB", e["pvt"], 4)):
            start = "%04d-%02d-%02d %02d:%02d:%02d" % struct.unpack_from("<HBBBBB", e["pvt"], 4)
            break
        if "utc" in e and all(struct.unpack_from("<HBB", e["utc"], 12)):
            start = "%04d-%02d-%02d %02d:%02d:%02d" % struct.unpack_from("<HBBBBB", e["utc"], 12)
            break
    steps = sorted(b - a for a, b in zip(times, times[1:]))
    middle = len(steps) // 2
    median = steps[middle] if len(steps) % 2 else (steps[middle - 1] + steps[middle]) / 2
    lines = ["// Start Time: " + ("Unknown" if start == "0" else start),
             "// Update Rate: %.1fHz" % (1000 / median),
             "// Filter Profile: Error: No KVA filter profile",
             "// Option Flags: Error: No option flags",
             "// Firmware Version: " + firmware]

    for counter, itow in enumerate(times):
        e = epochs[itow] if itow != 0 else {}
        row = ["%05d" % (counter % 65536)]
        if "sol" in e:
            v = struct.unpack(SOL, e["sol"])
            row += [str(signed32(v[0]))] + [str(x) for x in v[1:5]]
            row += [fixed(x * 0.01, 2) for x in v[5:14]] + [str(v[15])]
        else:
            row += [""] * 15
        dop = struct.unpack(DOP, e["dop"]) if "dop" in e else None
        if dop:
            row += [str(signed32(dop[0]))] + [fixed(x * 0.01, 2) for x in dop[1:]]
        else:
            row += [""] * 8
        if "utc" in e:
            v = struct.unpack(UTC, e["utc"])
            row += [str(signed32(v[0]))] + [str(x) for x in v[1:]]
        else:
            row += [""] * 10
        if "svinfo" in e:
            itow_, count = struct.unpack_from(SVINFO, e["svinfo"])[:2]
            row.append(str(itow_))
            for i in range(16):
                if i < count:
                    channel = struct.unpack_from(CHANNEL, e["svinfo"], 8 + 12 * i)
                    row += [str(channel[1]), str(channel[3])]
                else:
                    row += ["", ""]
        else:
            row += [""] * 33
        if "pvt" in e:
            payload = e["pvt"]
            v = struct.unpack(PVT if len(payload) == 92 else PVT_SHORT, payload)
            head_veh = v[29] if len(payload) == 92 else 0
            row += [str(signed32(v[0])), str(v[8]), str(v[9])] + [str(x) for x in v[1:8]]
            row += [str(v[10]), str(v[11]), str(v[13]), fixed(v[14] * 1e-7, 7), fixed(v[15] * 1e-7, 7)]
            row += [str(x) for x in v[16:24]]
            row += [fixed(v[24] * 1e-5, 2), str(v[25]), fixed(v[26] * 1e-5, 2), fixed(head_veh * 1e-5, 2)]
            row += [fixed(x * 0.01, 2) for x in (dop[1:] if dop else [0] * 7)]
        else:
            row += [""] * 34
        if "sat" in e:
            itow_, _, count = struct.unpack_from(SAT, e["sat"])[:3]
            row.append(str(itow_))
            for i in range(60):
                if i < count:
                    s = struct.unpack_from(SATELLITE, e["sat"], 8 + 12 * i)
                    row += [str(s[0]), str(s[1]), str(s[2]), str(signed32(s[6]))]
                else:
                    row += [""] * 4
        else:
            row += [""] * 241
        lines.append("\t".join(row))
    return lines, len(times)


def run(arguments):
    return subprocess.run(arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=True, text=True)


def main():
    program, workdir = sys.argv[1], sys.argv[2]
    os.makedirs(workdir, exist_ok=True)
    settings = os.path.join(workdir, "settings.ini")
    failures = []
    for seed in (1, 2, 3):
        log = build_log(seed)
        path = os.path.join(workdir, f"receiver-{seed}.ubx")
        with open(path, "wb") as f:
            f.write(log)
        output = os.path.join(workdir, f"receiver-{seed}.txt")
        result = run([program, "export", "--settings", settings, "-o", output] + SETTINGS + [path])
        with open(output, "rb") as f:
            exported = f.read()
        lines = exported.decode().split("\n")
        wanted, epochs = expected_file(log)
        got = lines[:5] + lines[6:-1]
        if got != wanted or lines[-1] != "":
            differing = [i for i, (a, b) in enumerate(zip(got, wanted)) if a != b]
            failures.append(f"{output}: {len(got)} lines, {len(wanted)} expected, {len(differing)} differ")
            for i in differing[:3]:
                for column, (a, b) in enumerate(zip(got[i].split("\t"), wanted[i].split("\t"))):
                    if a != b:
                        failures.append(f"  line {i + 1} field {column + 1}: {a!r}, expected {b!r}")
                        break
        skipped = len(log) - sum(len(p) + 8 for _, _, p in scan(log))
        if f"skipped {skipped} of {len(log)} bytes" not in result.stderr:
            failures.append(f"{path}: no summary of {skipped} skipped bytes: {result.stderr!r}")
        if run([program, "export", "--quiet", "--settings", settings, "-o", output] + SETTINGS + [path]).stderr:
            failures.append(f"{path}: --quiet still wrote to standard error")

        converted = os.path.join(workdir, f"receiver-{seed}.jsonl")
        run([program, "convert", path, "-o", converted])
        again = os.path.join(workdir, f"receiver-{seed}-converted.txt")
        run([program, "export", "--quiet", "--settings", settings, "-o", again] + SETTINGS + [converted])
        with open(again, "rb") as f:
            if f.read() != exported:
                failures.append(f"{again}: differs from the export of the log itself")

        info = run([program, "info", "--recording", path]).stdout
        for text in (f"Epochs:           {epochs} ", f"Bytes skipped:    {skipped}\n", "Format:           UBX"):
            if text not in info:
                failures.append(f"{path}: info --recording lacks {text!r}:\n{info}")
        print(f"{path}: {len(lines) - 7} rows of {epochs} epochs, {skipped} bytes skipped")
        for name in (path, output, converted, again):
            os.remove(name)
    for failure in failures:
        print(failure)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
