// The rule descriptions against the numbers the engine dispatches and the variables each
// procedure reads.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "apoio/estacao.h"
#include "apoio/estado_teste.h"
#include "base/erro.h"
#include "rules/descricoes.h"
#include "rules/regras.h"

namespace lumavox {
namespace {

using teste::EstadoTeste;

std::string Utf8(std::u16string_view t) { return ParaUtf8(t); }

TEST(DescricoesRegras, NumerosProcuradosSoPeloTextoExato) {
  ASSERT_EQ(DescricoesRegras().size(), 34u);
  std::string semProcedimento;
  for (const DescricaoRegra& d : DescricoesRegras()) {
    EXPECT_EQ(&DescricaoDaRegra(std::stoi(Utf8(d.numero))), &d);
    EXPECT_EQ(ProcurarRegra(d.numero).procedimento, d.procedimento);
    EXPECT_EQ(d.procedimento != nullptr, d.periodo.Existe()) << Utf8(d.numero);
    if (!d.procedimento) semProcedimento += Utf8(d.numero) + " ";
  }
  for (std::u16string_view outro : {u"1", u" 01", u"01 ", u"00", u"35", u"", u"O1"})
    EXPECT_FALSE(ProcurarRegra(outro).conhecida) << Utf8(outro);
  EXPECT_THROW(DescricaoDaRegra(35), std::out_of_range);
  EXPECT_EQ(semProcedimento, "09 10 11 14 15 16 17 18 19 20 21 ");
}

// Values that get each procedure past the checks it makes before its period (13, 31 and 32 raise
// on an empty X1 after it, which would hide a period never read); the others check it first.
const std::map<std::u16string_view, std::vector<std::string>> kAntesDoPeriodo{
    {u"02", {"Não", "Artista:Geral*", "1"}}, {u"03", {"1", "Sim", "Genero:Geral*"}},
    {u"13", {"3"}}, {u"31", {"3"}}, {u"32", {"2"}}};

TEST(DescricoesRegras, CadaProcedimentoLeOPeriodoDasVariaveisDaDescricao) {
  // Data, início and fim: one set in force, then one bad value each.
  const std::tuple<const char*, const char*, const char*, bool> casos[] = {
      {"22/11/2026", "00:00", "23:59:59", false}, {"amanhã", "", "", true}, {"", "25:00", "23:00", true},
      {"", "00:00", "25:00", true}};
  for (const DescricaoRegra& d : DescricoesRegras()) {
    if (!d.procedimento) continue;
    for (const auto& [data, inicio, fim, esperado] : casos) {
      EstadoTeste t;
      t.Musica(1).TodasCandidatas();
      t->selecao.CliqueAtual = 1;
      std::vector<std::string> vars(kVariaveisPorRegra);
      if (auto it = kAntesDoPeriodo.find(d.numero); it != kAntesDoPeriodo.end())
        std::copy(it->second.begin(), it->second.end(), vars.begin());
      vars[static_cast<size_t>(d.periodo.data - 1)] = data;
      vars[static_cast<size_t>(d.periodo.inicio - 1)] = inicio;
      vars[static_cast<size_t>(d.periodo.fim - 1)] = fim;
      t.RegraAtual(Utf8(d.numero), vars);
      const bool erro = teste::ErroDe([&] { d.procedimento(t.E()); }) == CodigoErro::TiposIncompativeis;
      EXPECT_EQ(erro, esperado) << "regra " << Utf8(d.numero) << ", " << data << " " << inicio << "-" << fim;
    }
  }
}

}  // namespace
}  // namespace lumavox
