#!/usr/bin/env bash
# Installs the library into a scratch prefix and builds a small consumer against it twice, once
# through the CMake package and once through pkg-config, and runs both: what a module of the
# application would do with an installed qvcore.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/common.sh
cmake --preset release >/dev/null
cmake --build --preset release
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install build/release --prefix "$work/prefix" >/dev/null
cmake -S tests/consumer -B "$work/cmake" -G Ninja -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/cmake" >/dev/null
"$work/cmake/consumer"
pc_path=$(dirname "$(find "$work/prefix" -name qvcore.pc)")
flags=$(PKG_CONFIG_PATH="$pc_path" pkg-config --cflags --libs qvcore)
libdir=$(PKG_CONFIG_PATH="$pc_path" pkg-config --variable=libdir qvcore)
# shellcheck disable=SC2086
g++ tests/consumer/consumer.cpp -o "$work/consumer-pc" $flags -Wl,-rpath,"$libdir"
"$work/consumer-pc"
