// File access for the station folder. Reads and writes raise ErroExecucao (file not found,
// permission, I/O) so each caller decides, as its procedure says, whether the failure ends
// its work or is ignored.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/texto.h"

namespace lumavox {

namespace fs = std::filesystem;

std::string LerBytes(const fs::path& caminho);
std::vector<Texto> LerLinhas(const fs::path& caminho);  // UTF-8 / Windows-1252, LF or CRLF
void EscreverBytes(const fs::path& caminho, std::string_view bytes);
// Creates or truncates the file and writes one line with the platform's line end (CRLF on
// Windows, LF elsewhere); every reader of the engine takes both.
void EscreverLinha(const fs::path& caminho, std::u16string_view linha);
bool ArquivoExiste(const fs::path& caminho) noexcept;

// Paths in station files may be written with "\" (they come from Windows).
fs::path CaminhoDeTexto(std::u16string_view texto);

}  // namespace lumavox
