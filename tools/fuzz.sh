#!/bin/bash
# Runs the fuzz targets, which are built already.
#
#   fuzz.sh run SECONDS [TARGET...]   each for a time; what it finds worth keeping goes to .cache/fuzz
#   fuzz.sh seed                      puts each scenario of tests/transcripts there
#   fuzz.sh keep [TARGET...]          puts into fuzz/corpus the least of it that takes the same branches
#   fuzz.sh coverage                  prints which lines of quorix/ the corpora reach
set -euo pipefail
cd "$(dirname "$0")/.."
programs=build/asan/fuzz
export LLVM_PROFILE_FILE=/dev/null

targets() { for source in fuzz/*.cpp; do basename "$source" .cpp; done; }

run() {
    local seconds=$1 status=0 target
    shift
    for target in ${*:-$(targets)}; do
        echo "== $target"
        mkdir -p ".cache/fuzz/$target" "fuzz/corpus/$target"
        "$programs/fuzz_$target" -max_total_time="$seconds" -rss_limit_mb=4096 -len_control=0 -max_len=4096 -verbosity=0 \
            -dict=fuzz/stream.dict -print_final_stats=1 -artifact_prefix=.cache/fuzz/ \
            ".cache/fuzz/$target" "fuzz/corpus/$target" || status=1
    done
    return $status
}

seed() {
    local transcript
    mkdir -p .cache/fuzz/transcripts
    for transcript in tests/transcripts/*.transcript; do
        # A paragraph of tags is for those below it.
        awk -v RS= -v name=".cache/fuzz/transcripts/$(basename "$transcript")" '
            /^\[[^\n]*$/ { tags = $0 "\n\n"; next }
            { print tags $0 > (name NR); close(name NR) }' "$transcript"
    done
}

keep() {
    local target least
    for target in ${*:-$(targets)}; do
        least=$(mktemp -d)
        mkdir -p ".cache/fuzz/$target" "fuzz/corpus/$target"
        "$programs/fuzz_$target" -set_cover_merge=1 -use_counters=0 -max_len=4096 -verbosity=0 "$least" "fuzz/corpus/$target" ".cache/fuzz/$target"
        rm -rf "fuzz/corpus/$target"
        mv "$least" "fuzz/corpus/$target"
        chmod 755 "fuzz/corpus/$target"
    done
}

coverage() {
    local folder=build/asan/coverage target objects=()
    rm -rf $folder
    mkdir -p $folder
    for target in $(targets); do
        LLVM_PROFILE_FILE=$folder/$target.profraw "$programs/fuzz_$target" -runs=0 -verbosity=0 "fuzz/corpus/$target"
        objects+=(-object "$programs/fuzz_$target")
    done
    llvm-profdata merge -sparse $folder/*.profraw -o $folder/all.profdata
    llvm-cov report "${objects[@]:1:1}" "${objects[@]:2}" -instr-profile=$folder/all.profdata \
        -show-branch-summary=0 -show-region-summary=0 -ignore-filename-regex='/(testkit|testkit/transcripts|fuzz|apps/console)/[^/]*$'
}

"$@"
