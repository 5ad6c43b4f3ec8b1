// A demo station made from nothing: songs with varied Portuguese tags and their .mre files,
// three rules files, a playlist table with a night playlist and a rhythm level. The same
// seed always gives the same station, so tests and benchmarks can build full-size ones.
#pragma once

#include <cstdint>
#include <filesystem>

namespace lumavox::cli {

struct OpcoesDemo {
  int musicas = 300;
  int regrasPorConjunto = 0;  // 0: the set as it stands; more: the set repeated to that count
  bool regrasCompletas = false;  // every implemented rule number, with filters that keep many songs
  uint32_t semente = 1;
  int bytesMre = 256;
  bool playlistNoturna = true;
  int tocadasNoBanco = 150;  // plays already logged in lumavox.db before now (0: no database)
};

// Writes the station into `pasta` (created if missing); existing station files are replaced.
void GerarEstacaoDemo(const std::filesystem::path& pasta, const OpcoesDemo& opcoes);

}  // namespace lumavox::cli
