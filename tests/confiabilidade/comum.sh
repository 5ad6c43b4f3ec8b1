# Shared by the reliability tests: a demo station whose songs are one large media file, and the
# checks a player would make of what it takes from the queue.
#   source comum.sh CLI

CLI=$(realpath "$1")
TRABALHO=$(mktemp -d)
PIDS=()
encerrar() {
  local p
  for p in "${PIDS[@]}"; do kill -9 "$p" 2>/dev/null || true; done
  wait 2>/dev/null || true
  for m in $(findmnt -rn -o TARGET | grep -F "$TRABALHO" | sort -r); do umount -l "$m" 2>/dev/null || true; done
  rm -rf "$TRABALHO"
}
trap encerrar EXIT

falha() {
  echo "FALHOU: $*" >&2
  exit 1
}

# estacao_com_midia DIR BYTES: a 60-song demo station in DIR whose media are all links to one
# file of BYTES random bytes, kept with its complement (what a whole .mrt holds) in $TRABALHO.
estacao_com_midia() {
  local dir=$1 bytes=$2 f
  "$CLI" demo --dir "$dir" --musicas 60 --tocadas 50 >/dev/null
  head -c "$bytes" /dev/urandom >"$TRABALHO/midia.mre"
  local crescente="" decrescente="" i
  for i in $(seq 0 255); do
    crescente+=$(printf '\\%03o' "$i")
    decrescente+=$(printf '\\%03o' $((255 - i)))
  done
  LC_ALL=C tr "$crescente" "$decrescente" <"$TRABALHO/midia.mre" >"$TRABALHO/midia.mrt"
  for f in "$dir"/mre/*.mre; do ln -sf "$TRABALHO/midia.mre" "$f"; done
}

# The station's own files, with their digests: what the engine must never change or remove.
entradas_da_estacao() {
  (cd "$1" && find . -path ./list -prune -o -path ./temp -prune -o -type f -print0 | sort -z |
    xargs -0 sha256sum | grep -vE '\./(nreg\.rer|avancar\.rer|lumavox\.db-(wal|shm))$')
}

# entrega_inteira DIR LRE: the queue entry holds its song's code on one line, and its media, when
# the player finds it, is the whole complement of the song. Returns 2 when the entry is gone
# before it could be read (taken back by a restarting engine), which is no fault.
entrega_inteira() {
  local dir=$1 lre=$2 nome codigo conteudo mrt
  nome=$(basename "$lre")
  codigo=$((10#$(cut -d_ -f2 <<<"$nome")))
  conteudo=$(cat "$lre" 2>/dev/null) || return 2
  [ "$(tr -d '\r' <<<"$conteudo")" = "$codigo" ] || { echo "entrada $nome com \"$conteudo\""; return 1; }
  mrt="$dir/temp/${nome:0:6}.mrt"
  if [ -e "$mrt" ]; then
    cmp -s "$mrt" "$TRABALHO/midia.mrt" || [ ! -e "$mrt" ] ||
      { echo "mídia ${nome:0:6}.mrt de $(stat -c %s "$mrt" 2>/dev/null) bytes"; return 1; }
  fi
  return 0
}

# Nothing half-written anywhere in the hand-over folders.
sem_parciais() {
  ! find "$1/list" "$1/temp" -name '*.parcial' 2>/dev/null | grep -q .
}
