#!/usr/bin/env bash
# The main job: build, generate a demo station in ./demo and run the engine on it with a
# stand-in player.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build --target lumavox-cli
build/src/cli/lumavox-cli demo --dir demo --completas
# The engine with a stand-in player on a simulated clock: each choice and the rules that shaped it.
build/src/cli/lumavox-cli tocar --dir demo --musicas 12 "$@"
