// File access for the station folder. Reads and writes raise ErroExecucao (file not found,
// permission, I/O) so each caller decides, as its procedure says, whether the failure ends
// its work or is ignored. The engine passes its own SistemaArquivos; the forms without one are
// for the tools, which always work on the real disk.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/sistema_arquivos.h"
#include "base/texto.h"

namespace lumavox {

namespace fs = std::filesystem;

// UTF-8 / Windows-1252, LF or CRLF.
std::vector<Texto> LerLinhas(SistemaArquivos& arquivos, const fs::path& caminho);
// Creates or truncates the file and writes one line with the platform's line end (CRLF on
// Windows, LF elsewhere); every reader of the engine takes both.
void EscreverLinha(SistemaArquivos& arquivos, const fs::path& caminho, std::u16string_view linha);

// For a file another program may take at any moment: the bytes go to a name beside it ending in
// kTerminacaoParcial, reach the disk, and only then take the file's name, so a reader sees the
// old file or the whole new one, and a power cut leaves one or the other. When any step fails
// the partial file is deleted, the old file is left as it was, and the step's error is raised.
void EscreverInteiro(SistemaArquivos& arquivos, const fs::path& caminho, std::string_view bytes);
void EscreverLinhaInteira(SistemaArquivos& arquivos, const fs::path& caminho, std::u16string_view linha);
inline constexpr std::string_view kTerminacaoParcial = ".parcial";

std::string LerBytes(const fs::path& caminho);
std::vector<Texto> LerLinhas(const fs::path& caminho);
void EscreverBytes(const fs::path& caminho, std::string_view bytes);
void EscreverLinha(const fs::path& caminho, std::u16string_view linha);
bool ArquivoExiste(const fs::path& caminho) noexcept;

// Paths in station files may be written with "\" (they come from Windows).
fs::path CaminhoDeTexto(std::u16string_view texto);

}  // namespace lumavox
