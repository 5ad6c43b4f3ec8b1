#!/usr/bin/env bash
# Runs two builds of lumavox-cli on the same seeded demo stations and shows that they choose
# alike: for every station and every call, the `select --json` output, the exit code and every
# file left in the station folder must be byte for byte the same. Used to check that a speed-up
# changed no result.
#   scripts/comparar-selecoes.sh ANTES/lumavox-cli DEPOIS/lumavox-cli [SEMENTES]
set -euo pipefail
ANTES=$(realpath "$1")
DEPOIS=$(realpath "$2")
SEMENTES=${3:-3}
TRABALHO=$(mktemp -d)
trap 'rm -rf "$TRABALHO"' EXIT

# Stations: songs, extra demo options, plays already in the log database.
ESTACOES=(
  "4001 --completas 4500"
  "4001 --regras=48 20000"
  "300 --completas 500"
  "40 --completas 100"
)
# Calls: the present moment (the night playlist runs from 00:00 to 05:59), then extra options.
CHAMADAS=(
  "2026-11-23 01:30:00|--seed 1"
  "2026-11-23 10:00:00|--seed 2"
  "2026-11-24 18:45:00|--seed 3"
  "2026-11-23 10:00:00|--seed 4 --played 1007,1014@2026-11-23T09:50:00,1021@2026-11-23T09:55:00"
  "2026-11-23 12:00:00|--seed 5 --force 1028"
)

chamadas=0
escolhas=0
diferencas=0
for semente in $(seq 1 "$SEMENTES"); do
  for e in "${ESTACOES[@]}"; do
    read -r musicas extra tocadas <<<"$e"
    base="$TRABALHO/base"
    rm -rf "$base"
    "$DEPOIS" demo --dir "$base" --musicas "$musicas" $extra --tocadas "$tocadas" --semente "$semente" >/dev/null
    for c in "${CHAMADAS[@]}"; do
      agora=${c%%|*}
      opcoes=${c#*|}
      for lado in antes depois; do
        cli=$ANTES
        [ "$lado" = depois ] && cli=$DEPOIS
        rm -rf "$TRABALHO/$lado"
        cp -a "$base" "$TRABALHO/$lado"
        set +e
        # shellcheck disable=SC2086
        "$cli" select --dir "$TRABALHO/$lado" --now "$agora" $opcoes --no-wait --json \
          >"$TRABALHO/$lado.json" 2>"$TRABALHO/$lado.err"
        echo $? >"$TRABALHO/$lado.rc"
        set -e
        (cd "$TRABALHO/$lado" && find . -type f -print0 | sort -z | xargs -0 sha256sum) >"$TRABALHO/$lado.arquivos"
      done
      chamadas=$((chamadas + 1))
      escolhas=$((escolhas + $(grep -c '"escolhida"' "$TRABALHO/depois.json" || true)))
      for parte in json rc arquivos; do
        if ! cmp -s "$TRABALHO/antes.$parte" "$TRABALHO/depois.$parte"; then
          echo "DIFERENTE ($parte): semente $semente, estação \"$e\", chamada \"$c\""
          diff "$TRABALHO/antes.$parte" "$TRABALHO/depois.$parte" | head -20
          diferencas=$((diferencas + 1))
        fi
      done
    done
  done
done
echo "$chamadas chamadas comparadas ($escolhas músicas escolhidas), $diferencas diferenças"
[ "$diferencas" -eq 0 ]
