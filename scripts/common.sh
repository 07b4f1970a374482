# What the scripts share; to be sourced. Every script works from the root of the repository.

cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD

export WINEPREFIX=$root/build/wine WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=
# Every server of ours is on this machine.
export no_proxy=127.0.0.1

fail() {
  echo "$(basename "$0"): $*" >&2
  exit 1
}

# wait_until SECONDS COMMAND...: polls until the command succeeds; false when the time is over.
wait_until() {
  local deadline=$((SECONDS + $1))
  shift
  until "$@"; do
    ((SECONDS < deadline)) || return 1
    sleep 0.05
  done
}

# Processes to end when the script ends, the last one started first.
children=()

end_child() {
  kill "$1" && wait "$1"
} 2>/dev/null

end_children() {
  local i
  for ((i = ${#children[@]} - 1; i >= 0; --i)); do end_child "${children[i]}" || true; done
}
trap end_children EXIT

# Whether the Windows program can be built and run here; scripts/setup does what it can for it.
windows_works() {
  command -v i686-w64-mingw32-g++-posix && command -v wine && [[ -d $WINEPREFIX ]]
} >/dev/null

say_that_windows_is_missing() {
  cat <<END

*******************************************************************************
*** THE WINDOWS PROGRAM WAS LEFT OUT: it is the one that users get, but its
*** compiler or Wine could not be installed here; see the messages of apt-get
*** above. What you have seen is the Linux build alone.
*******************************************************************************
END
}

# build PRESET
build() {
  cmake --preset "$1" && cmake --build --preset "$1"
}

display_answers() {
  xdpyinfo >/dev/null 2>&1
}

# Without -noreset the server starts anew when its last client goes, and who comes at that moment is
# turned away.
start_xvfb() {
  local number
  for number in {90..119}; do
    [[ -e /tmp/.X$number-lock || -e /tmp/.X11-unix/X$number ]] && continue
    Xvfb ":$number" -screen 0 1024x768x24 -nolisten tcp -noreset >/dev/null 2>&1 &
    export DISPLAY=:$number
    # Should another server take the number first, this one ends while that one answers.
    if wait_until 5 display_answers && kill -0 $!; then
      children+=($!)
      return
    fi
    end_child $! || true
  done
  fail "no virtual display could be started"
}

# Uses the display that there is, otherwise a virtual one, and says which in virtual_display.
use_display() {
  virtual_display=false
  [[ -n ${DISPLAY:-} ]] && display_answers && return
  virtual_display=true
  start_xvfb
}

# find_window TITLE: sets WINDOW, X, Y, WIDTH and HEIGHT.
find_window() {
  local geometry
  geometry=$(xdotool search --onlyvisible --name "^$1\$" getwindowgeometry --shell 2>/dev/null) &&
    eval "$geometry"
}

# final_screen_has_come TITLE: the window shrinks to it.
final_screen_has_come() {
  find_window "$1" && ((2 * HEIGHT < WIDTH))
}

port_is_free() {
  ! (: <"/dev/tcp/127.0.0.1/$1") 2>/dev/null
}

port_is_taken() {
  ! port_is_free "$port"
}

# Lets port be the next one that is free. The updater takes none above 32767.
port=18079
next_port() {
  until port_is_free $((++port)); do :; done
}

# serve FOLDER SITE LINES: offers SITE with nginx, whose files go into FOLDER and whose block
# server has LINES. The port is in port.
serve() {
  next_port
  serve_with "$1" "server { listen 127.0.0.1:$port; root \"$2\"; $3 }"
}

# serve_with FOLDER SERVERS: the same with these blocks server, one of which listens on port.
# The log tells of every request when it was over and how long it took, in seconds, and its method
# and path.
serve_with() {
  mkdir "$1"
  cat >"$1/nginx.conf" <<END
daemon off;
master_process off;
pid nginx.pid;
events {}
http {
  log_format times '\$msec \$request_time \$request_method \$uri';
  access_log access.log times;
  client_body_temp_path body;
  proxy_temp_path proxy;
  fastcgi_temp_path fastcgi;
  uwsgi_temp_path uwsgi;
  scgi_temp_path scgi;
  $2
}
END
  PATH=$PATH:/usr/sbin nginx -p "$1" -e error.log -c nginx.conf 2>/dev/null &
  children+=($!)
  wait_until 5 port_is_taken || fail "the web server did not start: $(<"$1/error.log")"
}
