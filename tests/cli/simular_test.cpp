#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>

#include "apoio/estacao.h"
#include "apoio/linha_comando.h"

namespace lumavox::cli {
namespace {

using teste::EstacaoTeste;
using teste::RodarCli;

// 60 songs of three minutes by 15 artists, each title once: twenty songs an hour must bring
// artists back, and the half hour a rule keeps them away (about twelve choices, counting the
// two queued ahead) still leaves some to choose from.
void GravarEstacao(EstacaoTeste& estacao) {
  for (int i = 0; i < 60; ++i)
    estacao.Musica(100 + i, {{"Artista", "Artista " + std::to_string(i % 15)},
                             {"Title", "Canção " + std::to_string(i)},
                             {"DuracaoSec", "180"},
                             {"Velocidade", "Normal;"},
                             {"Ritmo", i % 2 ? "Calmo;" : "Animado;"}});
  estacao.GravarAcervo();
}

TEST(Simular, UmaHoraComArtistaProibidoPorMeiaHora) {
  EstacaoTeste estacao, saida;
  GravarEstacao(estacao);
  estacao.Regra(0, true, "02", "(X1) tocar o mesmo (X2) em um período de (X3) horas", {"Não", "Artista:Geral*", "0,5"})
      .GravarRegras();
  const auto antes = estacao.Conteudo();
  const std::string relatorio = saida.Caminho("dia.html").string();
  const std::vector<std::string> args{"simular", "--dir", estacao.Pasta().string(), "--inicio", "2026-11-22 10:00",
                                      "--horas", "1", "--nivel", "50", "--seed", "7", "--json", "--relatorio", relatorio};
  const teste::ResultadoCli r = RodarCli(args);
  ASSERT_EQ(r.codigo, 0) << r.erros;
  auto doc = nlohmann::json::parse(r.saida);

  EXPECT_EQ(doc["tocadas"], 20);  // back to back, three minutes each
  const auto& artista = doc["menor_intervalo"]["artista"];
  EXPECT_GE(artista["minutos"]["valor"].get<double>(), 30) << artista;
  EXPECT_GE(artista["musicas"]["valor"].get<double>(), 10) << artista;
  ASSERT_EQ(doc["regras"].size(), 1u);
  const auto& regra = doc["regras"][0];
  EXPECT_EQ(regra["id"], "02");
  EXPECT_EQ(regra["aplicada"], doc["escolhidas"]);
  EXPECT_EQ(regra["negada"], 0);
  EXPECT_EQ(regra["removeu"].get<int>(), doc["escolhidas"].get<int>() - 1);  // all but the very first choice
  EXPECT_EQ(doc["conferencia"], nlohmann::json::array());  // the test station is clean

  // The station's own folder is exactly as it was: no queue, no media hand-over, no log.
  EXPECT_EQ(estacao.Conteudo(), antes);

  const std::string html = saida.Ler("dia.html");
  EXPECT_EQ(html.rfind("<!DOCTYPE html>", 0), 0u);
  EXPECT_EQ(html.find("src="), std::string::npos);  // nothing outside the file

  // The same seed gives the same day.
  auto outra = nlohmann::json::parse(RodarCli(args).saida);
  doc.erase("segundos_de_execucao");
  outra.erase("segundos_de_execucao");
  EXPECT_EQ(outra, doc);
}

TEST(Simular, CurvaDeNivelTrocaOConjuntoDeRegras) {
  EstacaoTeste estacao;
  GravarEstacao(estacao);
  estacao.Regra(1, true, "99").Regra(2, true, "15").GravarRegras();
  estacao.GravarTexto("curva.txt", "# manhã\n06:00 20\n\n10:30   80  # pico\n");
  const teste::ResultadoCli r =
      RodarCli({"simular", "--dir", estacao.Pasta().string(), "--inicio", "2026-11-22 10:00", "--horas", "1",
                "--curva", estacao.Caminho("curva.txt").string(), "--avancar", "100", "--json"});
  ASSERT_EQ(r.codigo, 0) << r.erros;
  const auto doc = nlohmann::json::parse(r.saida);
  ASSERT_EQ(doc["niveis"].size(), 2u);
  EXPECT_EQ(doc["niveis"][1]["desde"], "2026-11-22 10:30:00");
  EXPECT_EQ(doc["niveis"][1]["nivel"], 80);
  for (const auto& t : doc["sequencia"]) {
    EXPECT_EQ(t["nivel"], t["momento"].get<std::string>() < "2026-11-22 10:30" ? 20 : 80);
    EXPECT_TRUE(t["avancada"].get<bool>());
  }
  EXPECT_EQ(doc["tocadas"], 40);  // every song skipped halfway
  ASSERT_EQ(doc["regras"].size(), 2u);
  EXPECT_EQ(doc["regras"][0]["conjunto"], 1);
  EXPECT_GT(doc["regras"][0]["aplicada"].get<int>(), 0);
  EXPECT_EQ(doc["regras"][1]["conjunto"], 2);
  EXPECT_GT(doc["regras"][1]["nao_realizada"].get<int>(), 0);
}

// The codes and air times of a run's plays.
std::vector<std::pair<std::string, int>> Sequencia(const nlohmann::json& doc) {
  std::vector<std::pair<std::string, int>> s;
  for (const auto& t : doc["sequencia"]) s.emplace_back(t["momento"], t["codigo"]);
  return s;
}

TEST(Simular, OutrasRegrasNoMesmoPeriodoERegrasNegadasPorHora) {
  EstacaoTeste estacao;
  GravarEstacao(estacao);
  // Fifteen artists cannot stay away for three hours at twenty songs an hour: the rule is
  // refused once each has played.
  estacao.Regra(0, true, "02", "", {"Não", "Artista:Geral*", "3"}).GravarRegras();
  std::string toml = RodarCli({"regras", "exportar", "--dir", estacao.Pasta().string()}).saida;
  estacao.GravarTexto("mesmas.toml", toml);
  toml.replace(toml.find("var3 = \"3\""), 10, "var3 = \"0,5\"");
  estacao.GravarTexto("meia_hora.toml", toml);
  auto Rodar = [&](const std::string& regras) {
    const teste::ResultadoCli r =
        RodarCli({"simular", "--dir", estacao.Pasta().string(), "--inicio", "2026-11-22 22:00", "--horas", "3",
                  "--nivel", "50", "--seed", "3", "--json", "--regras", estacao.Caminho(regras).string()});
    EXPECT_EQ(r.codigo, 0) << r.erros;
    return nlohmann::json::parse(r.saida);
  };

  const auto mesmas = Rodar("mesmas.toml");
  EXPECT_EQ(Sequencia(mesmas["alternativa"]), Sequencia(mesmas));
  const auto regra = mesmas["regras"][0];
  ASSERT_GT(regra["negada"].get<int>(), 0);
  // Refused in the simulated hours of day only.
  long soma = 0;
  for (int hora = 0; hora < 24; ++hora) {
    const long n = regra["negada_por_hora"][static_cast<size_t>(hora)];
    soma += n;
    EXPECT_TRUE(n == 0 || hora == 22 || hora == 23 || hora == 0) << hora;
  }
  EXPECT_EQ(soma, regra["negada"].get<long>());

  const auto outras = Rodar("meia_hora.toml");
  EXPECT_NE(Sequencia(outras["alternativa"]), Sequencia(outras));
  EXPECT_EQ(Sequencia(outras), Sequencia(mesmas));  // the station's own run is the same either way
  EXPECT_LT(outras["alternativa"]["regras"][0]["negada"].get<int>(), regra["negada"].get<int>());
}

// Bad arguments end in one line; a rules text that does not read stops before the first song.
TEST(Simular, ErrosDeArgumentoEmUmaLinha) {
  EstacaoTeste estacao;
  GravarEstacao(estacao);
  estacao.GravarRegras();
  estacao.GravarTexto("ruim.txt", "06:00 20\n7h 30\n");
  estacao.GravarTexto("vazio.toml", "# nada\n");
  const std::string dir = estacao.Pasta().string(), ruim = estacao.Caminho("ruim.txt").string();
  const std::pair<std::vector<std::string>, int> casos[] = {
      {{"--curva", ruim}, -1},
      {{"--nivel", "50", "--curva", ruim}, -1},
      {{"--nivel", "101"}, -1},
      {{"--inicio", "amanhã"}, -1},
      {{"--regras", ruim}, 2},
      {{"--regras", estacao.Caminho("vazio.toml").string()}, 2},
  };
  for (const auto& [opcoes, codigo] : casos) {
    std::vector<std::string> args{"simular", "--dir", dir};
    args.insert(args.end(), opcoes.begin(), opcoes.end());
    const teste::ResultadoCli r = RodarCli(args);
    EXPECT_TRUE(codigo < 0 ? r.codigo != 0 : r.codigo == codigo && r.saida.empty()) << args.back();
    EXPECT_EQ(std::count(r.erros.begin(), r.erros.end(), '\n'), 1) << r.erros;
  }
  EXPECT_NE(RodarCli({"simular", "--dir", estacao.Caminho("falta").string()}).codigo, 0);
}

}  // namespace
}  // namespace lumavox::cli
