#!/usr/bin/env bash
# run_script.sh x64|x86 FOLDER FILE...
#
# Runs scripts (*.vbs, *.js) and programs (*.exe) under Wine with FOLDER/vardel.dll registered
# meanwhile. Each has to print what stands in the text file beside it. Nothing else counts: a script
# that stops at an error says nothing under Wine, and its exit code is 0. Not to be run twice at a time
# for the same word size: registration is common to all.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
bits=$1
cd "$2"

wine() {
  "$here/../../cmake/wine-run" "$bits" "$@"
}

# run FILE: by its name alone; to cscript a path with a leading slash would be an option.
run() {
  cd "$(dirname "$1")"
  case $1 in
    *.exe) wine "./${1##*/}" ;;
    *) wine cscript //nologo "${1##*/}" ;;
  esac | tr -d '\r'
}

trap 'wine regsvr32 /s /u vardel.dll || exit 1' EXIT
wine regsvr32 /s vardel.dll
status=0
for file in "${@:3}"; do
  echo "$file"
  (run "$file") | diff "${file%.*}.txt" - || status=1
done
exit $status
