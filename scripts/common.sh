# Sourced by every build script: installs what is missing (and the packages named in
# QV_EXTRA_PACKAGES), then lets the compiler cache serve repeated builds. The cache is keyed on
# paths relative to the checkout, so a second clone of the project reuses what the first
# compiled; without ccache the builds run as before.
scripts/deps.sh ${QV_EXTRA_PACKAGES:-}
if command -v ccache >/dev/null 2>&1; then
  export CMAKE_CXX_COMPILER_LAUNCHER=ccache
  export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1
  export CCACHE_SLOPPINESS=include_file_mtime,include_file_ctime,time_macros
fi
