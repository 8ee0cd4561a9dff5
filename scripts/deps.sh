#!/usr/bin/env bash
# Installs what the build needs from Debian's packages, and only what is missing, so that a
# fresh machine and a warm one run the same commands. Extra packages may be named as arguments
# (the benchmark build adds its comparison libraries this way).
set -euo pipefail
needed=(cmake ninja-build ccache pkg-config g++ clang libclang-rt-14-dev libicu-dev uuid-dev libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev nlohmann-json3-dev
  libomp-14-dev "$@")
missing=()
for p in "${needed[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if ((${#missing[@]})); then
  echo "Installing: ${missing[*]}"
  sudo_cmd=()
  [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq "${missing[@]}"
fi
