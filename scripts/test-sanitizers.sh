#!/usr/bin/env bash
# The whole test suite once more, built with AddressSanitizer and UndefinedBehaviorSanitizer in
# build-asan: a memory error, a leak or any undefined behaviour fails the test that hit it.
set -euo pipefail
cd "$(dirname "$0")/.."
# -O1 keeps the build and the instrumented tests quick while still inlining enough to be real.
cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -g" \
  -DLUMAVOX_SANITIZE=ON -DLUMAVOX_BENCH=OFF >/dev/null
cmake --build build-asan
export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1:detect_stack_use_after_return=1:check_initialization_order=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
if [ -f tests/sanitizers/lsan.supp ]; then
  export LSAN_OPTIONS=suppressions=$PWD/tests/sanitizers/lsan.supp
fi
ctest --test-dir build-asan --output-on-failure -j"$(nproc)"
