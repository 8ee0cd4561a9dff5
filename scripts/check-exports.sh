#!/usr/bin/env bash
# Fails when the shared library exports something that is not interface: the private state of a
# class (State::), internals (qv::detail), the platform layer (qv::platform) or anything from
# an anonymous namespace. A type of those namespaces may still appear among the parameters of
# an exported operation; only the exported name itself counts.
# The platform layer's few services that applications implement or call themselves (the
# window-message receivers, the string table's rows) are interface and allowed.
# Usage: scripts/check-exports.sh [path/to/libqvcore.so]   (default: build/dev/libqvcore.so)
set -euo pipefail
cd "$(dirname "$0")/.."
library=${1:-build/dev/libqvcore.so}
[ -f "$library" ] || { echo "check-exports: $library not found" >&2; exit 2; }
symbols=$(nm -D -C --defined-only "$library" | cut -d' ' -f3-)
# The name before the parameter list: "BFoo::State::Bar" of "BFoo::State::Bar(int)".
names=$(sed -E 's/^(typeinfo name for|typeinfo for|vtable for|VTT for|guard variable for) //; s/\(.*//' <<<"$symbols")
allowed='^qv::platform::(WindowReceiver|RegisterWindowReceiver|UnregisterWindowReceiver|PostMessageW|GetModuleHandleW|LibraryModule|LoadStringW|LoadStringTable)\b'
bad=$( (grep -E 'State::|qv::detail|qv::platform' <<<"$names" | grep -vE "$allowed" || true; \
        grep -F '(anonymous namespace)' <<<"$symbols" || true) | sort -u)
count=$(wc -l <<<"$symbols")
if [ -n "$bad" ]; then
  echo "check-exports: $library exports $(wc -l <<<"$bad") symbols that are not interface:" >&2
  echo "$bad" >&2
  exit 1
fi
echo "check-exports: $library exports $count symbols, none internal"
