#!/bin/sh
# Compares the output of two velmora-calc builds byte for byte, with their
# exit status, on the bundled examples and on generated files, under every
# ionic strength and activity equation, with and without the Larson-Skold
# index, without a sweep and with several sweeps (rising, falling, long,
# flat, and one that runs into run-time errors), and with --jobs 1, 2 and 7
# for the build under test.
#
#   [JOBS="1 2 7"] bench/compare-calc-output.sh REFERENCE_CALC CALC [ROWS]
#
# ROWS (default 3000) is the number of generated samples of each kind; JOBS
# the --jobs values the build under test runs with ("" for none: its default).
# Prints one line per difference and a summary; exit status 1 on any.
set -eu

ref=${1:?usage: compare-calc-output.sh REFERENCE_CALC CALC [ROWS]}
new=${2:?usage: compare-calc-output.sh REFERENCE_CALC CALC [ROWS]}
rows=${3:-3000}
jobslist=${JOBS-1 2 7}
[ -n "$jobslist" ] || jobslist=default
here=$(cd "$(dirname "$0")/.." && pwd)

dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT INT TERM

# Realistic waters with every column, a few cells empty.
awk -v n="$rows" 'BEGIN {
    srand(7)
    print "sample,tds,ec,t,ph,alk,ca,mg,k,na,zn,mn,fe,al,hco3,co3,no2,no3,f,cl,so4"
    for (i = 1; i <= n; i++) {
        line = sprintf("W%d,%.0f,%.1f,%.1f,%.2f,%.0f,%.1f,%.1f,%.1f,%.1f,%.2f,%.2f,%.2f,%.2f,%.0f,%.1f,%.2f,%.1f,%.2f,%.1f,%.1f",
            i, 50 + 2000 * rand(), 5 + 300 * rand(), 1 + 70 * rand(), 5 + 5 * rand(),
            5 + 500 * rand(), 1 + 300 * rand(), 100 * rand(), 20 * rand(), 300 * rand(),
            rand(), rand(), 2 * rand(), rand(), 600 * rand(), 30 * rand(), rand(), 50 * rand(),
            2 * rand(), 500 * rand(), 500 * rand())
        if (rand() < 0.1) { k = split(line, f, ","); f[2 + int(rand() * 20)] = ""; line = f[1]
            for (j = 2; j <= k; j++) line = line "," f[j] }
        print line
    }
}' > "$dir/full.csv"

# Awkward texts: long digit strings, exponents, signs, blanks, quotes,
# wrong field counts, bad cells, extreme values, CRLF line ends.
awk -v n="$rows" 'BEGIN {
    srand(11)
    split("7.5|  7.25 |+8|8.|.5|1e1|7.123456789012345678901|0|14|14.0001|-1|abc||1e400|1e-400|0.00000000000000000000007e22", ph, "|")
    split("200|0|1e308|5e-5|  100|100.|-5|0.000000000000000000001|123456789012345678901234|x|", v, "|")
    print "sample,t,ph,alk,ca,tds,mg,cl,so4,ec,na,k,hco3,co3"
    for (i = 1; i <= n; i++) {
        r = rand()
        s = (r < 0.05) ? "\"q,\"\"" i "\"\"\"" : "A" i
        line = sprintf("%s,%s,%s,%s,%s,%s,%s,%s,%s,%s,%s,%s,%s,%s", s,
            (rand() < 0.9) ? sprintf("%.1f", 80 * rand()) : v[1 + int(rand() * 11)],
            ph[1 + int(rand() * 16)],
            (rand() < 0.8) ? sprintf("%.0f", 400 * rand()) : v[1 + int(rand() * 11)],
            (rand() < 0.8) ? sprintf("%.1f", 200 * rand()) : v[1 + int(rand() * 11)],
            (rand() < 0.8) ? sprintf("%.0f", 2000 * rand()) : v[1 + int(rand() * 11)],
            sprintf("%.1f", 50 * rand()), sprintf("%.1f", 300 * rand()),
            sprintf("%.1f", 300 * rand()), sprintf("%.1f", 200 * rand()),
            sprintf("%.1f", 200 * rand()), sprintf("%.1f", 10 * rand()),
            (rand() < 0.5) ? "" : sprintf("%.0f", 500 * rand()),
            (rand() < 0.7) ? "" : sprintf("%.1f", 20 * rand()))
        if (r > 0.98) line = line ",extra"
        else if (r > 0.96) line = "\"open" line
        printf "%s%s", line, (i % 7 == 0) ? "\r\n" : "\n"
    }
}' > "$dir/odd.csv"

cp "$here/examples/waters.csv" "$dir/examples.csv"

runs=0
diffs=0
compare() { # file, then the options
    file=$1
    shift
    st=0
    "$ref" "$@" "$dir/$file" > "$dir/ref.out" 2> "$dir/ref.err" || st=$?
    for jobs in $jobslist; do
        sn=0
        opt=""
        [ "$jobs" = default ] || opt="--jobs $jobs"
        "$new" $opt "$@" "$dir/$file" > "$dir/new.out" 2> "$dir/new.err" || sn=$?
        runs=$((runs + 1))
        if [ "$st" -ne "$sn" ] || ! cmp -s "$dir/ref.out" "$dir/new.out" ||
            ! cmp -s "$dir/ref.err" "$dir/new.err"; then
            echo "DIFFERENT: $file --jobs $jobs $* (status $st / $sn)"
            diffs=$((diffs + 1))
        fi
    done
}

for file in examples.csv full.csv odd.csv; do
    for ionic in langelier russell lewis; do
        for activity in none limiting extended guntelberg davies; do
            for ls in "" --larson-skold; do
                for sweep in "" 6.5,0.5,5 12.95,-0.05,140 7,0,140 1,2,6 3,-2,140; do
                    compare "$file" --ionic "$ionic" --activity "$activity" $ls \
                        ${sweep:+--sweep "$sweep"}
                done
            done
        done
    done
done
echo "$runs runs, $diffs different"
[ "$diffs" -eq 0 ]
