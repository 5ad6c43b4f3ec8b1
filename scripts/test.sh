#!/usr/bin/env bash
# Every test: build with warnings as errors, run the whole suite through CTest, then check the
# Debian package.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLUMAVOX_WERROR=ON >/dev/null
cmake --build build
ctest --test-dir build --output-on-failure -j"$(nproc)"
scripts/test-package.sh build
