#!/usr/bin/env bash
# A full disk under the hand-over: a station on a 600 KB tmpfs whose songs are 1 MiB. Nothing
# partial reaches list/ or temp/, the failure is reported, the engine does not spin while the disk
# stays full, and once there is room the queue is full again within seconds.
#   disco_cheio.sh LUMAVOX-CLI        (needs to mount a tmpfs: root; exit 77 when it cannot)
set -euo pipefail
source "$(dirname "$0")/comum.sh" "$1"

estacao="$TRABALHO/estacao"
mkdir -p "$estacao"
mount -t tmpfs -o size=600k tmpfs "$estacao" 2>/dev/null || { echo "sem permissão para montar um tmpfs"; exit 77; }
estacao_com_midia "$TRABALHO/base" $((1024 * 1024))
cp -a "$TRABALHO/base/." "$estacao/"
entradas=$(entradas_da_estacao "$estacao")

# One call: the media cannot be written whole.
set +e
"$CLI" select --dir "$estacao" --seed 1 --no-wait --json >"$TRABALHO/select.json" 2>"$TRABALHO/select.err"
rc=$?
set -e
[ $rc -eq 0 ] || falha "select terminou com $rc: $(cat "$TRABALHO/select.err")"
grep -q '"erro": ".*temp/000001.mrt' "$TRABALHO/select.json" || falha "select --json sem o erro: $(head -c 400 "$TRABALHO/select.json")"
grep -q '^erro: a música .* não foi entregue' "$TRABALHO/select.err" || falha "stderr sem o erro: $(cat "$TRABALHO/select.err")"
grep -q '"lre": null' "$TRABALHO/select.json" || falha "select gravou uma entrada na fila"
[ -z "$(ls -A "$estacao/list" "$estacao/temp" | grep -v ':$' | grep .)" ] ||
  falha "sobrou algo na entrega: $(ls -la "$estacao/list" "$estacao/temp")"

# The engine left running on the full disk: it keeps trying, slowly.
"$CLI" run --dir "$estacao" >"$TRABALHO/run.out" 2>"$TRABALHO/run.err" &
motor=$!
PIDS+=("$motor")
sleep 6
ticks=$(awk '{print $14 + $15}' "/proc/$motor/stat")
[ "$ticks" -lt 300 ] || falha "o motor gastou $ticks tiques de CPU em 6 s com o disco cheio"
ls "$estacao/list" | grep -q . && falha "entrada na fila com o disco cheio: $(ls "$estacao/list")"
sem_parciais "$estacao" || falha "arquivo parcial deixado"
grep -q '^erro: a música' "$TRABALHO/run.err" || falha "run não avisou: $(cat "$TRABALHO/run.err")"

# Room again: the queue fills by itself.
mount -o remount,size=8m "$estacao"
for _ in $(seq 1 100); do
  [ "$(ls "$estacao/list" | grep -c '\.lre$')" -ge 2 ] && break
  sleep 0.1
done
n=$(ls "$estacao/list" | grep -c '\.lre$' || true)
[ "$n" -ge 2 ] || falha "a fila tem $n entradas 10 s depois de haver espaço"
for lre in "$estacao"/list/*.lre; do
  entrega_inteira "$estacao" "$lre" || falha "entrada quebrada"
done
kill -TERM "$motor"
wait "$motor" || falha "run não terminou bem com SIGTERM"
[ "$(entradas_da_estacao "$estacao")" = "$entradas" ] || falha "o motor mudou arquivos da estação"
echo "disco cheio: nada parcial, erro avisado, $ticks tiques de CPU em 6 s, fila cheia de novo com espaço"
