#!/usr/bin/env bash
# Each folder includes only its own headers and those of the folders below
# it (the libraries link the same way): nothing reaches up.
set -euo pipefail
cd "$1"
declare -A below=(
  [numtext]=""
  [engine]="numtext"
  [intake]="engine numtext"
  [platform]=""
  [windowkit]="platform intake engine numtext"
  [options]="windowkit platform intake engine numtext"
  [results]="options windowkit platform intake engine numtext"
  [report]="results platform intake engine numtext"
  [graphs]="options windowkit platform intake engine numtext"
  [mainwindow]="graphs report results options windowkit platform intake engine numtext"
  [app]="mainwindow graphs report results options windowkit platform intake engine numtext"
  [batch]="options intake engine numtext"
)
status=0
for folder in "${!below[@]}"; do
  allowed=" $folder ${below[$folder]} "
  while IFS= read -r line; do
    used=${line#*\"}; used=${used%%/*}
    if [[ $allowed != *" $used "* ]]; then
      echo "$line: $folder may not include from $used" >&2
      status=1
    fi
  done < <(grep -Hn '^#include "[a-z]*/' "$folder"/*.h "$folder"/*.cpp 2>/dev/null || true)
done
exit $status
