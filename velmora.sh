#!/usr/bin/env bash
# Velmora's one entry point for building, running and testing.
#   ./velmora.sh run    install what is missing, build, start the desktop program
#   ./velmora.sh test   install what is missing, build, run every test (plain and sanitized),
#                       then velmora-calc's tests under ThreadSanitizer
#   ./velmora.sh calc   build and run velmora-calc on the bundled example waters
#   ./velmora.sh package  build the Debian package into build/ and print its path
#   ./velmora.sh coverage run every test on a build with coverage counters, then the
#                         program's line and branch coverage (gcovr; tests and benchmarks left out)
set -euo pipefail
cd "$(dirname "$0")"

PACKAGES=(cmake g++ ninja-build pkg-config qt6-base-dev libqt6opengl6-dev qt6-charts-dev libgif-dev libgtest-dev
          libgmock-dev libbenchmark-dev xvfb xauth fonts-dejavu-core time fonts-liberation poppler-utils
          valgrind libdragonbox-dev)
# the icons, the manuals and the Debian package with its checks
PACKAGES+=(qt6-svg-dev help2man man-db dpkg-dev lintian desktop-file-utils appstream bash-completion)

install_deps() {
    local missing=()
    for p in "${PACKAGES[@]}"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
    done
    if ((${#missing[@]})); then
        local sudo=""
        [ "$(id -u)" -eq 0 ] || sudo="sudo"
        echo "Installing: ${missing[*]}"
        $sudo apt-get update
        DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y --no-install-recommends "${missing[@]}"
    fi
}

build() { # build DIR [cmake options...]
    local dir=$1
    shift
    cmake -S . -B "$dir" -G Ninja "$@" >/dev/null
    cmake --build "$dir" -j"$(nproc)"
}

test_env() {
    export QT_QPA_PLATFORM=offscreen
    export XDG_RUNTIME_DIR
    XDG_RUNTIME_DIR=$(mktemp -d)
    chmod 700 "$XDG_RUNTIME_DIR"
}

case "${1:-}" in
run)
    install_deps
    build build -DCMAKE_BUILD_TYPE=Release -DVELMORA_BENCHMARKS=OFF
    exec ./build/app/velmora
    ;;
calc)
    install_deps
    build build -DCMAKE_BUILD_TYPE=Release -DVELMORA_BENCHMARKS=OFF
    exec ./build/batch/velmora-calc examples/waters.csv
    ;;
package)
    install_deps
    build build -DCMAKE_BUILD_TYPE=Release -DVELMORA_BENCHMARKS=OFF
    log=$(cd build && cpack 2>&1) || { echo "$log" >&2; exit 1; }
    sed -n 's/^CPack: - package: \(.*\) generated\.$/\1/p' <<<"$log"
    ;;
test)
    install_deps
    test_env
    build build -DCMAKE_BUILD_TYPE=Release
    (cd build && ctest --output-on-failure -j2)
    build build-san -DCMAKE_BUILD_TYPE=Debug -DVELMORA_SANITIZE=ON -DVELMORA_BENCHMARKS=OFF
    (cd build-san && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
        ctest --output-on-failure -j2)
    # the batch calculator's worker pool under ThreadSanitizer: its tests only
    cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVELMORA_TSAN=ON \
        -DVELMORA_BENCHMARKS=OFF >/dev/null
    cmake --build build-tsan -j"$(nproc)" --target batch_tests
    TSAN_OPTIONS="halt_on_error=1 second_deadlock_stack=1" build-tsan/tests/batch/batch_tests
    ;;
coverage)
    PACKAGES+=(gcovr)
    install_deps
    test_env
    build build-cov -DCMAKE_BUILD_TYPE=Debug -DVELMORA_COVERAGE=ON -DVELMORA_BENCHMARKS=OFF \
        -DVELMORA_PACKAGING=OFF
    find build-cov -name '*.gcda' -delete
    # one test at a time: the counters of a library are merged into one file
    (cd build-cov && ctest >/dev/null) || echo "some tests failed" >&2
    gcovr -r . --object-directory build-cov --exclude 'tests/' --exclude 'bench/' \
        --exclude 'build.*/' --exclude 'docs/' \
        --print-summary -o build-cov/coverage.txt
    ;;
*)
    echo "usage: $0 run|test|calc|package|coverage" >&2
    exit 2
    ;;
esac
