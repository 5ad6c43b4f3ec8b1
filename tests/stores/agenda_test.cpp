// The schedule-table files: blocks and overrides, broken files and the CLI check, which also
// shows a table kept up to its bad line (the load inside DefinirAcervo is the engine's test).
#include "stores/agenda.h"

#include <gtest/gtest.h>

#include "apoio/estacao.h"
#include "apoio/linha_comando.h"

namespace lumavox {
namespace {

using teste::EstacaoTeste;

std::string Tabela(std::initializer_list<std::string_view> linhas) { return EstacaoTeste::Linhas(linhas); }

TEST(TabelasAgenda, BlocosComFiltrosInteirosEUmaTabelaQuebradaParaNaLinhaRuim) {
  EstacaoTeste st;
  st.GravarTexto("lxtb0.rdb", Tabela({"7", "0-14", "Genero:Rock;Pop", "Faixa Etária:10:20", "", "", "3",
                                      "Estilo:Dance", "", "359", "Genero:Jazz"}));
  st.GravarTexto("lxtb1.rdb", Tabela({"8", "0", "Genero:Rock", "", "360", "Genero:Pop"}));
  st.GravarTexto("lxtb4.rdb", Tabela({"12"}));
  st.GravarTexto("lxtb2.rdb", Tabela({"9", "1", "A:1", "A:2", "A:3", "A:4", "A:5", "A:6", "A:7"}));
  st.GravarTexto("lxtb3.rdb", Tabela({"sete"}));
  st.GravarTexto("lxtb5.rdb", Tabela({"10", "5-2"}));
  TabelasAgenda a;
  a.Limpar();
  const std::vector<std::string> falhas = CarregarTabelasAgenda(ArquivosReais(), a, st.Pasta());
  const char* const esperadas[] = {"lxtb1.rdb, linha 5", "lxtb2.rdb, linha 9", "lxtb3.rdb, linha 1",
                                   "lxtb5.rdb, linha 2"};
  ASSERT_EQ(falhas.size(), std::size(esperadas));
  for (size_t i = 0; i < falhas.size(); ++i)
    EXPECT_NE(falhas[i].find(esperadas[i]), std::string::npos) << falhas[i];
  EXPECT_EQ(a.TabelasNumero[4], 12);  // a table of its number alone
  EXPECT_EQ(a.TabelasGrade(2, 1, 0), u"");  // a block with a seventh filter is not placed
  EXPECT_EQ(a.TabelasNumero[3], 0);

  // A line that does not decode is named as well.
  st.GravarTexto("lxtb3.rdb", Tabela({"11", "0"}) + "099999\r\n");
  EXPECT_NE(CarregarTabelasAgenda(ArquivosReais(), a, st.Pasta())[2].find("lxtb3.rdb, linha 3"),
            std::string::npos);

  // The CLI check reads a file as the load does: it shows table 0, where the later block set all
  // six filters of slot 3 and the file ends a block, and a broken one up to its bad line.
  const teste::ResultadoCli boa = teste::RodarCli({"rdb", "tabela", st.Caminho("lxtb0.rdb").string()});
  EXPECT_EQ(boa.codigo, 0);
  EXPECT_EQ(boa.saida,
            "tabela 7\n"
            "0-2 (00:00-00:11)\n  Genero:Rock;Pop\n  Faixa Etária:10:20\n"
            "3 (00:12-00:15)\n  Estilo:Dance\n"
            "4-14 (00:16-00:59)\n  Genero:Rock;Pop\n  Faixa Etária:10:20\n"
            "359 (23:56-23:59)\n  Genero:Jazz\n");
  const teste::ResultadoCli ruim = teste::RodarCli({"rdb", "tabela", st.Caminho("lxtb1.rdb").string()});
  EXPECT_EQ(ruim.codigo, 1);
  EXPECT_EQ(ruim.saida, "tabela 8\n0 (00:00-00:03)\n  Genero:Rock\n");  // what came before the bad line stays
  EXPECT_NE(ruim.erros.find("linha 5"), std::string::npos);
}

}  // namespace
}  // namespace lumavox
