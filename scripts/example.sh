#!/usr/bin/env bash
# Builds the library, the demonstration and qvtool, runs the demonstration, which leaves a sample
# of every file format in build/samples, and shows each sample through qvtool.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/common.sh
cmake --preset release >/dev/null
cmake --build --preset release --target qvdemo qvtool
samples=build/samples
rm -rf "$samples"
build/release/examples/qvdemo "$samples" "$@"
find "$samples" -type f ! -name "*.lock" | sort | while read -r file; do
  echo
  echo "== qvtool info $file"
  build/release/tools/qvtool/qvtool info "$file"
  echo "== qvtool dump $file"
  build/release/tools/qvtool/qvtool dump "$file"
done
