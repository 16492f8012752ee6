#!/usr/bin/env bash
# Fuzzes the readers: scripts/fuzz.sh TARGET|all SECONDS
# Targets: reader (waveform files), nodelist (node lists), roundtrip (read,
# write, read again). Each run first replays its corpus (the seeds, the
# examples, every earlier finding kept under tests/fuzz/) and then fuzzes for
# SECONDS. Targets of "all" run side by side, one per core. Exits non-zero on
# any finding; the input that caused it is left in build/fuzz/findings/TARGET/
# and belongs, once fixed, in tests/fuzz/TARGET/ where the test suite replays it.
set -euo pipefail
cd "$(dirname "$0")/.."
target=${1:-all}
seconds=${2:-60}
targets=(reader nodelist roundtrip)
[ "$target" = all ] || targets=("$target")

source scripts/setup.sh
vok_install_packages
CC=clang CXX=clang++ vok_build build/fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DVOK_FUZZ=ON

seeds_of() {
    case $1 in
        nodelist) echo fuzz/seeds/naf examples/*.naf ;;
        *) echo fuzz/seeds/wdl examples/*.wdl ;;
    esac
}

run_target() {
    local t=$1 corpus=build/fuzz/corpus/$1 findings=build/fuzz/findings/$1
    mkdir -p "$corpus" "$findings" "tests/fuzz/$t"
    # The examples are files, not folders: libFuzzer reads corpora from folders.
    local f
    for f in $(seeds_of "$t"); do [ -f "$f" ] && cp "$f" "$corpus/"; done
    local dirs=("$corpus" "tests/fuzz/$t")
    for f in $(seeds_of "$t"); do [ -d "$f" ] && dirs+=("$f"); done
    # Within the reader's budget: a few seconds and 2 GB for any small input.
    (
        rc=0
        "build/fuzz/fuzz/fuzz_$t" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
            -max_len=8192 -print_final_stats=1 -artifact_prefix="$findings/" "${dirs[@]}" \
            >"build/fuzz/$t.log" 2>&1 || rc=$?
        times >"build/fuzz/$t.cpu"
        exit $rc
    )
}

declare -A pids
for t in "${targets[@]}"; do
    run_target "$t" &
    pids[$t]=$!
done
failed=0
for t in "${targets[@]}"; do
    if wait "${pids[$t]}"; then result=ok; else result=FINDING; failed=1; fi
    runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "build/fuzz/$t.log" | grep -o '[0-9]*$' || echo "?")
    cpu=$(tail -1 "build/fuzz/$t.cpu")
    echo "fuzz $t: $result, $runs inputs, CPU (user sys) $cpu"
    if [ $result = FINDING ]; then
        grep -E 'ERROR|fuzz check failed|SUMMARY|Test unit written' "build/fuzz/$t.log" | head -8
    fi
done
exit $failed
