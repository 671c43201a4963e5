#!/usr/bin/env bash
# run.sh BUILD COMPILER FLAGS
#
# Installs the library from its build folder, and builds a project that only knows the installed
# package: a source with all headers that were installed, and the README's sample, which has to print
# what stands there.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
work=$1/consumer
rm -rf "$work"
cmake --install "$1" --prefix "$work/prefix"
(cd "$work/prefix/include" && find vardel -name '*.h') | sed 's/.*/#include <&>/' >"$work/headers.cpp"
awk -v folder="$work" -f "$here/../../cmake/samples.awk" "$here/../../README.md"
cp "$here/CMakeLists.txt" "$work"
cmake -G Ninja -S "$work" -B "$work/build" \
  -DCMAKE_PREFIX_PATH="$work/prefix" -DCMAKE_CXX_COMPILER="$2" \
  -DCMAKE_CXX_FLAGS="-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror $3"
cmake --build "$work/build"
"$work/build/consumer" | diff "$work/cpp_sample.txt" -
