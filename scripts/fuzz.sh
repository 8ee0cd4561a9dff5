#!/usr/bin/env bash
# Builds the libFuzzer targets with clang and runs the archive fuzzer for about a minute. The
# seeds are written fresh by the library (so they follow its format) into a scratch corpus,
# beside the corpus kept in fuzz/corpus/archive; new finds go to the scratch corpus only.
# Extra arguments go to the fuzzer (for instance -max_total_time=600).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz --target archive_fuzzer archive_seeds
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
build/fuzz/fuzz/archive_seeds "$work"
build/fuzz/fuzz/archive_fuzzer -max_total_time=60 -timeout=10 -rss_limit_mb=2048 -max_len=4096 \
  -artifact_prefix=build/fuzz/ \
  -print_final_stats=1 "$@" "$work" fuzz/corpus/archive
