#!/usr/bin/env bash
# The main job: build, generate a demo station in ./demo and run the start-up load on it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build --target lumavox-cli
build/src/cli/lumavox-cli demo --dir demo
build/src/cli/lumavox-cli acervo --dir demo "$@"
