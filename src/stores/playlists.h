// The playlist table (pl.rdb in the application folder): which data folder is in force at
// which time of day. Entry 0 is the application folder itself, the default playlist.
#pragma once

#include <cstdint>
#include <filesystem>

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

// Reads the table once. Lines are start (columns 1-8), a separator, end (10-17), a separator
// and the folder name (19 on), relative to the application folder. Lines of 18 characters or
// fewer, or whose times or name are not valid, are skipped; a 31st valid line ends the
// reading. A missing file leaves only the default playlist. Never raises.
void AbrirPlaylists(SistemaArquivos& arquivos, TabelaPlaylists& tabela, const fs::path& caminhoApp);

// Index of the playlist whose span holds the time of day of `agora` (both ends inclusive, the
// last matching line wins), or 0 when none does. Spans never wrap past midnight.
int32_t PlaylistDoHorario(const TabelaPlaylists& tabela, DataHora agora);

}  // namespace lumavox
