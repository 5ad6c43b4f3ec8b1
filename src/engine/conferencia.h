// The station check: the corners of the engine's own behaviour that silently spoil a day on air
// (a playlist that never matches, a song the lookups take for absent, a filter no song passes),
// found in the station's files and named by file and line, with what happens and what to
// change. It only reads: no nreg.rer is written and the log database is opened read-only.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/datas.h"
#include "base/sistema_arquivos.h"
#include "base/texto.h"
#include "stores/arquivo_regras.h"

namespace lumavox {

namespace fs = std::filesystem;

enum class NivelConstatacao { Erro, Aviso };

struct Constatacao {
  NivelConstatacao nivel = NivelConstatacao::Erro;
  std::string arquivo;        // relative to the station folder, "/" between folders
  std::optional<long> linha;  // none for a finding about the whole file
  std::string mensagem;
};

// "erro" or "aviso".
const char* NomeDoNivel(NivelConstatacao nivel);
// "erro: madrugada/lxdb.rdb:133: mensagem", without the line when there is none.
std::string FormatarConstatacao(const Constatacao& c);
bool TemErro(const std::vector<Constatacao>& constatacoes);

// Checks the playlist table, every playlist's folder (collection, media, rules files, schedule
// tables, each rule's filters against the songs of its folder) and the log database against
// the collections. `agora` is the moment a rule's date is compared with. Never raises; findings
// come sorted by file and line.
std::vector<Constatacao> ConferirEstacao(SistemaArquivos& arquivos, const fs::path& caminhoApp,
                                         DataHora agora);

// A finding of one rule set alone, by set and rule number, for a rules text not yet written to
// a station.
struct Problema {
  int conjunto = 0;
  int numero = 0;  // the rule's number in its set, 0 for the set as a whole
  Texto id;
  bool grave = true;  // false for a notice that does not fail the check
  std::string mensagem;
  int linha = 0;  // first line of the rule (or of the trailing partial record) in its file
};

// Unknown rule numbers, active flags that read as inactive, dates and times of the period that
// do not convert or never hold, field filters that name no field, "*a-b" values that do not read
// as numbers or overflow at some level of their set, more than 256 rules and a trailing partial
// record. The period and the filters are the variables the rule's description names.
std::vector<Problema> ConferirConjunto(const ConjuntoLido& c);

}  // namespace lumavox
