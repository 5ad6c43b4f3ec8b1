#!/usr/bin/env bash
# Power cuts: the engine is killed with SIGKILL at random moments while a stand-in player takes
# the queue as a player would, checking every entry and its media whole. After each restart the
# queue holds only whole entries, and the station's own files are never changed.
#   kill9.sh LUMAVOX-CLI [KILLS]
set -euo pipefail
source "$(dirname "$0")/comum.sh" "$1"
MORTES=${2:-15}

estacao="$TRABALHO/estacao"
estacao_com_midia "$estacao" $((3 * 1024 * 1024))
entradas=$(entradas_da_estacao "$estacao")

# The player: the oldest entry every fifth of a second, checked, then deleted with its media.
tocador() {
  local lre r
  while [ ! -e "$TRABALHO/parar" ]; do
    lre=$(ls "$estacao"/list/*.lre 2>/dev/null | head -n 1 || true)
    if [ -n "$lre" ]; then
      r=0
      entrega_inteira "$estacao" "$lre" >>"$TRABALHO/quebradas" || r=$?
      [ $r -eq 0 ] && echo "$(basename "$lre")" >>"$TRABALHO/tocadas"
      rm -f "$lre" "$estacao/temp/$(basename "$lre" | cut -c1-6).mrt"
    fi
    sleep 0.2
  done
}
: >"$TRABALHO/quebradas"
: >"$TRABALHO/tocadas"
tocador &
PIDS+=($!)

for i in $(seq 1 "$MORTES"); do
  "$CLI" run --dir "$estacao" >/dev/null 2>>"$TRABALHO/run.err" &
  motor=$!
  PIDS+=("$motor")
  sleep "$(awk -v s="$RANDOM" 'BEGIN { srand(s); printf "%.2f", 0.3 + rand() * 1.7 }')"
  kill -9 "$motor"
  wait "$motor" 2>/dev/null || true
  # What the cut left in the queue, as the player would find it now.
  for lre in "$estacao"/list/*.lre; do
    [ -e "$lre" ] || continue
    entrega_inteira "$estacao" "$lre" >>"$TRABALHO/quebradas" || true
  done
done

# The last restart: it cleans up after the power cut and fills the queue again, whole.
"$CLI" run --dir "$estacao" >/dev/null 2>>"$TRABALHO/run.err" &
motor=$!
PIDS+=("$motor")
sleep 4
touch "$TRABALHO/parar"
sleep 0.5
for lre in "$estacao"/list/*.lre; do
  [ -e "$lre" ] || continue
  entrega_inteira "$estacao" "$lre" >>"$TRABALHO/quebradas" || true
done
kill -TERM "$motor"
wait "$motor" || falha "run não terminou bem com SIGTERM"

[ ! -s "$TRABALHO/quebradas" ] && [ -z "$(cat "$TRABALHO/quebradas")" ] ||
  falha "o tocador achou entregas quebradas: $(sort "$TRABALHO/quebradas" | uniq -c | head)"
tocadas=$(wc -l <"$TRABALHO/tocadas")
[ "$tocadas" -ge 5 ] || falha "só $tocadas entradas tomadas: o teste não exercitou a entrega"
[ "$(entradas_da_estacao "$estacao")" = "$entradas" ] || falha "o motor mudou arquivos da estação"
echo "kill -9: $MORTES mortes, $tocadas entradas tomadas e conferidas, nenhuma quebrada"
