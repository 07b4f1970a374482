#!/bin/bash
# The core and the tool for publishers know no system, and a file includes only from below.
set -euo pipefail
cd "$(dirname "$0")/.."

forbidden='^[[:space:]]*#[[:space:]]*(if|elif).*(_WIN32|__MINGW|__linux|__unix)|#include <(windows|wininet|tlhelp32|curl/|FL/|unistd|sys/)|"/proc'
if grep -rnE "$forbidden" base run script transfer install publish platform/*.h platform/*.cpp; then
  echo "the lines above belong behind platform/"
  exit 1
fi

# From the roof down; base/ is below them all, and the headers of platform/ are the ground.
floors='
run/main
run/startup
run/update_sequence
script/parser transfer/download_phase run/self_replacement
install/action_executor transfer/availability transfer/download run/final_screen
transfer/publisher_check
run/progress_window run/progress_bar transfer/http_probe install/process_control install/component_registration
run/run_state run/command_line run/launch script/reader script/action_table transfer/url transfer/signed_script install/path_macros install/file_helpers
run/messages run/own_version script/commands script/version
'
# Beside them stands publish/, and a layer under its headers.
publish='base/|platform/|publish/|run/messages|script/(commands|reader|version)|transfer/(http_probe|signed_script|url)'

# A header and its source are one node.
arrows=$(grep -roE '#include "[^"]+"' --include=*.h --include=*.cpp base run script transfer install platform publish |
  sed -E 's/\.(h|cpp):#include "/ /; s/\.h"$//' | awk '$1 != $2')
awk -v floors="$floors" -v publish="^($publish)" '
  BEGIN {
    count = split(floors, rows, "\n")
    for (i = 1; i <= count; ++i) {
      nodes = split(rows[i], names, " ")
      for (j = 1; j <= nodes; ++j) floor[names[j]] = count - i + 2
    }
  }
  function height(name) { return name ~ /^base\// ? 1 : name ~ /^platform\/[a-z_]+$/ ? 0 : floor[name] }
  function may(from, to) {
    if (from ~ /^publish\//) return to ~ publish
    if (match(from, /^platform\/[a-z]+\//)) return to ~ /^base\// || to ~ /^platform\/[a-z_]+$/ || index(to, substr(from, 1, RLENGTH)) == 1
    if (from ~ /^platform\//) return to ~ /^platform\/[a-z_]+$/
    if (from ~ /^base\//) return to ~ /^base\//
    return from in floor && (to in floor || to ~ /^(base\/|platform\/[a-z_]+$)/) && height(to) < height(from)
  }
  !may($1, $2) { print $1 " must not include " $2; failed = 1 }
  END { exit failed }' <<<"$arrows"

# tsort names the nodes of every circle.
tsort <<<"$arrows" >/dev/null
