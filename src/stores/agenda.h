// The schedule tables of rule "25": up to six tables of 360 slots with up to six tag filters
// each, read from lxtb0.rdb .. lxtb5.rdb in the playlist's data folder (one file per place).
// The format is described in docs/schedule-tables.md.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "base/sistema_arquivos.h"
#include "base/texto.h"
#include "base/vetor.h"

namespace lumavox {

namespace fs = std::filesystem;

constexpr long kLugaresAgenda = 6;
constexpr long kSlotsAgenda = 360;
constexpr long kFiltrosAgenda = 6;

// Six schedule tables of 360 slots with up to six filters each, cleared at every load.
struct TabelasAgenda {
  Vetor<int32_t, 0, kLugaresAgenda - 1> TabelasNumero;
  Cubo<Texto, kLugaresAgenda, kSlotsAgenda, kFiltrosAgenda> TabelasGrade;

  void Limpar() {
    TabelasNumero.Preencher(0);
    TabelasGrade.Preencher(Texto());
  }
};

// The file of place `lugar` (0..5): `pasta`/lxtb<lugar>.rdb.
fs::path ArquivoTabelaAgenda(const fs::path& pasta, long lugar);

// Reads one table file into place `lugar`: its number first, then blocks of a slot (or an
// inclusive range of slots) followed by up to six filters and an empty line. A block sets all
// six filters of its slots, so a later block overrides an earlier one. Raises ErroNaLinha at the
// first line that does not fit (ErroExecucao when the file cannot be read); what was read
// before it stays.
void CarregarTabelaAgenda(SistemaArquivos& arquivos, TabelasAgenda& agenda, long lugar,
                          const fs::path& arquivo);

// Reads the six table files of the data folder. A missing file leaves its place empty; a bad
// one stops at its bad line and the next file is read. Never raises: the causes of the tables
// whose load stopped are returned, one text per table.
std::vector<std::string> CarregarTabelasAgenda(SistemaArquivos& arquivos, TabelasAgenda& agenda,
                                               const fs::path& pasta);

}  // namespace lumavox
