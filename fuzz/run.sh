#!/usr/bin/env bash
# Fuzzes one reader for a number of seconds: fuzz/run.sh TARGET SECONDS
# TARGET is one of profile, layout, project, langdll, catalog. Builds the libFuzzer programs
# (clang, AddressSanitizer, UndefinedBehaviorSanitizer) in build/fuzz, grows the working corpus
# in build/fuzz/corpus/TARGET from the seeds in fuzz/corpus/TARGET, keeps any failing input in
# fuzz/findings/TARGET and appends the run's figures (seconds actually run, executions,
# coverage) to fuzz/runs.tsv.
set -euo pipefail
cd "$(dirname "$0")/.."
target=${1:?usage: fuzz/run.sh TARGET SECONDS}
seconds=${2:?usage: fuzz/run.sh TARGET SECONDS}
case "$target" in profile|layout|project|langdll|catalog) ;; *) echo "unknown target: $target" >&2; exit 2 ;; esac

if ! command -v clang++ >/dev/null || ! ls /usr/lib/llvm-*/lib/clang/*/lib/linux/libclang_rt.fuzzer-x86_64.a >/dev/null 2>&1; then
    echo "fuzzing needs clang with its runtime: apt-get install clang libclang-rt-14-dev" >&2
    exit 2
fi
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target "kestrin-fuzz-$target" >/dev/null

work=build/fuzz/corpus/$target
findings=fuzz/findings/$target
log=build/fuzz/logs/$target-$(date -u +%Y%m%dT%H%M%SZ).log
mkdir -p "$work" "$findings" "$(dirname "$log")"
dict=()
case "$target" in profile|layout|project) dict=(-dict=fuzz/profile.dict) ;; esac

status=0
started=$(date +%s)
"build/fuzz/fuzz/kestrin-fuzz-$target" "$work" "fuzz/corpus/$target" "${dict[@]}" \
    -max_total_time="$seconds" -max_len=65536 -rss_limit_mb=2048 -timeout=10 \
    -artifact_prefix="$findings/" -print_final_stats=1 2>"$log" || status=$?

elapsed=$(( $(date +%s) - started ))
execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -1)
last=$(grep -E '^#[0-9]+' "$log" | tail -1 || true)
cov=$(sed -n 's/.* cov: \([0-9]*\).*/\1/p' <<<"$last")
ft=$(sed -n 's/.* ft: \([0-9]*\).*/\1/p' <<<"$last")
corpus=$(find "$work" -type f | wc -l)
found=$(find "$findings" -type f | wc -l)
[ -f fuzz/runs.tsv ] || printf 'date\ttarget\tseconds\texecutions\tcoverage\tfeatures\tcorpus\tfindings\texit\n' >fuzz/runs.tsv
printf '%s\t%s\t%s\t%s\t%s\t%s\t%s\t%s\t%s\n' "$(date -u +%F)" "$target" "$elapsed" "${execs:-0}" "${cov:-0}" \
    "${ft:-0}" "$corpus" "$found" "$status" >>fuzz/runs.tsv
tail -1 fuzz/runs.tsv
exit "$status"
