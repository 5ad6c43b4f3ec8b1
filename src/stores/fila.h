// The queue seen from the player's side: the entries the engine wrote in list/, oldest first,
// and each song's bytes back from its complemented media in temp/. The player takes an entry by
// deleting it with its media, which is what tells the engine to choose again.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/sistema_arquivos.h"

namespace lumavox {

namespace fs = std::filesystem;

struct EntradaFila {
  fs::path arquivo;  // list/000007_0001234_050.lre
  int64_t contador = 0;
  int32_t codigo = 0;
  int nivel = 0;
  std::string radical;  // "000007": its media is temp/000007.mrt
};

// The parts of a queue file's name, or nothing for a name the engine does not write.
std::optional<EntradaFila> LerNomeFila(const std::string& nome);

// The queue entries of the application folder, the lowest counter first (the counter may grow
// past six digits, so names are not compared as text).
std::vector<EntradaFila> ListarFila(SistemaArquivos& arquivos, const fs::path& pastaApp);

fs::path MidiaDaEntrada(const fs::path& pastaApp, const EntradaFila& entrada);

// Every byte b as 255 - b: turns a song into its hand-over media and the media back.
void ComplementarBytes(std::string& bytes);

// The audio format the bytes start like, as a file extension a decoder recognises (".ogg",
// ".mp3", ".flac", ".wav", ".m4a"), or ".bin" when nothing is recognised.
std::string ExtensaoDoAudio(std::string_view bytes);

}  // namespace lumavox
