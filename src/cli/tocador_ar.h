// The player's side of the queue on air, driven by the Liquidsoap script: take the next entry
// and decode its media for the playout, record a song when it starts on air; and the operator's
// controls, the rhythm level and the advance click.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "base/datas.h"
#include "base/texto.h"
#include "stores/fila.h"

namespace lumavox::cli {

namespace fs = std::filesystem;

// Where the player keeps the songs it decoded and its skip request, inside the station folder.
fs::path PastaDoTocador(const fs::path& pastaApp);
// The file whose appearance makes the playout cut the song on air.
fs::path PedidoDePular(const fs::path& pastaApp);

struct Tomada {
  EntradaFila entrada;
  fs::path audio;  // the song's own bytes, ready for the playout
  Texto artista, titulo;
};

// Takes the oldest queue entry: decodes its media beside the player, deletes the entry and the
// media (so the engine refills the queue) and finds the song's artist and title in the
// collection. An entry without readable media is dropped and the next one tried. Nothing when
// the queue is empty, or while an advance click the engine has not read yet would void it.
std::optional<Tomada> TomarProxima(const fs::path& pastaApp, DataHora agora);

// The request the Liquidsoap script plays: the decoded file with the collection's artist and
// title and the entry's counter, code and level as metadata.
std::string AnotacaoLiquidsoap(const Tomada& t);

// A song started on air: its play goes into the log database at `momento`, the click count
// learns whether a skip brought it, and the decoded songs that came before it are deleted.
// Raises ErroExecucao when the play cannot be logged.
void RegistrarNoAr(const fs::path& pastaApp, int32_t codigo, const fs::path& audio, DataHora momento);

// The operator's controls. Both write their file whole.
void DefinirNivel(const fs::path& pastaApp, int nivel);
// Counts the click, tells the engine through avancar.rer, voids the queue and asks the playout
// to cut the song on air; returns the click count handed over.
int Avancar(const fs::path& pastaApp);

}  // namespace lumavox::cli
