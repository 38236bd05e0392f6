"""Builds UBX receiver logs here, with Python's struct and the public message
layouts, exports them through asciiexport with the raw GPS and GNSS groups,
and compares every line of the file, byte for byte, with lines worked out
here from the frames' values: which frames count, the epochs in the order of
their GPS time (week and time of week, the week carried across wraps), the
header block and each field's text. Then converts each log to JSON Lines and
checks that its export has the same bytes, and checks the line on standard
error that counts what was passed over and what info --recording lists.

Usage: ubx_export.py ASCIIEXPORT WORKDIR
"""

import datetime
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
    # A version text with a line break, which must not break the header's line.
    log += frame(0x0A, 0x04, b"EXT CORE 9.87\r\n// (abc)".ljust(30, b"\0") + b"0008".ljust(10, b"\0") + b"x" * 30)
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
    # Epochs across the end of a week, dated and with weeks of their own,
    # some of them again one week later, and one at time of week 0.
    for week in (2445, 2446):
        for itow in (604798000, 604799000, 0, 1000):
            week_of_epoch = week + (1 if itow < 2000 else 0)
            log += frame(0x01, 0x06, random_payload(rng, SOL, itow, f2=week_of_epoch))
            date = gps_to_utc(week_of_epoch, itow)
            log += frame(0x01, 0x07, random_payload(rng, PVT, itow, f1=date[0], f2=date[1], f3=date[2],
                                                    f4=date[3], f5=date[4], f6=date[5], f7=0x37))
            log += frame(0x01, 0x04, random_payload(rng, DOP, itow))
    # A frame of a wrong length, and a frame cut short at the end.
    log += frame(0x01, 0x04, random_payload(rng, DOP, 5000) + b"\0")
    log += frame(0x01, 0x06, random_payload(rng, SOL, 77))[:30]
    return bytes(log)


MS_PER_WEEK = 7 * 24 * 3600 * 1000
GPS_START = datetime.datetime(1980, 1, 6)


def gps_to_utc(week, itow):
    """The UTC date and time of a GPS time, 18 leap seconds behind."""
    utc = GPS_START + datetime.timedelta(milliseconds=week * MS_PER_WEEK + itow - 18000)
    return utc.year, utc.month, utc.day, utc.hour, utc.minute, utc.second


def days_before(year, month, day):
    """Days from 0001-01-01 of the proleptic Gregorian calendar, for any year."""
    y = year - 1
    days = 365 * y + y // 4 - y // 100 + y // 400
    lengths = [31, 29 if year % 4 == 0 and (year % 100 != 0 or year % 400 == 0) else 28,
               31, 30, 31, 30, 31, 31, 30, 31, 30, 31]
    return days + sum(lengths[:month - 1]) + day - 1


def week_of_date(date, itow):
    """The GPS week that puts the UTC date and time nearest to the time of week."""
    year, month, day, hour, minute, second = date
    days = days_before(year, month, day) - days_before(1980, 1, 6)
    utc = (((days * 24 + hour) * 60 + minute) * 60 + second) * 1000
    return (utc - itow + MS_PER_WEEK // 2) // MS_PER_WEEK


def valid_date(payload, at, flags):
    """The date and time at `at` when the validity byte after them holds `flags` and they are possible."""
    year, month, day, hour, minute, second, valid = struct.unpack_from("<HBBBBBB", payload, at)
    if valid & flags != flags or year == 0 or not 1 <= month <= 12 or not 1 <= day <= 31:
        return None
    if hour > 23 or minute > 59 or second > 60:
        return None
    return year, month, day, hour, minute, second


def valid_length(kind, payload):
    n = len(payload)
    return {"sol": n == 52, "dop": n == 18, "utc": n == 20, "pvt": n in (92, 84),
            "svinfo": n >= 8 and n == 8 + 12 * payload[4],
            "sat": n >= 8 and n == 8 + 12 * payload[5]}[kind]


def scan(log):
    """The good frames of the log, as (class, id, payload) in order, and how
    many candidates failed their checksum and ran past the end."""
    frames, i, bad, cut = [], 0, 0, 0
    while i < len(log) - 1:
        if log[i] == 0xB5 and log[i + 1] == 0x62:
            length = log[i + 4] | log[i + 5] << 8 if i + 6 <= len(log) else 0
            end = i + 6 + length + 2
            if i + 6 > len(log) or end > len(log):
                cut += 1
            else:
                a = b = 0
                for byte in log[i + 2:i + 6 + length]:
                    a = (a + byte) & 0xFF
                    b = (b + a) & 0xFF
                if log[end - 2] == a and log[end - 1] == b:
                    frames.append((log[i + 2], log[i + 3], log[i + 6:i + 6 + length]))
                    i = end
                    continue
                bad += 1
        i += 1
    return frames, bad, cut


def fixed(x, decimals):
    text = format(Decimal(x).quantize(Decimal(1).scaleb(-decimals), rounding=ROUND_HALF_UP), "f")
    return text.lstrip("-") if x == 0 else text


def signed32(value):
    return value - (1 << 32) if value >= 1 << 31 else value


def read_epochs(frames):
    """The epochs of the frames in time order, as (time, time of week, kinds),
    and the messages passed over: of a wrong length, repeated, at time of week 0."""
    names = {(1, 6): "sol", (1, 4): "dop", (1, 0x21): "utc", (1, 0x30): "svinfo", (1, 7): "pvt", (1, 0x35): "sat"}
    entries, wrong, repeated = [], 0, 0
    week, previous, shown = 0, None, False
    for cls, mid, payload in frames:
        kind = names.get((cls, mid))
        if kind is None:
            continue
        if not valid_length(kind, payload):
            wrong += 1
            continue
        itow = struct.unpack_from("<I", payload)[0]
        date = None
        if kind == "pvt":
            date = valid_date(payload, 4, 0x03)
        elif kind == "utc":
            date = valid_date(payload, 12, 0x04)
        if previous is not None and itow < previous - MS_PER_WEEK // 2:
            week += 1
        elif previous is not None and itow > previous + MS_PER_WEEK // 2:
            week -= 1
        previous = itow
        shown_week = struct.unpack_from("<h", payload, 8)[0] if kind == "sol" else (
            week_of_date(date, itow) if date else None)
        if shown_week is not None:
            if not shown:
                for entry in entries:
                    entry["time"] += (shown_week - week) * MS_PER_WEEK
            week, shown = shown_week, True
        time = week * MS_PER_WEEK + itow
        # The messages of the epoch before this one showed its week take it too.
        if (shown_week is not None and entries and not entries[-1]["week shown"]
                and entries[-1]["time"] != time and (time - entries[-1]["time"]) % MS_PER_WEEK == 0):
            entries[-1]["time"] = time
        if not entries or entries[-1]["time"] != time:
            entries.append({"time": time, "itow": itow, "kinds": {}, "dated": set(), "week shown": False})
        if shown_week is not None:
            entries[-1]["week shown"] = True
        if kind in entries[-1]["kinds"]:
            repeated += 1
            continue
        entries[-1]["kinds"][kind] = payload
        if date:
            entries[-1]["dated"].add(kind)
    epochs = []
    for entry in sorted(entries, key=lambda e: e["time"]):
        if epochs and epochs[-1]["time"] == entry["time"]:
            for kind, payload in entry["kinds"].items():
                if kind in epochs[-1]["kinds"]:
                    repeated += 1
                else:
                    epochs[-1]["kinds"][kind] = payload
                    if kind in entry["dated"]:
                        epochs[-1]["dated"].add(kind)
        else:
            epochs.append(entry)
    at_zero = sum(len(e["kinds"]) for e in epochs if e["itow"] == 0)
    return epochs, wrong, repeated, at_zero


def expected_file(log, frames):
    epochs, _, _, _ = read_epochs(frames)
    firmware = None
    for cls, mid, payload in frames:
        if (cls, mid) == (0x0A, 0x04) and firmware is None:
            text = payload[:30].split(b"\0")[0].decode("latin-1")
            firmware = "".join(c if c.isprintable() else " " for c in text).strip()

    start = "0"
    for epoch in epochs:
        if epoch["itow"] == 0:
            continue
        if "pvt" in epoch["dated"]:
            start = "%04d-%02d-%02d %02d:%02d:%02d" % struct.unpack_from("<HBBBBB", epoch["kinds"]["pvt"], 4)
            break
        if "utc" in epoch["dated"]:
            start = "%04d-%02d-%02d %02d:%02d:%02d" % struct.unpack_from("<HBBBBB", epoch["kinds"]["utc"], 12)
            break
    times = [e["time"] for e in epochs]
    steps = sorted(min(b - a, 0xFFFFFFFF) for a, b in zip(times, times[1:]))
    middle = len(steps) // 2
    median = steps[middle] if len(steps) % 2 else (steps[middle - 1] + steps[middle]) / 2
    lines = ["// Start Time: " + ("Unknown" if start == "0" else start),
             "// Update Rate: %.1fHz" % (1000 / median),
             "// Filter Profile: Error: No KVA filter profile",
             "// Option Flags: Error: No option flags",
             "// Firmware Version: " + firmware]

    for counter, epoch in enumerate(epochs):
        e = epoch["kinds"] if epoch["itow"] != 0 else {}
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
    return lines, len(epochs)


def expected_notice(path, log, frames, bad, cut):
    """The line that says what the export passed over."""
    _, wrong, repeated, at_zero = read_epochs(frames)
    skipped = len(log) - sum(len(p) + 8 for _, _, p in frames)
    parts = []
    if skipped:
        parts.append(f"{skipped} of {len(log)} bytes outside good UBX frames (frames with a bad checksum: "
                     f"{bad}, cut short at the end: {cut})")
    if wrong:
        parts.append(f"messages of a wrong length: {wrong}")
    if repeated:
        parts.append(f"repeated messages: {repeated}")
    if at_zero:
        parts.append(f"messages at time of week 0, which hold no data: {at_zero}")
    return f"{path}: passed over: " + "; ".join(parts), skipped


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
        frames, bad, cut = scan(log)
        wanted, epochs = expected_file(log, frames)
        got = lines[:5] + lines[6:-1]
        if got != wanted or lines[-1] != "":
            differing = [i for i, (a, b) in enumerate(zip(got, wanted)) if a != b]
            failures.append(f"{output}: {len(got)} lines, {len(wanted)} expected, {len(differing)} differ")
            for i in differing[:3]:
                for column, (a, b) in enumerate(zip(got[i].split("\t"), wanted[i].split("\t"))):
                    if a != b:
                        failures.append(f"  line {i + 1} field {column + 1}: {a!r}, expected {b!r}")
                        break
        notice, skipped = expected_notice(path, log, frames, bad, cut)
        if notice + "\n" not in result.stderr:
            failures.append(f"{path}: no line {notice!r} in {result.stderr!r}")
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
