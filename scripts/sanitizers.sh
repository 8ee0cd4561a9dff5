#!/usr/bin/env bash
# Every suite under AddressSanitizer and UndefinedBehaviorSanitizer, then the concurrent
# suites under ThreadSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/common.sh
cmake --workflow --preset asan
cmake --workflow --preset tsan
