#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs each of them in turn, sharing a time budget
# (QV_FUZZ_SECONDS, 240 s by default) between them. A fuzzer's seeds are written fresh by its
# NAME_seeds program where it has one (so they follow the format), into a scratch corpus beside
# the corpus kept in fuzz/corpus/NAME; new finds go to the scratch corpus only.
# Extra arguments go to every fuzzer.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/common.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz
fuzzers=(build/fuzz/fuzz/*_fuzzer)
budget=${QV_FUZZ_SECONDS:-240}
share=$(( budget / ${#fuzzers[@]} ))
(( share >= 10 )) || share=10
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for fuzzer in "${fuzzers[@]}"; do
  name=$(basename "$fuzzer" _fuzzer)
  corpus="$work/$name"
  mkdir -p "$corpus" "fuzz/corpus/$name"
  if [ -x "build/fuzz/fuzz/${name}_seeds" ]; then
    "build/fuzz/fuzz/${name}_seeds" "$corpus"
  fi
  echo "== $name: ${share} s"
  "$fuzzer" -max_total_time="$share" -timeout=10 -rss_limit_mb=2048 -max_len=4096 \
    -artifact_prefix=build/fuzz/ -print_final_stats=1 "$@" "$corpus" "fuzz/corpus/$name"
done
