#!/usr/bin/env bash
# The checks a packager runs on velmora's Debian package:
#   check-package.sh BUILD_DIR SOURCE_DIR
# builds the package into a temporary folder, lists it, runs lintian,
# unpacks it, validates the desktop entry and the AppStream metadata, and
# runs the unpacked programs.
set -euo pipefail
build=$(realpath "$1")
src=$(realpath "$2")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() {
    echo "FAIL: $*" >&2
    failures=$((failures + 1))
}

cpack --config "$build/CPackConfig.cmake" -B "$work/out" >"$work/cpack.log" 2>&1 ||
    { cat "$work/cpack.log" >&2; exit 1; }
deb=$(echo "$work"/out/velmora_*.deb)
[ -f "$deb" ] || { echo "no package in $work/out" >&2; exit 1; }
echo "built $(basename "$deb")"

# The package's name, section and dependencies.
[ "$(dpkg-deb -f "$deb" Section)" = science ] || fail "section is not science"
depends=$(dpkg-deb -f "$deb" Depends)
for lib in libqt6widgets6 libstdc++6 fonts-liberation fonts-dejavu-core; do
    [[ $depends == *"$lib"* ]] || fail "Depends lacks $lib: $depends"
done
[ -n "$(dpkg-deb -f "$deb" Description | sed 1d)" ] || fail "no long description"

# The contents.
dpkg-deb -c "$deb" | awk '{print $NF}' | sed 's|^\./|/|' >"$work/contents"
app_id=$(sed -n 's|^/usr/share/applications/\(.*\)\.desktop$|\1|p' "$work/contents")
[ -n "$app_id" ] || fail "no desktop entry"
expected=(/usr/bin/velmora /usr/bin/velmora-calc
    "/usr/share/applications/$app_id.desktop" "/usr/share/metainfo/$app_id.metainfo.xml"
    /usr/share/icons/hicolor/scalable/apps/velmora.svg
    /usr/share/man/man1/velmora.1.gz /usr/share/man/man1/velmora-calc.1.gz
    /usr/share/bash-completion/completions/velmora-calc
    /usr/share/doc/velmora/copyright /usr/share/doc/velmora/changelog.gz)
for side in 16 32 48 64 128 256; do
    expected+=("/usr/share/icons/hicolor/${side}x${side}/apps/velmora.png")
done
for f in "${expected[@]}"; do
    grep -qxF "$f" "$work/contents" || fail "the package lacks $f"
done

# Debian's own checks: no error; every warning is explained in the README.
lintian --fail-on error --tag-display-limit 0 "$deb" >"$work/lintian" 2>&1 ||
    { cat "$work/lintian" >&2; fail "lintian reports errors"; }
cat "$work/lintian"
for tag in $(sed -n 's/^[WE]: velmora[^:]*: \([^ ]*\).*/\1/p' "$work/lintian" | sort -u); do
    grep -q -- "$tag" "$src/README.md" || fail "lintian warning $tag is not explained in README.md"
done

# Unpacked into a temporary root.
root=$work/root
dpkg -x "$deb" "$root"
desktop-file-validate "$root/usr/share/applications/$app_id.desktop" || fail "desktop-file-validate"
appstreamcli validate --no-net --pedantic "$root/usr/share/metainfo/$app_id.metainfo.xml" ||
    fail "appstreamcli validate"
# the desktop entry's icon and program are in the package
icon=$(sed -n 's/^Icon=//p' "$root/usr/share/applications/$app_id.desktop")
exec_line=$(sed -n 's/^Exec=//p' "$root/usr/share/applications/$app_id.desktop")
[ -f "$root/usr/share/icons/hicolor/scalable/apps/$icon.svg" ] || fail "no icon named $icon"
[ -x "$root/usr/bin/${exec_line%% *}" ] || fail "Exec=$exec_line is not in /usr/bin"
# every screenshot the metadata shows is in docs/
for shot in $(sed -n 's|.*<image>.*/docs/\([^<]*\)</image>.*|\1|p' \
    "$root/usr/share/metainfo/$app_id.metainfo.xml"); do
    [ -f "$src/docs/$shot" ] || fail "screenshot docs/$shot is missing"
done
# every picture is as large as its folder says
for png in "$root"/usr/share/icons/hicolor/*/apps/*.png; do
    size=$(basename "$(dirname "$(dirname "$png")")")
    read -r w h < <(od -An -tu1 -j16 -N8 "$png" |
        awk '{print $1*16777216+$2*65536+$3*256+$4, $5*16777216+$6*65536+$7*256+$8}')
    [ "${w}x${h}" = "$size" ] || fail "$png is ${w}x${h}"
done

# The unpacked velmora-calc computes the bundled examples as the built one does.
calc=$root/usr/bin/velmora-calc
status=0
"$calc" "$src/examples/waters.csv" >"$work/unpacked.csv" || status=$?
built_status=0
"$build/batch/velmora-calc" "$src/examples/waters.csv" >"$work/built.csv" || built_status=$?
[ "$status" = "$built_status" ] || fail "velmora-calc exit status $status, built $built_status"
[ "$(wc -l <"$work/unpacked.csv")" -gt 1 ] || fail "velmora-calc wrote no rows"
cmp -s "$work/unpacked.csv" "$work/built.csv" || fail "the unpacked velmora-calc computes differently"

# The unpacked velmora starts offscreen and quits.
XDG_CONFIG_HOME=$work/config QT_QPA_PLATFORM=offscreen VELMORA_QUIT_AFTER_SHOW=1 \
    timeout 60 "$root/usr/bin/velmora" || fail "velmora did not start and quit"

# The manuals: velmora-calc(1) names every option --help names, both pages
# render without a warning.
options=$("$calc" --help | grep -oE '^ +(-[a-zA-Z], )?--[a-z-]+' | grep -oE -- '--?[a-z-]+' | sort -u)
[ -n "$options" ] || fail "no option found in --help"
zcat "$root/usr/share/man/man1/velmora-calc.1.gz" | sed 's/\\-/-/g' >"$work/calc.1"
for o in $options; do
    grep -q -- "$o\b" "$work/calc.1" || fail "velmora-calc(1) lacks $o"
done
# velmora(1) names every environment variable of its own the program reads
zcat "$root/usr/share/man/man1/velmora.1.gz" | sed 's/\\-/-/g' >"$work/velmora.1"
for v in $(cd "$src" && grep -rhoE 'qEnvironmentVariable(IsSet)?\("VELMORA_[A-Z_]+' \
    --include=*.cpp --exclude-dir=tests --exclude-dir='build*' . | grep -oE 'VELMORA_[A-Z_]+' | sort -u); do
    grep -qw -- "$v" "$work/velmora.1" || fail "velmora(1) lacks $v"
done
for page in velmora velmora-calc; do
    warnings=$(MANWIDTH=80 man --warnings -l "$root/usr/share/man/man1/$page.1.gz" 2>&1 >/dev/null)
    [ -z "$warnings" ] || fail "$page(1): $warnings"
done

# The shell completion offers every option of --help (by its long name when
# it has one), and only values
# velmora-calc accepts.
complete_words() { # complete_words WORD... : what Tab offers after them
    bash -c '
        source /usr/share/bash-completion/bash_completion
        source "$1"; shift
        PATH=$(dirname "$CALC"):$PATH
        COMP_WORDS=(velmora-calc "$@"); COMP_CWORD=$(($# )); COMP_LINE="velmora-calc $*"
        COMP_POINT=${#COMP_LINE}
        _velmora_calc velmora-calc "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD-1]}"
        printf "%s\n" "${COMPREPLY[@]}"' _ \
        "$root/usr/share/bash-completion/completions/velmora-calc" "$@"
}
export CALC=$calc
offered=$(complete_words -)
while read -r line; do
    # one name per option line: the long one, else the short one
    name=$(grep -oE -- '--[a-z-]+' <<<"$line" | head -1 || true)
    [ -n "$name" ] || name=$(grep -oE -- '-[a-zA-Z]' <<<"$line" | head -1)
    grep -qxF -- "$name" <<<"$offered" || fail "completion lacks $name"
done < <("$calc" --help | grep -E '^ +-')
for opt in --ionic --activity; do
    values=$(complete_words "$opt" "")
    [ -n "$values" ] || fail "completion offers no value after $opt"
    for v in $values; do
        s=0
        "$calc" "$opt" "$v" "$src/examples/waters.csv" >/dev/null 2>&1 || s=$?
        [ "$s" != 2 ] || fail "velmora-calc rejects the completed $opt $v"
    done
done

if ((failures)); then
    echo "$failures package check(s) failed" >&2
    exit 1
fi
echo "package checks passed"
