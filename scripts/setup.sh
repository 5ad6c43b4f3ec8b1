#!/usr/bin/env bash
# Installs the Debian 12 packages the project builds and tests with. Safe to run again:
# packages already present are left alone and nothing is asked.
set -euo pipefail

PACOTES=(
  build-essential cmake ninja-build pkg-config dpkg-dev desktop-file-utils
  libicu-dev libsqlite3-dev mdbtools-dev
  libcli11-dev nlohmann-json3-dev libtomlplusplus-dev libtag1-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  qt6-base-dev
  clang libclang-rt-14-dev
  xvfb xauth trayer
  systemd adduser util-linux
  liquidsoap icecast2 ffmpeg espeak-ng curl sqlite3
)

faltando=()
for p in "${PACOTES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || faltando+=("$p")
done
[ ${#faltando[@]} -eq 0 ] && exit 0

SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${faltando[@]}" >/dev/null
