// A full-capacity station for the benchmarks: the demo generator's 4001 songs and three
// rules files of 256 rules, written once per process into a temporary folder.
#pragma once

#include <filesystem>

#include "cli/demo.h"
#include "engine/estado.h"

namespace lumavox::bench {

inline const std::filesystem::path& EstacaoCheia() {
  static const std::filesystem::path pasta = [] {
    std::filesystem::path p = std::filesystem::temp_directory_path() / "lumavox-bench-cheia";
    cli::OpcoesDemo op;
    op.musicas = 4001;
    op.regrasPorConjunto = 256;
    op.bytesMre = 16;
    op.playlistNoturna = false;
    cli::GerarEstacaoDemo(p, op);
    return p;
  }();
  return pasta;
}

// Plays every three minutes up to `agora`: the database's 500 at -500..-1 and the engine's at
// 0..ultima-1, songs taken across the whole collection.
inline void PreencherHistorico(Estado& e, DataHora agora, long ultima) {
  Historico& h = e.historico;
  for (long p = -500; p < ultima; ++p) {
    h.HistoricoCodigos[p] = e.acervo.AcervoCodigos[(p + 500) * 7 % 4001];
    h.HistoricoDatas[p] = SomarSegundos(agora, -180 * (ultima - p));
  }
  h.TotalTocadas = static_cast<int16_t>(ultima);
  h.Alterado();
}

}  // namespace lumavox::bench
