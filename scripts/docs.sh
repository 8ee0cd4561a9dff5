#!/usr/bin/env bash
# Builds the HTML reference of the public headers with doxygen (build/reference/html); any
# doxygen warning fails it.
set -euo pipefail
cd "$(dirname "$0")/.."
QV_EXTRA_PACKAGES=doxygen source scripts/common.sh
mkdir -p build/reference
doxygen Doxyfile
echo "reference: build/reference/html/index.html"
