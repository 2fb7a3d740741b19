#!/bin/sh
# velmora-calc(1) from velmora-calc's --help:
#   calc-manual.sh VELMORA_CALC VERSION INCLUDE OUTPUT
set -eu
help2man --no-info --no-discard-stderr --section=1 --version-string="$2" \
    --name="corrosion and scaling indices of many water samples" \
    --include="$3" --output="$4.tmp" "$1"
# Long comma-separated lists (the output columns) may break after a comma,
# flush left, and a list going on on the next line does so without a space.
sed -E '/^[a-z0-9]+(,[a-z0-9]+)+,?$/ { s/,/,\\:/g; s/,\\:$/,\\c/; i\
.na
a\
.ad
}' "$4.tmp" >"$4"
rm -f "$4.tmp"
