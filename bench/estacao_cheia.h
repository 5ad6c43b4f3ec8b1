// A full-capacity station for the benchmarks: the demo generator's 4001 songs and three
// rules files of 256 rules, written once per process into a temporary folder.
#pragma once

#include <filesystem>

#include "cli/demo.h"

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

}  // namespace lumavox::bench
