#!/usr/bin/env bash
# Every text the plug-in and the program show has its German translation:
# the translation sources, brought up to date with the code by lupdate in a
# scratch copy, hold no unfinished message.
#
# Usage: check_complete.sh LUPDATE SOURCE_DIR WORK_DIR
set -euo pipefail
lupdate=$1 source=$2 work=$3
rm -rf "$work"
mkdir -p "$work"
status=0
for pair in asciiexporter:src asciiexport:host; do
    name=${pair%%:*} code=${pair#*:}
    for ts in "$source"/translations/"$name"_*.ts; do
        copy=$work/$(basename "$ts")
        cp "$ts" "$copy"
        "$lupdate" -silent -no-obsolete -locations none "$source/$code" -ts "$copy" 2>/dev/null
        if grep -q 'type="unfinished"' "$copy"; then
            echo "FAIL: $(basename "$ts") lacks translations (run scripts/update-translations):"
            grep -B 2 'type="unfinished"' "$copy" | grep '<source>'
            status=1
        fi
    done
done
[ $status -eq 0 ] && echo "PASS: every text translated"
exit $status
