// The rules files as readable text (TOML) and back, and the check of a rule set. A rules file
// is read line by line keeping how each line was written (its leading character, its line
// end, any odd encoding the engine still accepts), so text made from a file writes the same
// file again byte for byte.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/texto.h"
#include "stores/catalogo.h"

namespace lumavox::cli {

namespace fs = std::filesystem;

// One encoded line: its text and how it was written.
struct LinhaCodificada {
  Texto texto;
  char16_t prefixo = u'0';     // the leading character, never read by the engine
  std::optional<Texto> bruto;  // the line as written, when encoding the text again would differ
};

// Names of the 14 lines of a rule in the text form, in file order.
extern const std::array<std::string_view, kLinhasPorRegra> kChavesLinhas;

struct RegraLida {
  int numero = 0;        // 1, 2, ... in its file
  int linhaOrigem = 0;   // where it starts in the file or the text, for messages
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

// Reads lxie<conjunto>.rdb as the engine does. Raises ErroExecucao when the file cannot be
// read or a line does not decode (with the line number).
ConjuntoLido LerArquivoRegras(const fs::path& arquivo, int conjunto);
// The file's bytes for the set; UTF-8 for any character above ASCII.
std::string BytesDoConjunto(const ConjuntoLido& c);
// Writes lxie<conjunto>.rdb in `pasta` through a temporary file, so a failed write leaves the
// old file whole.
void GravarArquivoRegras(const fs::path& pasta, const ConjuntoLido& c);

// The text form: a header comment, then one [conjuntoN] table per set.
std::string CabecalhoToml();
std::string ConjuntoParaToml(const ConjuntoLido& c);

// Parses the text form. Raises std::runtime_error with "<origem>:<linha>: <cause>" when the
// text is not TOML, names an unknown key, has a value of the wrong type or more than 256 rules.
std::vector<ConjuntoLido> LerTomlRegras(std::string_view texto, const std::string& origem);

struct Problema {
  int conjunto = 0;
  int numero = 0;  // the rule's number in its set, 0 for the set as a whole
  Texto id;
  bool grave = true;  // false for a notice that does not fail the check
  std::string mensagem;
};

// Unknown rule numbers, dates and times of the period that do not convert, field filters that
// name no field, "*a-b" values that do not read as numbers, and a trailing partial record. The
// period and the filters are the variables the rule's description names.
std::vector<Problema> ConferirConjunto(const ConjuntoLido& c);

}  // namespace lumavox::cli
