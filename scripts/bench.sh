#!/usr/bin/env bash
# Builds the benchmarks in Release and runs them; extra arguments go to every program
# (for instance --benchmark_filter=Copy).
set -euo pipefail
cd "$(dirname "$0")/.."
QV_EXTRA_PACKAGES="qt6-base-dev libboost-serialization-dev libboost-dev libssl-dev gettext" \
  source scripts/common.sh
cmake --preset bench >/dev/null
cmake --build --preset bench
for b in build/bench/bench/*_bench; do
  echo "== $(basename "$b")"
  "$b" "$@"
done
