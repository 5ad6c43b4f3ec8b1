// Moving a station's log database from the Jet file to the SQLite one, done once when the
// station changes to the player that writes only lumavox.db.
#pragma once

#include <filesystem>
#include <vector>

#include "stores/historico_fonte.h"

namespace lumavox {

namespace fs = std::filesystem;

// Writes the rows of a Jet Logs table, as LerTabelaMdb gives them in (Codigo, Musica, Data,
// Tipo), into the SQLite log database `destino` (BancoLogs::Preencher), all or nothing. Before
// they are kept the three queries of a load run on what was written and must give the rows the
// Jet file gives (AvaliarConsultaLogs), or nothing is kept. A missing `destino` is built beside
// it under kTerminacaoParcial and takes its name only when whole; an existing one must hold no
// entry and is filled in one transaction. Raises ErroExecucao, leaving `destino` as it was.
void GravarLogsConvertidos(const std::vector<LinhaBanco>& logs, const fs::path& destino);

}  // namespace lumavox
