// The playlist table (pl.rdb in the application folder): which data folder is in force at
// which time of day. Entry 0 is the application folder itself, the default playlist.
#pragma once

#include <cstdint>
#include <filesystem>
#include <utility>
#include <vector>

#include "base/datas.h"
#include "base/sistema_arquivos.h"
#include "base/vetor.h"

namespace lumavox {

namespace fs = std::filesystem;

constexpr long kUltimaPlaylist = 30;

struct TabelaPlaylists {
  Vetor<fs::path, 0, kUltimaPlaylist> Playlists;
  Vetor<DataHora, 0, kUltimaPlaylist> PlaylistInicio;
  Vetor<DataHora, 0, kUltimaPlaylist> PlaylistFim;
  int16_t TotalPlaylists = 0;
  int32_t PlaylistAtual = -1;
};

// Where the table's entries came from, for a check that names the lines: the line of each
// entry 1.., the lines skipped and why, and the line whose entry did not fit.
struct LeituraPlaylists {
  enum class Motivo { Curta, HoraInvalida, SemPasta };
  std::vector<long> linhasDasEntradas;             // [i - 1] is the line of entry i
  std::vector<std::pair<long, Motivo>> ignoradas;  // empty lines are not listed
  long linhaDoExcesso = 0;  // the 31st valid line, where the reading stopped; 0 when none
};

// Reads the table once. Lines are start (columns 1-8), a separator, end (10-17), a separator
// and the folder name (19 on), relative to the application folder. Lines of 18 characters or
// fewer, or whose times or name are not valid, are skipped; a 31st valid line ends the
// reading. A missing file leaves only the default playlist. Never raises.
// `leitura`, when given, is told where each entry came from.
void AbrirPlaylists(SistemaArquivos& arquivos, TabelaPlaylists& tabela, const fs::path& caminhoApp,
                    LeituraPlaylists* leitura = nullptr);

// Index of the playlist whose span holds the time of day of `agora` (both ends inclusive, the
// last matching line wins), or 0 when none does. Spans never wrap past midnight.
int32_t PlaylistDoHorario(const TabelaPlaylists& tabela, DataHora agora);

}  // namespace lumavox
