#!/usr/bin/env bash
# Many recordings exported by xargs -P, one process each, as the README
# shows it: every recording's exit status is collected, a damaged recording
# fails alone, and the files are the bytes of one export after another.
#
# Usage: export_in_parallel.sh BIN_DIR WORK_DIR
set -euo pipefail
bin=$(cd "$1" && pwd) work=$2
rm -rf "$work"
mkdir -p "$work/recordings" "$work/serial"
cd "$work"
# The program as the user calls it, with settings of this test's own.
export PATH="$bin:$PATH" HOME="$work" XDG_CONFIG_HOME="$work/config"

for seed in $(seq 1 12); do
    asciiexport generate --samples 200 --seed "$seed" -o "recordings/walk$seed.jsonl"
done
printf '{"properties": {}}\n{"packetCounter": "seven"}\n' > recordings/damaged.jsonl

# The README's command.
mkdir -p out
find recordings/ -name '*.jsonl' -print0 |
  xargs -0 -P 4 -I {} sh -c 'asciiexport export --quiet --output-dir out/ "$1"; echo "$? $1"' sh {} \
      > statuses 2> errors

fail() { echo "FAIL: $*"; exit 1; }
[ "$(wc -l < statuses)" -eq 13 ] || fail "$(wc -l < statuses) exit statuses for 13 recordings"
[ "$(awk '$1 != 0' statuses)" = "1 recordings/damaged.jsonl" ] \
    || fail "the failures are: $(awk '$1 != 0' statuses)"
[ "$(grep -c '^0 ' statuses)" -eq 12 ] || fail "not every good recording was exported"
grep -q '^recordings/damaged.jsonl:2: ' errors || fail "no message for the damaged recording: $(cat errors)"
[ "$(wc -l < errors)" -eq 1 ] || fail "more on standard error than the damaged recording: $(cat errors)"

for recording in recordings/walk*.jsonl; do
    asciiexport export --quiet --output-dir serial/ "$recording"
done
diff -r out serial || fail "the files exported in parallel differ from those exported one by one"
[ "$(ls out | wc -l)" -eq 12 ] || fail "$(ls out | wc -l) files written"
echo "PASS: 13 recordings, 12 exported, 1 failed, the same bytes as one at a time"
