// A rules file (lxie0/1/2.rdb) read line by line keeping how each line was written (its leading
// character, its line end, any odd encoding the engine still accepts), so a tool that edits the
// rules writes the same file again byte for byte, and a check can name the line of each rule.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/sistema_arquivos.h"
#include "base/texto.h"
#include "stores/catalogo.h"

namespace lumavox {

namespace fs = std::filesystem;

// One encoded line: its text and how it was written.
struct LinhaCodificada {
  Texto texto;
  char16_t prefixo = u'0';     // the leading character, never read by the engine
  std::optional<Texto> bruto;  // the line as written, when encoding the text again would differ
};

struct RegraLida {
  int numero = 0;       // 1, 2, ... in its file
  int linhaOrigem = 0;  // where it starts in the file or the text, for messages
  std::array<LinhaCodificada, kLinhasPorRegra> linhas;

  const Texto& Id() const { return linhas[1].texto; }
  const Texto& Var(int n) const { return linhas[static_cast<size_t>(n + 3)].texto; }
  bool Ativo() const;
};

struct ConjuntoLido {
  int conjunto = 0;
  bool crlf = true;           // line end of the file
  bool ultimaSemFim = false;  // the last line has no line end
  std::vector<RegraLida> regras;
  std::vector<Texto> incompletas;  // lines of a trailing partial record, as written
};

// Reads lxie<conjunto>.rdb as the engine does. Raises ErroNaLinha when a line does not decode,
// ErroExecucao when the file cannot be read.
ConjuntoLido LerArquivoRegras(const fs::path& arquivo, int conjunto);
// The file's bytes for the set; UTF-8 for any character above ASCII.
std::string BytesDoConjunto(const ConjuntoLido& c);
// Writes lxie<conjunto>.rdb in `pasta` through a temporary file, so a failed write leaves the
// old file whole.
void GravarArquivoRegras(SistemaArquivos& arquivos, const fs::path& pasta, const ConjuntoLido& c);

}  // namespace lumavox
