#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/simulacao_json.h"

namespace lumavox::cli {
namespace {

TEST(SimulacaoJson, ChavesEmOrdemRepeticaoAusenteNulaErroSoQuandoHouve) {
  Simulacao s;
  s.inicio = MontarDataHora(2026, 3, 14, 8, 0);
  s.fim = MontarDataHora(2026, 3, 14, 10, 0);
  for (int i = 0; i < 3; ++i) {
    TocadaSimulada t;
    t.momento = SomarSegundos(s.inicio, i * 1800);
    t.codigo = 100 + i;
    t.artista = u"Artista " + DeUtf8(std::to_string(i));
    t.titulo = u"Canção";  // the same title every time
    s.tocadas.push_back(t);
  }
  ContagemRegra boa{0, 1, u"01", u"", 3, 1, 0, 0, 0, ""};
  ContagemRegra falhou{0, 2, u"15", u"", 0, 0, 0, 0, 2, "Erro 6: estouro"};
  s.regras[{0, 1, u"01"}] = boa;
  s.regras[{0, 2, u"15"}] = falhou;
  const Figuras f = CalcularFiguras(s, [](const Texto& a, const Texto& b) { return a == b; });

  const nlohmann::ordered_json j = SimulacaoJson(s, f);
  std::vector<std::string> chaves;
  for (const auto& [chave, valor] : j.items()) chaves.push_back(chave);
  EXPECT_EQ(chaves, (std::vector<std::string>{"estacao",       "inicio",
                                              "fim",           "semente",
                                              "nivel",         "total_musicas",
                                              "escolhidas",    "tocadas",
                                              "avancadas",     "segundos_de_execucao",
                                              "por_hora",      "menor_intervalo",
                                              "mais_tocadas",  "regras",
                                              "niveis",        "sequencia",
                                              "avisos",        "musicas_por_vezes",
                                              "nunca_tocadas", "unica_restante",
                                              "espacamento",   "conferencia"}));
  EXPECT_EQ(j["por_hora"][1]["hora"], "2026-03-14 09:00");
  EXPECT_TRUE(j["menor_intervalo"]["artista"]["musicas"].is_null());
  EXPECT_TRUE(j["menor_intervalo"]["artista"]["minutos"].is_null());
  EXPECT_EQ(j["menor_intervalo"]["titulo"]["minutos"]["valor"], 30.0);
  EXPECT_EQ(j["menor_intervalo"]["titulo"]["minutos"]["quem"], "Canção");
  EXPECT_FALSE(j["regras"][0].contains("ultimo_erro"));
  EXPECT_EQ(j["regras"][1]["ultimo_erro"], "Erro 6: estouro");
}

}  // namespace
}  // namespace lumavox::cli
