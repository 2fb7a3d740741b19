#!/bin/sh
# The cost of a sample in two velmora-calc builds on the same generated
# file, on one core: CPU time (user + system, from /usr/bin/time) of RUNS
# alternating runs of each, and the instructions of one run of each counted
# by callgrind, which the load of the machine does not change.
#
#   bench/compare-calc-speed.sh REFERENCE_CALC CALC SAMPLES RUNS [OPTION...]
#
# The options are velmora-calc's and go to both builds (e.g. --sweep
# 6.5,0.5,5); CALC runs with --jobs 1. CALLGRIND_SAMPLES (default SAMPLES /
# 10) sets the size of the file counted by callgrind; 0 skips it.
set -eu

ref=${1:?usage: compare-calc-speed.sh REFERENCE_CALC CALC SAMPLES RUNS [OPTION...]}
new=${2:?}
count=${3:?}
runs=${4:?}
shift 4
cgcount=${CALLGRIND_SAMPLES:-$((count / 10))}

dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT INT TERM

generate() { # count file
    awk -v n="$1" 'BEGIN {
        srand(20240611)
        print "sample,t,ph,alk,ca,tds"
        for (i = 1; i <= n; i++)
            printf "S%d,%.1f,%.2f,%.0f,%.1f,%.0f\n", i, 5 + 55 * rand(), 6 + 3 * rand(),
                20 + 380 * rand(), 10 + 190 * rand(), 100 + 1900 * rand()
    }' > "$2"
}
generate "$count" "$dir/samples.csv"

cpu() { # calc...: user + system seconds of one run on core 0
    /usr/bin/time -f "%U %S" -o "$dir/t" taskset -c 0 "$@" "$dir/samples.csv" > /dev/null
    awk '{ printf "%.2f\n", $1 + $2 }' "$dir/t"
}

echo "load before: $(cut -d' ' -f1-3 /proc/loadavg)"
: > "$dir/ref.txt"
: > "$dir/new.txt"
i=0
while [ "$i" -lt "$runs" ]; do
    cpu "$ref" "$@" >> "$dir/ref.txt"
    cpu "$new" --jobs 1 "$@" >> "$dir/new.txt"
    i=$((i + 1))
done
echo "load after:  $(cut -d' ' -f1-3 /proc/loadavg)"

summary() { # file: min median max in microseconds per sample
    sort -n "$1" | awk -v n="$count" '{ v[NR] = $1 } END {
        printf "%.3f %.3f %.3f", 1e6 * v[1] / n, 1e6 * v[int((NR + 1) / 2)] / n, 1e6 * v[NR] / n }'
}
r=$(summary "$dir/ref.txt")
n=$(summary "$dir/new.txt")
echo "CPU us/sample, min median max over $runs runs: reference $r, new $n"
echo "$r $n" | awk '{ printf "ratio new/reference: median %.3f (min/min %.3f, max/max %.3f)\n", $5 / $2, $4 / $1, $6 / $3 }'

if [ "$cgcount" -gt 0 ]; then
    generate "$cgcount" "$dir/cg.csv"
    count() {
        valgrind --tool=callgrind --callgrind-out-file=/dev/null "$@" "$dir/cg.csv" 2>&1 > /dev/null |
            sed -n 's/.*refs: *//p' | tr -d ,
    }
    ri=$(count "$ref" "$@")
    ni=$(count "$new" --jobs 1 "$@")
    echo "$ri $ni $cgcount" | awk '{ printf "instructions/sample (callgrind, %d samples): reference %.0f, new %.0f, ratio %.3f\n", $3, $1 / $3, $2 / $3, $2 / $1 }'
fi
