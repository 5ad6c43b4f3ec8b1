// The player's count of advance clicks, "cliques.rer" in the application folder: how many songs
// in a row the operator has skipped. The player hands the count to the engine in avancar.rer
// with each click, and the rule that reacts to clicks (03) acts on it: at "click 2" means the
// second song in a row cut short.
#pragma once

#include <filesystem>

#include "base/sistema_arquivos.h"

namespace lumavox {

namespace fs = std::filesystem;

inline constexpr const char* kArquivoCliques = "cliques.rer";
// The engine keeps the count in a 16-bit integer.
inline constexpr int kMaximoCliques = 32767;

struct Cliques {
  int contagem = 0;
  // A skip has been asked and the song it brings has not started yet.
  bool pulando = false;
};

// A missing or unreadable file is no click at all.
Cliques LerCliques(SistemaArquivos& arquivos, const fs::path& pastaApp);
// Written whole (two lines: the count, then 1 while a skip is pending). Raises ErroExecucao.
void GravarCliques(SistemaArquivos& arquivos, const fs::path& pastaApp, const Cliques& cliques);

// One more click: the count grows and the next song to start belongs to this skip.
Cliques ContarAvanco(Cliques c);
// A song started on air: after a skip the count stands (the operator may skip this one too);
// after a song that played to its end the run of skips is over.
Cliques ContarInicio(Cliques c);

}  // namespace lumavox
