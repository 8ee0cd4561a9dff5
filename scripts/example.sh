#!/usr/bin/env bash
# Builds the library and runs the demonstration program.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake --preset release >/dev/null
cmake --build --preset release --target qvdemo
build/release/examples/qvdemo "$@"
