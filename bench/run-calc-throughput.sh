#!/bin/sh
# Times velmora-calc over a generated file of samples: samples per second,
# CPU time per sample and the peak memory, from /usr/bin/time -v.
#
#   bench/run-calc-throughput.sh [VELMORA_CALC [SAMPLES [OPTION...]]]
#
# VELMORA_CALC defaults to build/batch/velmora-calc, SAMPLES to 1000000; the
# options are velmora-calc's (e.g. --jobs 2, --sweep 6.5,0.5,5). The output
# goes to /dev/null, so the figure is the calculator's, not the disk's.
set -eu

calc=${1:-build/batch/velmora-calc}
count=${2:-1000000}
[ $# -gt 2 ] && shift 2 || set --

if [ ! -x "$calc" ]; then
    echo "run-calc-throughput: no velmora-calc at $calc (build it first)" >&2
    exit 2
fi
if [ ! -x /usr/bin/time ]; then
    echo "run-calc-throughput: needs /usr/bin/time (apt-get install time)" >&2
    exit 2
fi

dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT INT TERM

# temperature, pH, alkalinity, calcium and dissolved solids, as a lab export writes them
awk -v n="$count" 'BEGIN {
    srand(20240611)
    print "sample,t,ph,alk,ca,tds"
    for (i = 1; i <= n; i++)
        printf "S%d,%.1f,%.2f,%.0f,%.1f,%.0f\n", i, 5 + 55 * rand(), 6 + 3 * rand(),
            20 + 380 * rand(), 10 + 190 * rand(), 100 + 1900 * rand()
}' > "$dir/samples.csv"

status=0
/usr/bin/time -v "$calc" "$@" "$dir/samples.csv" > /dev/null 2> "$dir/time.txt" || status=$?
if [ "$status" -ne 0 ]; then
    echo "run-calc-throughput: velmora-calc exited with $status" >&2
    cat "$dir/time.txt" >&2
    exit 1
fi

awk -v n="$count" -F': ' '
    /Elapsed \(wall clock\)/ {
        k = split($2, p, ":"); s = 0
        for (i = 1; i <= k; i++) s = s * 60 + p[i]
        wall = s
    }
    /User time/ { user = $2 }
    /System time/ { sys = $2 }
    /Maximum resident set size/ { rss = $2 }
    END {
        printf "samples:          %d\n", n
        printf "wall clock:       %.2f s (user %.2f s, system %.2f s)\n", wall, user, sys
        printf "samples/s (wall): %.0f\n", n / wall
        printf "samples/s (cpu):  %.0f\n", n / (user + sys)
        printf "cpu per sample:   %.3f us\n", 1e6 * (user + sys) / n
        printf "max RSS:          %d KB\n", rss
    }' "$dir/time.txt"
