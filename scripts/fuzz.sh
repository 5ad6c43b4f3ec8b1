#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (build-fuzz) and runs each for SEGUNDOS seconds (30 by
# default), two at a time, on a scratch corpus seeded from tests/fuzz/corpus. Any crash, leak,
# timeout or sanitizer report fails the script; the input that caused it is left in
# build-fuzz/achados/<target>/ and the run's output in build-fuzz/logs/<target>.log.
#   scripts/fuzz.sh [SEGUNDOS] [TARGET...]
set -euo pipefail
cd "$(dirname "$0")/.."
SEGUNDOS=${1:-30}
shift || true

cmake -S . -B build-fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
  -DLUMAVOX_FUZZ=ON -DLUMAVOX_TESTS=OFF -DLUMAVOX_BENCH=OFF -DLUMAVOX_APP=OFF >/dev/null
cmake --build build-fuzz --target fuzz

ALVOS=("$@")
if [ ${#ALVOS[@]} -eq 0 ]; then
  for f in tests/fuzz/corpus/*/; do ALVOS+=("$(basename "$f")"); done
fi

rodar() {
  local alvo=$1
  mkdir -p "build-fuzz/corpus/$alvo" "build-fuzz/achados/$alvo" build-fuzz/logs
  set +e
  "build-fuzz/tests/fuzz/fuzz_$alvo" -max_total_time="$SEGUNDOS" -timeout=20 -rss_limit_mb=2048 \
    -dict=tests/fuzz/lumavox.dict -artifact_prefix="build-fuzz/achados/$alvo/" -print_final_stats=1 \
    "build-fuzz/corpus/$alvo" "tests/fuzz/corpus/$alvo" >"build-fuzz/logs/$alvo.log" 2>&1
  echo $? >"build-fuzz/logs/$alvo.rc"
}

falhas=()
for alvo in "${ALVOS[@]}"; do
  rm -f "build-fuzz/logs/$alvo.rc"
  # Two cores: at most two targets at once.
  while [ "$(jobs -rp | wc -l)" -ge 2 ]; do wait -n || true; done
  rodar "$alvo" &
done
wait
for alvo in "${ALVOS[@]}"; do
  if [ "$(cat "build-fuzz/logs/$alvo.rc" 2>/dev/null)" = 0 ]; then
    printf 'fuzz_%-14s ok  %s\n' "$alvo" "$(grep -m1 -o 'stat::number_of_executed_units: [0-9]*' "build-fuzz/logs/$alvo.log" | grep -o '[0-9]*$') execuções"
  else
    falhas+=("$alvo")
    echo "fuzz_$alvo FALHOU:"
    tail -n 40 "build-fuzz/logs/$alvo.log"
  fi
done
[ ${#falhas[@]} -eq 0 ] || { echo "alvos com falha: ${falhas[*]}"; exit 1; }
