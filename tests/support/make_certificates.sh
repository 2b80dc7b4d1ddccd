#!/bin/sh
# make_certificates.sh FOLDER: an authority (ca.pem), a certificate of it for a server on this machine
# (server.pem, server.key), and an authority that signed nothing (other.pem).
set -eu
cd "$1"
new_key() { openssl ecparam -name prime256v1 -genkey -noout -out "$1"; }

for name in ca other; do
    new_key $name.key
    openssl req -x509 -new -key $name.key -out $name.pem -days 2 -subj "/CN=Test authority $name" 2>/dev/null
done
new_key server.key
openssl req -new -key server.key -subj "/CN=localhost" -out server.csr 2>/dev/null
printf 'subjectAltName=DNS:localhost,IP:127.0.0.1\n' > server.ext
openssl x509 -req -in server.csr -CA ca.pem -CAkey ca.key -CAcreateserial -days 2 \
    -extfile server.ext -out server.pem 2>/dev/null
