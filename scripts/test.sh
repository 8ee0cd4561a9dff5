#!/usr/bin/env bash
# Builds the library and runs every test suite (Debug build).
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/common.sh
cmake --workflow --preset test
# The shared library must export the interface only.
scripts/check-exports.sh build/dev/libqvcore.so
