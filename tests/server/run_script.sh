#!/usr/bin/env bash
# run_script.sh x64|x86 FOLDER FILE...
#
# Runs scripts under Wine with FOLDER/vardel.dll registered meanwhile; FOLDER lies in this project. A FILE is
#   *.vbs, *.js  a test: it runs behind the checks of its language and has to end with "PASSED n checks",
#   *.md         a document: each VBScript and JScript sample runs as it stands there and has to print
#                the text block that follows it.
# A script that stops at an error says nothing under Wine, and its exit code is 0: only what it prints
# counts. Not to be run twice at a time for the same word size: registration is common to all.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
bits=$1
folder=$(cd "$2" && pwd)
shift 2
work=$folder/scripts
mkdir -p "$work"

register() {
  (cd "$folder" && "$here/wine-run" "$bits" regsvr32 "$@" vardel.dll) ||
    { echo "run_script: regsvr32 $* fails" >&2; return 1; }
}

# run NAME: what the script of that name in $work prints. It is given by name alone: a path with a
# leading slash would be an option.
run() {
  (cd "$work" && "$here/wine-run" "$bits" cscript //nologo "$1") | tr -d '\r'
}

run_test() {
  local name=${1##*/} output
  cat "$here/scripts/checks.${name##*.}" "$1" >"$work/$name"
  output=$(run "$name")
  echo "$name: $output"
  [[ ${output##*$'\n'} =~ ^PASSED\ [1-9][0-9]*\ checks$ ]]
}

# run_samples FILE: writes each sample and its text block to $work, and compares.
run_samples() {
  local names name failed=0
  rm -f "$work"/sample-*
  names=$(awk -v work="$work" '
    /^```$/ && out { close(out); out = ""; next }
    out { print > out; next }
    /^```text$/ && sample { out = work "/" sample ".expected"; sample = ""; printf "" > out; next }
    /^```/ && sample { print "run_script: no text block follows " sample > "/dev/stderr"; exit 1 }
    /^```(vbscript|javascript)$/ {
      sample = "sample-" ++count (/vbscript/ ? ".vbs" : ".js")
      out = work "/" sample
      print sample
    }
    END { if (sample) exit 1 }' "$1")
  [ -n "$names" ] || { echo "run_script: no samples in $1" >&2; return 1; }
  for name in $names; do
    if run "$name" | diff "$work/$name.expected" - ; then
      echo "${1##*/}: $name prints what stands there"
    else
      echo "${1##*/}: $name prints something else" >&2
      failed=1
    fi
  done
  return $failed
}

trap 'register /s /u' EXIT
register /s
status=0
for file in "$@"; do
  case $file in
    *.md) run_samples "$file" || status=1 ;;
    *) run_test "$file" || status=1 ;;
  esac
done
exit $status
