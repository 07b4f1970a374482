#!/bin/bash
# The core knows no system, and files include one another in one direction only.
set -euo pipefail
cd "$(dirname "$0")/.."
core=(base run script transfer install platform/*.h)

forbidden='^[[:space:]]*#[[:space:]]*(if|elif).*(_WIN32|__MINGW|__linux|__unix)|#include <(windows|wininet|tlhelp32|curl/|FL/|unistd|sys/)|"/proc'
if grep -rnE "$forbidden" "${core[@]}"; then
  echo "the lines above belong behind platform/"
  exit 1
fi

if grep -rn '"publish/' base run script transfer install platform; then
  echo "the program must not need the tool for publishers"
  exit 1
fi

# A header and its source are one node; tsort names the nodes of every circle.
grep -roE '#include "[^"]+"' --include=*.h --include=*.cpp base run script transfer install platform publish |
  sed -E 's/\.(h|cpp):#include "/ /; s/\.h"$//' | awk '$1 != $2' | tsort >/dev/null
