#!/usr/bin/env bash
# run.sh BUILD COMPILER FLAGS
#
# Installs the library from its build folder, and builds a project with the installed package: a source
# with all headers that were installed, and the README's sample, which has to print what stands there.
# Then the same with the library's sources as a part of the project, whose C++ is a newer one.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
work=$1/consumer
rm -rf "$work"
cmake --install "$1" --prefix "$work/prefix"
(cd "$work/prefix/include" && find vardel -name '*.h') | sed 's/.*/#include <&>/' >"$work/headers.cpp"
awk -v folder="$work" -f "$here/../../cmake/samples.awk" "$here/../../README.md"
cp "$here/CMakeLists.txt" "$work"
options=(-DCMAKE_CXX_COMPILER="$2"
  -DCMAKE_CXX_FLAGS="-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror $3")

# consume NAME OPTION...
consume() {
  cmake -G Ninja -S "$work" -B "$work/$1" "${options[@]}" "${@:2}"
  cmake --build "$work/$1"
  "$work/$1/consumer" | diff "$work/cpp_sample.txt" -
}
consume package -DCMAKE_PREFIX_PATH="$work/prefix"
consume part -DVARDEL_SOURCE="$here/../.." -DCMAKE_CXX_STANDARD=23
