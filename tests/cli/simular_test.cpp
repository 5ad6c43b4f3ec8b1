#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <numeric>

#include "apoio/estacao.h"
#include "apoio/linha_comando.h"

namespace lumavox::cli {
namespace {

using teste::EstacaoTeste;
using teste::RodarCli;
using J = nlohmann::json;

// 60 songs of three minutes by 15 artists, each title once, rule 02 keeping an artist away for
// half an hour (about twelve choices, counting the two queued ahead). The same period run again
// with the rule at three hours, which fifteen artists cannot meet at twenty songs an hour: the
// rule is refused once each has played.
TEST(Simular, MeiaHoraSemRepetirArtistaEOutrasRegrasNoMesmoPeriodo) {
  EstacaoTeste estacao, saida;
  for (int i = 0; i < 60; ++i)
    estacao.Musica(100 + i, {{"Artista", "Artista " + std::to_string(i % 15)},
                             {"Title", "Canção " + std::to_string(i)},
                             {"DuracaoSec", "180"}});
  estacao.GravarAcervo();
  estacao.Regra(0, true, "02", "", {"Não", "Artista:Geral*", "0,5"}).GravarRegras();
  std::string toml = RodarCli({"regras", "exportar", "--dir", estacao.Pasta().string()}).saida;
  toml.replace(toml.find("var3 = \"0,5\""), 12, "var3 = \"3\"");
  saida.GravarTexto("tres_horas.toml", toml);
  const auto antes = estacao.Conteudo();
  const std::vector<std::string> args{"simular", "--dir", estacao.Pasta().string(), "--inicio", "2026-11-22 22:00",
                                      "--horas", "3", "--nivel", "50", "--seed", "7", "--json",
                                      "--relatorio", saida.Caminho("dia.html").string(),
                                      "--regras", saida.Caminho("tres_horas.toml").string()};
  const teste::ResultadoCli r = RodarCli(args);
  ASSERT_EQ(r.codigo, 0) << r.erros;
  auto doc = nlohmann::json::parse(r.saida);

  EXPECT_EQ(doc["tocadas"], 60);  // back to back, three minutes each
  const auto& artista = doc["menor_intervalo"]["artista"];
  EXPECT_GE(artista["minutos"]["valor"].get<double>(), 30) << artista;
  EXPECT_GE(artista["musicas"]["valor"].get<double>(), 10) << artista;
  // The rule removes something at every choice but the very first; the test station is clean.
  const auto& regra = doc["regras"].at(0);
  const int n = doc["escolhidas"];
  EXPECT_EQ(J::array({doc["regras"].size(), regra["id"], regra["aplicada"], regra["negada"],
                      regra["removeu"], doc["conferencia"]}),
            J::array({1, "02", n, 0, n - 1, J::array()}));

  // The other rules chose otherwise, refused only in the simulated hours of day.
  EXPECT_NE(doc["alternativa"]["sequencia"], doc["sequencia"]);
  const auto& tres = doc["alternativa"]["regras"].at(0);
  ASSERT_GT(tres["negada"].get<int>(), 0);
  // Counts never go below zero, so a total of the three hours equal to the whole leaves none
  // for the hours not simulated.
  const std::vector<long> porHora = tres["negada_por_hora"];
  EXPECT_EQ(porHora.at(22) + porHora.at(23) + porHora.at(0), tres["negada"].get<long>());
  EXPECT_EQ(std::accumulate(porHora.begin(), porHora.end(), 0L), tres["negada"].get<long>());

  // The station's own folder is exactly as it was: no queue, no media hand-over, no log.
  EXPECT_EQ(estacao.Conteudo(), antes);
  EXPECT_EQ(saida.Ler("dia.html").rfind("<!DOCTYPE html>", 0), 0u);
  EXPECT_EQ(saida.Ler("dia.html").find("src="), std::string::npos);  // nothing outside the file
}

// Without --nivel or --curva the run plays at the level the engine reads from the station's own
// ritmo.rer, out of the player's range or too large to read included, and leaves the file as it is.
// Bad arguments end in one line; a rules text that does not read stops before the first song.
TEST(Simular, NivelDaEstacaoComoOMotorOLeEErrosDeArgumentoEmUmaLinha) {
  EstacaoTeste estacao;
  for (int i = 0; i < 60; ++i) estacao.Musica(100 + i, {{"DuracaoSec", "600"}});
  estacao.GravarAcervo();
  estacao.GravarRegras();
  const std::string dir = estacao.Pasta().string(), ruim = estacao.Caminho("ruim.txt").string();
  for (const auto& [texto, nivel] : {std::pair{"150", 150}, {"-7,5", -8}, {"99999", 0}, {"", 0}}) {
    estacao.GravarTexto("ritmo.rer", std::string(texto) + "\r\n");
    const auto doc =
        nlohmann::json::parse(RodarCli({"simular", "--dir", dir, "--horas", "1", "--json"}).saida);
    ASSERT_FALSE(doc["sequencia"].empty());
    for (const auto& t : doc["sequencia"]) EXPECT_EQ(t["nivel"], nivel) << texto;
    EXPECT_EQ(estacao.Ler("ritmo.rer"), std::string(texto) + "\r\n");
  }

  // The same seed gives the same day, skips included.
  auto Dia = [&] {
    auto d = nlohmann::json::parse(RodarCli({"simular", "--dir", dir, "--horas", "3", "--seed", "5",
                                             "--avancar", "30", "--json"}).saida);
    d.erase("segundos_de_execucao");
    return d;
  };
  EXPECT_EQ(Dia(), Dia());

  estacao.GravarTexto("ruim.txt", "06:00 20\n7h 30\n");
  const std::pair<std::vector<std::string>, int> casos[] = {
      {{"--curva", ruim}, -1},
      {{"--nivel", "101"}, -1},
      {{"--regras", ruim}, 2},
  };
  for (const auto& [opcoes, codigo] : casos) {
    std::vector<std::string> args{"simular", "--dir", dir};
    args.insert(args.end(), opcoes.begin(), opcoes.end());
    const teste::ResultadoCli r = RodarCli(args);
    EXPECT_TRUE(codigo < 0 ? r.codigo != 0 : r.codigo == codigo && r.saida.empty()) << args.back();
    EXPECT_EQ(std::count(r.erros.begin(), r.erros.end(), '\n'), 1) << r.erros;
  }
}

}  // namespace
}  // namespace lumavox::cli
