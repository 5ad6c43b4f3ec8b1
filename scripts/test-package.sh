#!/usr/bin/env bash
# The Debian package, made with CPack from a build tree that is already built (default build/):
# its name and file list, its declared dependencies against what the programs load, and the
# service's and the desktop entry's commands run from the unpacked package and stop cleanly on
# SIGTERM.
#
# LUMAVOX_CLEAN_ROOT=DIR (a Debian 12 root made with debootstrap) also installs the package there
# with apt and runs lumavox-cli in it. That needs a Debian mirror and several minutes, so CI
# leaves it out.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD=${1:-build}

passaram=0
falharam=0
# checar NAME FUNCTION: runs one check; the function prints why it failed and returns non-zero.
checar() {
  if "$2"; then passaram=$((passaram + 1)); else echo "FALHOU: $1" >&2; falharam=$((falharam + 1)); fi
}

rm -rf "$BUILD/pacote"
(cd "$BUILD" && cpack -G DEB >/dev/null)
versao=$(sed -n 's/^project(lumavox VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
deb="$BUILD/pacote/lumavox_${versao}_amd64.deb"
[ -f "$deb" ] || { echo "FALHOU: sem $deb" >&2; ls "$BUILD/pacote" >&2; exit 1; }

janela=0
grep -q '^LUMAVOX_APP:BOOL=ON' "$BUILD/CMakeCache.txt" && janela=1
raiz=$(mktemp -d)
trap 'rm -rf "$raiz"' EXIT
dpkg-deb -x "$deb" "$raiz/pkg"
lista=$(dpkg-deb -c "$deb" | awk '{print $NF}' | grep -v '/$')
depends=$(dpkg-deb -f "$deb" Depends)
declarados=" $(sed -E 's/\([^)]*\)//g; s/[,|]/ /g' <<<"$depends" | xargs) "

lista_completa() {
  local esperados=(./usr/bin/lumavox-cli ./usr/lib/systemd/system/lumavox@.service
    ./usr/lib/systemd/system/lumavox-ar@.service ./usr/share/lumavox/lumavox.liq
    ./usr/share/lumavox/lumavox-ar.liq ./usr/share/doc/lumavox/on-air.md
    ./usr/share/doc/lumavox/README.md ./usr/share/doc/lumavox/station.md
    ./usr/share/doc/lumavox/rules.md ./usr/share/doc/lumavox/selection-run.md
    ./usr/share/doc/lumavox/exemplos/musica.rdb ./usr/share/doc/lumavox/exemplos/regra.rdb)
  [ $janela = 1 ] && esperados+=(./usr/bin/lumavox ./usr/share/applications/lumavox.desktop
    ./usr/share/icons/hicolor/scalable/apps/lumavox.svg ./usr/share/icons/hicolor/48x48/apps/lumavox.png)
  local f ok=0
  for f in "${esperados[@]}"; do grep -qxF "$f" <<<"$lista" || { echo "falta $f"; ok=1; }; done
  return $ok
}

nada_fora_do_lugar() {
  local fora
  fora=$(grep -vE '^\./usr/(bin/lumavox(-cli)?|lib/systemd/system/lumavox(-ar)?@\.service|share/lumavox/lumavox(-ar)?\.liq|share/applications/lumavox\.desktop|share/icons/hicolor/[^/]+/apps/lumavox\.(svg|png)|share/doc/lumavox/.*)$' <<<"$lista" || true)
  [ -z "$fora" ] || { echo "fora do lugar: $fora"; return 1; }
}

# Every library a program loads comes from a declared package (or from a package that a
# declared one depends on: libtag1v5 brings libtag1v5-vanilla).
dependencias_declaradas() {
  local prog lib caminho dono v ok=0
  grep -q -- '-dev\b' <<<"$depends" && { echo "depende de um pacote -dev: $depends"; ok=1; }
  [ $janela = 0 ] || grep -q ' qt6-qpa-plugins ' <<<"$declarados" || { echo "falta qt6-qpa-plugins"; ok=1; }
  for prog in "$raiz"/pkg/usr/bin/*; do
    for lib in $(objdump -p "$prog" | awk '/NEEDED/ {print $2}'); do
      caminho=$(/sbin/ldconfig -p | awk -v l="$lib" '$1 == l && /x86-64/ {print $NF; exit}')
      dono=$(dpkg -S "$caminho" 2>/dev/null || dpkg -S "$(readlink -f "$caminho")" 2>/dev/null || true)
      dono=${dono%%:*}
      grep -q " $dono " <<<"$declarados" && continue
      for v in $(apt-cache rdepends --installed "$dono" 2>/dev/null | tail -n +3); do
        grep -q " $v " <<<"$declarados" && continue 2
      done
      echo "$(basename "$prog"): $lib (${dono:-sem pacote}) não está em Depends: $depends"
      ok=1
    done
  done
  return $ok
}

export PATH="$raiz/pkg/usr/bin:$PATH"
unset LUMAVOX_DIR
estacao="$raiz/lumavox"  # also ~/lumavox for the desktop entry, with HOME=$raiz
lumavox-cli demo --dir "$estacao" --musicas 60 >/dev/null
rm -f "$estacao/pl.rdb"  # the station folder itself at any hour

# parar_com_sigterm NAME COMMAND...: the command fills the station's queue and exits 0 on
# SIGTERM.
parar_com_sigterm() {
  local nome=$1 n=0 rc=0 pid
  shift
  rm -f "$estacao"/list/*.lre
  "$@" >"$raiz/$nome.log" 2>&1 &
  pid=$!
  while [ $n -lt 600 ] && ! compgen -G "$estacao/list/*.lre" >/dev/null && kill -0 $pid 2>/dev/null; do
    sleep 0.1
    n=$((n + 1))
  done
  compgen -G "$estacao/list/*.lre" >/dev/null || { echo "$nome: nenhuma música na fila"; rc=1; }
  kill -TERM $pid 2>/dev/null || true
  wait $pid || { echo "$nome: saiu com $? depois de SIGTERM"; rc=1; }
  [ $rc = 0 ] || cat "$raiz/$nome.log"
  return $rc
}

ajuda_aponta_documentacao() {
  lumavox-cli --help | grep -q '/usr/share/doc/lumavox/' && lumavox-cli run --help | grep -q 'rules.md'
}

# Each unit's rating by systemd's own offline analysis: at most 1.5.
servico_exposicao() {
  local unidade nota ok=0
  for unidade in "$raiz"/pkg/usr/lib/systemd/system/lumavox*@.service; do
    nota=$(systemd-analyze security --offline=yes "$unidade" 2>&1 | sed -n 's/.*Overall exposure level for [^:]*: \([0-9.]*\).*/\1/p')
    [ -n "$nota" ] || { echo "systemd-analyze não deu nota a $(basename "$unidade")"; ok=1; continue; }
    echo "$(basename "$unidade"): exposição $nota"
    awk -v n="$nota" 'BEGIN { exit !(n <= 1.5) }' || { echo "exposição $nota acima de 1.5"; ok=1; }
  done
  return $ok
}

# The player's unit runs only the player, as the engine's user, with the mount from a root-only
# file; the packaged lumavox-cli finds the packaged script, and Liquidsoap accepts it.
tocador_do_pacote() {
  local unidade="$raiz/pkg/usr/lib/systemd/system/lumavox-ar@.service" falso="$raiz/liquidsoap-falso"
  grep -qx 'ExecStart=/usr/bin/lumavox-cli ar --dir %f --sem-motor' "$unidade" || { echo "ExecStart do tocador"; return 1; }
  grep -qx 'EnvironmentFile=/etc/lumavox/ar/%i.env' "$unidade" || { echo "sem EnvironmentFile"; return 1; }
  grep -qx 'User=lumavox' "$unidade" || { echo "o tocador não roda como lumavox"; return 1; }
  printf '#!/bin/sh\necho "$1" > "%s.script"\n' "$falso" >"$falso"
  chmod +x "$falso"
  mkdir -p "$raiz/estacao-ar"
  LUMAVOX_LIQUIDSOAP="$falso" "$raiz/pkg/usr/bin/lumavox-cli" ar --dir "$raiz/estacao-ar" --sem-motor >/dev/null 2>&1 || true
  [ "$(cat "$falso.script" 2>/dev/null)" = "$raiz/pkg/usr/share/lumavox/lumavox-ar.liq" ] ||
    { echo "ar não achou o script do pacote: $(cat "$falso.script" 2>/dev/null)"; return 1; }
  if command -v liquidsoap >/dev/null; then
    liquidsoap --check "$raiz/pkg/usr/share/lumavox/lumavox-ar.liq" || { echo "liquidsoap recusa o script"; return 1; }
  fi
}

# The package's postinst makes the service's system user, and running it again changes nothing.
usuario_do_pacote() {
  dpkg-deb -e "$deb" "$raiz/controle"
  sh "$raiz/controle/postinst" configure && sh "$raiz/controle/postinst" configure || return 1
  local entrada
  entrada=$(getent passwd lumavox) || { echo "sem o usuário lumavox"; return 1; }
  [ "$(cut -d: -f3 <<<"$entrada")" -lt 1000 ] || { echo "lumavox não é usuário de sistema: $entrada"; return 1; }
  grep -q 'nologin\|/bin/false' <<<"$(cut -d: -f7 <<<"$entrada")" || { echo "lumavox pode entrar: $entrada"; return 1; }
}

# sandbox USER WRITABLE COMMAND...: becomes COMMAND as USER, in a mount namespace where every
# file system is read-only but WRITABLE, without network: what the unit's sandbox gives the engine.
sandbox() {
  local usuario=$1 gravavel=$2
  shift 2
  # exec: the caller's process becomes the command, so its signals reach the engine.
  exec unshare --mount --net --propagation private -- bash -c '
    usuario=$1 gravavel=$2; shift 2
    mount --bind "$gravavel" "$gravavel"
    findmnt -rn -o TARGET | sort -r | while read -r m; do
      [ "$m" = "$gravavel" ] || mount -o remount,bind,ro "$m" 2>/dev/null || true
    done
    exec setpriv --reuid="$usuario" --regid="$usuario" --clear-groups --no-new-privs -- "$@"
  ' sandbox "$usuario" "$gravavel" "$@"
}

servico() {
  local unidade="$raiz/pkg/usr/lib/systemd/system/lumavox@.service" linha cmd usuario
  grep -qx 'Restart=on-failure' "$unidade" || { echo "a unidade não reinicia em falha"; return 1; }
  usuario=$(sed -n 's/^User=//p' "$unidade")
  [ -n "$usuario" ] && [ "$usuario" != root ] || { echo "a unidade roda como root"; return 1; }
  grep -qx 'ReadWritePaths=%f' "$unidade" || { echo "a unidade não se limita à pasta da estação"; return 1; }
  linha=$(sed -n 's/^ExecStart=//p' "$unidade")
  # %f is the instance unescaped as a path; this folder has no blanks. The program is the
  # unpacked package's.
  linha=${linha//%f/$estacao}
  read -r -a cmd <<<"${linha//\/usr\/bin\//$raiz/pkg/usr/bin/}"
  if ! unshare --mount true 2>/dev/null || ! getent passwd "$usuario" >/dev/null; then
    echo "(sem namespaces ou sem $usuario: o serviço roda sem a sandbox)"
    parar_com_sigterm servico "${cmd[@]}"
    return
  fi
  # The station hands its folder to the service's user; the rest of the machine is read-only.
  chmod 755 "$raiz" "$raiz/pkg"
  chown -R "$usuario:$usuario" "$estacao"
  (sandbox "$usuario" "$estacao" sh -c 'touch "$1/.gravavel" && ! touch /tmp/.lumavox-fora 2>/dev/null &&
    ! touch "$2/.fora" 2>/dev/null' sh "$estacao" "$raiz") || { echo "a sandbox de teste não isola"; return 1; }
  rm -f "$estacao/.gravavel"
  parar_com_sigterm servico sandbox "$usuario" "$estacao" "${cmd[@]}" || return 1
  # What it handed over belongs to it and is whole.
  local lre
  for lre in "$estacao"/list/*.lre; do
    [ "$(stat -c %U "$lre")" = "$usuario" ] || { echo "$lre não é de $usuario"; return 1; }
    grep -qx "$((10#$(basename "$lre" | cut -d_ -f2)))" "$lre" || { echo "$lre quebrada"; return 1; }
  done
  chown -R root:root "$estacao"
}

entrada_da_janela() {
  local entrada="$raiz/pkg/usr/share/applications/lumavox.desktop" linha
  if command -v desktop-file-validate >/dev/null; then desktop-file-validate "$entrada" || return 1; fi
  # Exec=: undo the string escapes; what is left is quoted as the shell quotes.
  linha=$(sed -n 's/^Exec=//p' "$entrada" | sed 's/\\\\/\\/g')
  eval "set -- $linha"
  HOME="$raiz" QT_QPA_PLATFORM=offscreen parar_com_sigterm janela "$@"
}

raiz_limpa() {
  cp "$deb" "$LUMAVOX_CLEAN_ROOT/tmp/"
  chroot "$LUMAVOX_CLEAN_ROOT" sh -c "apt-get update -qq && DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq /tmp/$(basename "$deb") >/dev/null && lumavox-cli --help >/dev/null &&
    lumavox-cli demo --dir /tmp/estacao >/dev/null && lumavox-cli select --dir /tmp/estacao --no-wait >/dev/null"
}

checar "arquivos do pacote" lista_completa
checar "nada fora do lugar" nada_fora_do_lugar
checar "dependências declaradas" dependencias_declaradas
checar "ajuda aponta a documentação" ajuda_aponta_documentacao
checar "exposição das unidades" servico_exposicao
checar "tocador do pacote" tocador_do_pacote
checar "usuário do serviço" usuario_do_pacote
checar "lumavox@.service" servico
[ $janela = 0 ] || checar "lumavox.desktop" entrada_da_janela
[ -z "${LUMAVOX_CLEAN_ROOT:-}" ] || checar "instalação numa raiz limpa" raiz_limpa

echo "$deb: $(wc -l <<<"$lista") arquivos; Depends: $depends"
echo "pacote: $passaram passed, $falharam failed"
[ $falharam = 0 ]
