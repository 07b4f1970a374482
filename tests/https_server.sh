#!/bin/bash
# https_server.sh COMMAND...: runs a command while a web server on loopback offers a folder over http
# and over https, there with certificates of a throwaway authority. The command finds in its
# environment: the folder WEB, the certificate AUTHORITY, and the addresses PLAIN, GOOD, EXPIRED,
# FOREIGN (of an authority that nobody trusts) and OTHER_HOST (for another name). "/down" of the
# secure addresses leads to PLAIN, "/up" of PLAIN to GOOD.
set -euo pipefail
. "$(dirname "$0")/../scripts/common.sh"
work=$(mktemp -d)
trap 'end_children; rm -rf "$work"' EXIT
mkdir "$work/web"
cd "$work"

certificate() { # NAME HOST [AUTHORITY], which is the certificate itself if not given
  openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 -subj "/CN=$2" \
    -addext "subjectAltName=DNS:$2" ${3:+-CA "$3.pem" -CAkey "$3.key"} -keyout "$1.key" -out "$1.pem"
}
certificate trusted authority.example
certificate unknown another.example
certificate good localhost trusted
certificate foreign localhost unknown
certificate other_host elsewhere.example trusted
certificate expired localhost
openssl x509 -in expired.pem -days -1 -CA trusted.pem -CAkey trusted.key -CAcreateserial \
  -clrext -extfile <(echo "subjectAltName=DNS:localhost") -out expired.pem
openssl x509 -in trusted.pem -outform der -out trusted.der

next_port
plain=$port
addresses=()
servers=
for name in good expired foreign other_host; do
  next_port
  addresses+=("${name^^}=https://localhost:$port")
  servers+="server { listen 127.0.0.1:$port ssl; root $work/web;
    ssl_certificate $work/$name.pem; ssl_certificate_key $work/$name.key;
    location = /down { return 302 http://localhost:$plain/file; } }"
done
port=$plain
servers+="server { listen 127.0.0.1:$port; root $work/web;
  location = /up { return 302 ${addresses[0]#GOOD=}/file; } }"
serve_with "$work/nginx" "$servers"
env WEB="$work/web" AUTHORITY="$work/trusted.der" SSL_CERT_FILE="$work/trusted.pem" \
  no_proxy=localhost,127.0.0.1 PLAIN="http://localhost:$plain" "${addresses[@]}" "$@"
