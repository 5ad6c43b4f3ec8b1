#!/usr/bin/env bash
# Every test: build with warnings as errors, run the whole suite through CTest, check the Debian
# package, run the suite again under the sanitizers and fuzz each input for a while.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DLUMAVOX_WERROR=ON >/dev/null
cmake --build build
ctest --test-dir build --output-on-failure -j"$(nproc)"
scripts/test-package.sh build
# The same suite under AddressSanitizer and UndefinedBehaviorSanitizer, then every fuzz target
# for 30 seconds.
scripts/test-sanitizers.sh
scripts/fuzz.sh 30
