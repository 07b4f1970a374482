#!/bin/bash
# https_server.sh COMMAND...: runs a command while a web server on loopback offers a folder over http
# and over https, there with certificates of a throwaway authority. The command finds in its
# environment: the folder WEB, the certificate AUTHORITY, and the addresses PLAIN, GOOD, EXPIRED,
# FOREIGN (of an authority that nobody trusts) and OTHER_HOST (for another name). "/down" of the
# secure addresses leads to PLAIN, "/up" of PLAIN to GOOD.
set -euo pipefail

work=$(mktemp -d)
mkdir "$work/web"
server=
trap '[[ -z $server ]] || { kill $server; wait $server; } || true; rm -rf "$work"' EXIT

answers() {
  (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null
}

quietly() {
  "$@" 2>>"$work/log" || { cat "$work/log" >&2; exit 1; }
}

authority() { # NAME
  quietly openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj "/CN=Authority of a test, $1" \
    -keyout "$work/$1.key" -out "$work/$1.pem"
}

certificate() { # NAME HOST DAYS AUTHORITY
  quietly openssl req -newkey rsa:2048 -nodes -subj "/CN=$2" -keyout "$work/$1.key" \
    -out "$work/$1.csr"
  quietly openssl x509 -req -in "$work/$1.csr" -CA "$work/$4.pem" -CAkey "$work/$4.key" \
    -CAcreateserial -days "$3" -extfile <(echo "subjectAltName=DNS:$2") -out "$work/$1.pem"
}

authority trusted
authority unknown
certificate good localhost 2 trusted
certificate expired localhost -1 trusted
certificate foreign localhost 2 unknown
certificate other_host elsewhere.example 2 trusted

# Five ports side by side, below those that the system gives out.
plain=21000
while answers $plain || answers $((plain + 1)); do ((plain += 5)); done
addresses=("PLAIN=http://localhost:$plain")
{
  echo "daemon off; master_process off; pid $work/pid; error_log stderr; events {}
    http { access_log off; root $work/web; client_body_temp_path $work; proxy_temp_path $work;
      fastcgi_temp_path $work; uwsgi_temp_path $work; scgi_temp_path $work;
      server {
        listen 127.0.0.1:$plain;
        location = /up { return 302 https://localhost:$((plain + 1))/file; } }"
  port=$plain
  for name in good expired foreign other_host; do
    addresses+=("${name^^}=https://localhost:$((++port))")
    echo "server {
        listen 127.0.0.1:$port ssl;
        ssl_certificate $work/$name.pem; ssl_certificate_key $work/$name.key;
        location = /down { return 302 http://localhost:$plain/file; } }"
  done
  echo "}"
} >"$work/nginx.conf"

nginx -e stderr -c "$work/nginx.conf" &
server=$!
for ((i = 0; i < 100; ++i)); do
  answers $plain && break
  sleep 0.05
done
env WEB="$work/web" AUTHORITY="$work/trusted.pem" SSL_CERT_FILE="$work/trusted.pem" \
  no_proxy=localhost,127.0.0.1 "${addresses[@]}" "$@"
