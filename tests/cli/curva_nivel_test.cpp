#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "cli/curva_nivel.h"

namespace lumavox::cli {
namespace {

DataHora Dia14(int hora, int minuto) { return MontarDataHora(2026, 3, 14, hora, minuto); }

TEST(CurvaNivel, NivelDoUltimoPontoAteOMomentoEVoltaDaVespera) {
  // Out of order, with comments, blanks and two points at one time: the later line wins.
  const CurvaNivel c = LerCurvaNivel("# tarde\n18:00 70  # pico\n\n06:00 20\n12:00 40\n12:00 45\n", "dia.txt");
  ASSERT_EQ(c.pontos.size(), 4u);
  EXPECT_EQ(c.pontos.front().first, 6 * 3600);
  EXPECT_EQ(c.NivelEm(Dia14(5, 59)), 70);  // still last night's point
  EXPECT_EQ(c.NivelEm(Dia14(6, 0)), 20);
  EXPECT_EQ(c.NivelEm(Dia14(11, 59)), 20);
  EXPECT_EQ(c.NivelEm(Dia14(12, 0)), 45);
  EXPECT_EQ(c.NivelEm(Dia14(23, 59)), 70);
}

TEST(CurvaNivel, ProximaMudancaDepoisDoMomentoEPassaParaOOutroDia) {
  const CurvaNivel c = LerCurvaNivel("06:00 20\n18:30 70\n", "dia.txt");
  EXPECT_EQ(c.ProximaMudanca(Dia14(0, 0)), Dia14(6, 0));
  EXPECT_EQ(c.ProximaMudanca(Dia14(6, 0)), Dia14(18, 30));  // strictly after
  EXPECT_EQ(c.ProximaMudanca(Dia14(18, 30)), MontarDataHora(2026, 3, 15, 6, 0));
  EXPECT_EQ(c.ProximaMudanca(Dia14(23, 59)), MontarDataHora(2026, 3, 15, 6, 0));
}

TEST(CurvaNivel, LinhaQueNaoLeDizArquivoENumero) {
  for (const std::string ruim : {"24:00 10", "7h 30", "06:60 10", "06:00", "06:00 10 20", "06:00 101", "06:00 -1",
                                 "06:00 5,5", "06:00 alto"}) {
    try {
      LerCurvaNivel("# cabeçalho\n05:00 10\n" + ruim + "\n", "dia.txt");
      ADD_FAILURE() << ruim;
    } catch (const std::runtime_error& e) {
      EXPECT_EQ(std::string(e.what()).rfind("dia.txt:3: ", 0), 0u) << e.what();
    }
  }
  EXPECT_THROW(LerCurvaNivel("# só comentário\n\n", "vazia.txt"), std::runtime_error);
}

}  // namespace
}  // namespace lumavox::cli
