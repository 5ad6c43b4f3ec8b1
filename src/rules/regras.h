// The rule procedures and the dispatch to them by rule number, through the rule descriptions.
// Each procedure reads RegraAtual and the shared state and clears MusicaMantida for the songs it
// rejects.
#pragma once

#include <string_view>

#include "rules/descricoes.h"

namespace lumavox {

struct BuscaRegra {
  bool conhecida = false;                 // the number is in the table
  ProcedimentoRegra procedimento = nullptr;  // null for numbers that are not performed
};

// Looks the rule number up in the descriptions by exact text ("01".."34"). Numbers without a
// procedure are known but have none; any other text is unknown.
BuscaRegra ProcurarRegra(std::u16string_view id);

void Regra01(Estado& e);
// The hours of "02" come from Var3 unless a positive value is given here; the table passes 0.
void Regra02(Estado& e, double horas);
void Regra03(Estado& e);
void Regra04(Estado& e);
void Regra05(Estado& e);
void Regra06(Estado& e);
void Regra07(Estado& e);
void Regra08(Estado& e);
// Whether now lies in a named period of the day (rule "08"'s X7); no period is ever in force.
bool VerificarPeriodo(std::u16string_view periodo);
void Regra12(Estado& e);
void Regra13(Estado& e);
void Regra22(Estado& e);
void Regra23(Estado& e);
void Regra24(Estado& e);
// Rules "24" and "27": by chance X1%, the candidates whose `campoCandidata` shares no value with
// the last song's `campoUltima` go. "24" asks genre after sub-genre, "27" the reverse; `regra`
// is the one whose period applies.
void RegraGeneroInfluente(Estado& e, const DescricaoRegra& regra, long campoUltima,
                          long campoCandidata);
void Regra25(Estado& e);
void Regra26(Estado& e);
void Regra27(Estado& e);
void Regra28(Estado& e);
void Regra29(Estado& e);
void Regra30(Estado& e);
void Regra31(Estado& e);
void Regra32(Estado& e);
void Regra33(Estado& e);
void Regra34(Estado& e);

}  // namespace lumavox
