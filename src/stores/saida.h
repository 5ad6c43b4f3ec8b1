// The hand-over to the player: the files the selection run reads (ritmo.rer, avancar.rer)
// and writes (temp/NNNNNN.mrt, the song's media with every byte complemented, and
// list/NNNNNN_CCCCCCC_LLL.lre, the queue entry). Every function here fails quietly, as the run
// ignores file errors and looks at the outcome; what the player may take appears whole or not
// at all.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/sistema_arquivos.h"
#include "base/texto.h"

namespace lumavox {

namespace fs = std::filesystem;

// First line of a small exchange file, or nothing when it cannot be read (missing, locked,
// empty).
std::optional<Texto> LerPrimeiraLinha(SistemaArquivos& arquivos, const fs::path& arquivo);

// Copies the media file with every byte b written as 255 - b to temp/<contador>.mrt under
// `pasta`, whole or not at all. True when the target was written. A source that is missing, or
// vanishes before it is read, writes nothing and is no error; any other failure leaves no
// target and says why in `erro`.
bool GerarArquivoSaida(SistemaArquivos& arquivos, const fs::path& origem, int64_t contador,
                       const fs::path& pasta, std::string* erro = nullptr);

std::string NomeArquivoTemp(int64_t contador);                                // "000007.mrt"
std::string NomeArquivoFila(int64_t contador, int32_t codigo, int nivel);     // "000007_0001234_050.lre"
// Writes the queue file with the song code as its only line, whole or not at all. True when
// written; otherwise `erro` says why.
bool EscreverFila(SistemaArquivos& arquivos, const fs::path& pasta, const std::string& nome, int32_t codigo,
                  std::string* erro = nullptr);

// The files of a folder whose names end in `extensao` (".lre"), sorted by name; empty when
// the folder cannot be read.
std::vector<fs::path> ListarArquivos(SistemaArquivos& arquivos, const fs::path& pasta, const std::string& extensao);
// Deletes the files, last to first; failures are ignored.
void ApagarArquivos(SistemaArquivos& arquivos, const std::vector<fs::path>& lista);
bool ApagarArquivo(SistemaArquivos& arquivos, const fs::path& arquivo);

}  // namespace lumavox
