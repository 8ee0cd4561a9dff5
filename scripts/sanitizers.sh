#!/usr/bin/env bash
# Every suite under AddressSanitizer and UndefinedBehaviorSanitizer, then the concurrent
# suites under ThreadSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/deps.sh
cmake --workflow --preset asan
cmake --workflow --preset tsan
