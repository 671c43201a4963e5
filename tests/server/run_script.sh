#!/usr/bin/env bash
# run_script.sh x64|x86 FOLDER FILE...
#
# Runs scripts (*.vbs, *.js) and programs (*.exe) under Wine with FOLDER/vardel.dll registered
# meanwhile, for all programs of the word size. Each has to print what stands in the text file beside it.
# Nothing else counts: a script that stops at an error says nothing under Wine, and its exit code is 0.
set -euo pipefail
wine=("$(cd "$(dirname "$0")/../../cmake" && pwd)/wine-run" "$1")
cd "$2"
trap '"${wine[@]}" regsvr32 /s /u vardel.dll || exit 1' EXIT
"${wine[@]}" regsvr32 /s vardel.dll
status=0
for file in "${@:3}"; do
  echo "$file"
  # By its name alone: to cscript a path with a leading slash would be an option.
  run=(cscript //nologo "${file##*/}")
  [[ $file != *.exe ]] || run=("./${file##*/}")
  (cd "$(dirname "$file")" && "${wine[@]}" "${run[@]}" | tr -d '\r') | diff "${file%.*}.txt" - || status=1
done
exit $status
