#!/bin/bash
# Holds translated pages against the English ones, and runs the examples of docs/, those in a
# programming language where there is a compiler for it. In a page, ```text NAME, ```nginx NAME and
# ```cpp NAME are files, and ```console is what commands print, in a folder that holds the sample
# application and those files.
#   docs_test.sh BUILD_FOLDER
set -euo pipefail
build=$(realpath "$1")
. "$(dirname "$0")/../scripts/common.sh"

# A translation has the examples of its English page and names the state of it that was translated.
code() { awk '/^```/ { inside = !inside; print; next } inside' "$1"; }
anchors() { LC_ALL=C.UTF-8 sed -nE '/^#+ /{s///;s/[^[:alnum:] _-]//g;s/ /-/g;s/.*/\L&/p}' "$1"; }
outdated=
for page in README.md examples/README.md docs/*.md; do
  copy=$(sed 's#^docs/#&es/#; t; s#\.md$#.es.md#' <<<"$page")
  diff -u <(code "$page") <(code "$copy") || fail "the examples of $copy are not those of $page"
  state="$page sha256 $(sha256sum <"$page" | cut -c -64)"
  grep -qF "<!-- source: $state -->" "$copy" ||
    outdated+=$'\n'"$page has changed. Read $copy again, then: sed -i 's#source: .* -->#source: $state -->#' $copy"
  grep -oP '\]\(\K[^):]+(?=\))' "$page" "$copy" | while IFS=':#' read -r from target anchor; do
    target=${target:+$(dirname "$from")/}${target:-$from}
    [[ -e $target && -z $anchor ]] || anchors "$target" | grep -qx "$anchor" || fail "$from leads to no $target#$anchor"
  done
done
[[ -z $outdated ]] || fail "$outdated"

folder=$(mktemp -d)
trap 'end_children; rm -rf "$folder"' EXIT
cd "$folder"
PATH=$build:$PATH
site=https://updates.example

# What the commands of a block print, with … for digests, keys and signatures; with a probe, from the
# server here, sizes as N.
run_block() {
  local command address=http://127.0.0.1:$port
  grep '^\$ ' "$1" | while read -r _ command; do
    echo "\$ $command"
    if [[ $command == *--probe* ]]; then
      sed -i "s#$site#$address#" site/update.txt
      eval "${command//$site/$address}" 2>&1 | sed -E "s#$address#$site#; s/[0-9,]+ byte/N byte/"
      sed -i "s#$address#$site#" site/update.txt
    else
      # The findings tell; sizes are those of a build.
      { eval "$command" 2>&1 || true; } |
        sed -E '/download/s/[0-9,]+ byte/N byte/; s/[0-9a-f]{64}/…/g; s#[A-Za-z0-9+/]{300,}=*#…#g'
    fi
  done
}

cp -r "$build/examples/2.7.1" ledger-2.7.1
cp -r "$build/examples/3.2.0" ledger-3.2.0
cp -r "$build/examples/2.7.1" ledger-2.6.0
# Files, and commands with what they print, as page.md.N.console.
for page in "$root"/docs/*.md; do
  awk -v page="${page##*/}" '
    /^```/ && inside { inside = 0; next }
    /^```/ {
      inside = 1
      file = NF > 1 ? $2 : /console/ ? page "." ++count ".console" : "/dev/null"
      next
    }
    inside { print > file }' "$page"
done

# The server of the page about hosting, in front of the upload folder.
mkdir www
ln -s ../site www/ledger
printf '\275\004\357\376\0\0\1\0\0\0\1\0\0\0\3\0' >Kestrane.exe # a version record, of 1.0.3
ln -s ../Kestrane.exe www/Kestrane.exe
next_port
serve_with nginx "$(sed "s#listen 80#listen 127.0.0.1:$port#; s#/srv/updates#$folder/www#" server.conf)"

for block in *.console; do
  diff -u "$block" <(run_block "$block") || fail "this is not what $block prints"
done
curl -sI "http://127.0.0.1:$port/ledger/{update.txt,3.2.0/rates.txt}" >headers.txt
[[ $(grep -c -e no-cache -e immutable headers.txt) == 2 ]] || fail "the files are kept otherwise: $(cat headers.txt)"

next_port
kestrane-publish serve site --port $port >/dev/null &
children+=($!)
wait_until 5 curl -sf http://127.0.0.1:$port/update.txt -o served.txt || fail "nothing is served"
sed -n 's#.*\(http://127[^|]*rates.txt\)$#url = \1#p' served.txt | head -1 | curl -sfK - | cmp - ledger-3.2.0/rates.txt
before=$(<site/update.txt)
! kestrane-publish make ledger-2.7.1 ledger-3.2.0 --from 2.7.1 --to 3.2.0 --config options.toml 2>problems.txt || fail "made without key"
[[ $before == "$(<site/update.txt)" ]] && grep -q 'name its key' problems.txt || fail "another script, or another reason"
printf '\357\273\277[make]\nOLD = "x"\nurll = "x"\n' >marked.toml
printf '[make.x]\n' >dotted.toml
printf '# \363\n' >ansi.toml
while IFS='|' read -r expected command; do
  kestrane-publish $command 2>problems.txt && fail "$command is taken"
  grep -qF -- "$expected" problems.txt || fail "$command tells $(<problems.txt)"
done <<'END'
no command (check is the nearest)|chek site/update.txt
no option of simulate (--matrix is the nearest)|simulate no-script --matrx
no option of check (--config is the nearest)|check no-script --confg x.toml
"--json" has to stand behind check|--json check no-script
marked.toml: "urll" is no option of make (url is the nearest)|make --config marked.toml
"make.x" is no command|make --config dotted.toml
not in UTF-8|make --config ansi.toml
no-script is not there|sign no-script
END
. "$root/publish/kestrane-publish.bash"
while read -r -a COMP_WORDS; do
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  HOME=$build _kestrane_publish '~/kestrane-publish'
  echo "${COMPREPLY[*]}"
done <<<$'tool si\ntool sign --k\ntool --config f check --n\ntool --v' | diff - <(printf '%s\n' 'simulate sign' --key --newest --version) || fail "other completions"
cp ledger.pem site
for hidden in ../update.txt ledger.pem; do
  [[ $(curl -s --path-as-is -w '%{http_code}' http://127.0.0.1:$port/$hidden) == 404 ]] || fail "$hidden is served"
done

# Stand-ins print or write the command line instead of starting anything.
expected='"2.7.1" "app folder" "'$site'/ledger/update.txt" "app folder\ledger.exe" "NO" "Ledger"'
prints_it() { # LANGUAGE COMMAND...
  diff <("${@:2}" | tr -d '\r' | tr / '\\') <(tr / '\\' <<<"$expected") || fail "the $1 example starts it otherwise"
}
cat >caller.cs <<END
using System; using System.IO;
class ProcessStartInfo { public ProcessStartInfo(string file) {} public string Arguments; public bool UseShellExecute; }
class Process { public static void Start(ProcessStartInfo info) { Console.WriteLine(info.Arguments); } }
class Caller { static void Main() { StartUpdate("app folder\\\\", "2.7.1"); } $(<start.cs) }
END
cat >caller.pas <<'END'
{$mode delphi} uses SysUtils; const SW_SHOWNORMAL = 1;
function ShellExecute(w: integer; verb, file_, arguments, folder: PChar; show: integer): integer;
begin writeln(arguments); result := 33 end;
{$I start.inc}
begin StartUpdate('app folder', '2.7.1') end.
END
cat >caller.cpp <<'END'
#include "start.cpp"
#include <cstring>
#include <fstream>
int main(int argc, char**) {
  if (argc == 1) return StartUpdate(L"app folder", L"2.7.1") ? 0 : 1;
  std::ofstream("started.txt") << std::strstr(GetCommandLineA(), "Kestrane.exe\" ") + 14 << std::endl;
}
END
if command -v mcs; then mcs caller.cs; prints_it "C#" mono caller.exe; fi
if command -v fpc; then fpc caller.pas; prints_it Delphi ./caller; fi
if windows_works; then
  mkdir "app folder"
  i686-w64-mingw32-g++-posix -static -std=c++17 -Wall -Werror caller.cpp -o "app folder/Kestrane.exe"
  wine "app folder/Kestrane.exe"
  wait_until 5 test -s started.txt || fail "the C++ example starts nothing"
  prints_it "C++" cat started.txt
fi
