#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>

#include "apoio/estacao.h"
#include "apoio/linha_comando.h"
#include "engine/instalacao.h"
#include "engine/motor.h"

namespace lumavox::cli {
namespace {

using teste::EstacaoTeste;
using teste::RodarCli;
using J = nlohmann::json;

TEST(CliAcervo, JsonComPlaylistPorHorarioPastaDoAmbienteECargaInterrompida) {
  EstacaoTeste estacao;
  const std::string dir = estacao.Pasta().string();
  ASSERT_EQ(RodarCli({"demo", "--dir", dir, "--musicas", "60"}).codigo, 0);
  auto doc = nlohmann::json::parse(RodarCli({"acervo", "--dir", dir, "--json", "--now", "2026-11-22 10:00:00"}).saida);
  EXPECT_EQ(J::array({doc["total_musicas"], doc["playlist_atual"], doc["erro"],
                      doc["musicas"].size()}), J::array({60, 0, nullptr, 60}));
  EXPECT_TRUE(doc["musicas"].at(0)["tags"]["Vibe"].is_number());
  // Without --dir the folder comes from LUMAVOX_DIR; at night the night playlist is in force,
  // its calm songs topped up to the least the engine chooses from.
  ::setenv("LUMAVOX_DIR", dir.c_str(), 1);
  doc = nlohmann::json::parse(RodarCli({"acervo", "--json", "--now", "2026-11-22 03:00:00"}).saida);
  ::unsetenv("LUMAVOX_DIR");
  EXPECT_EQ(J::array({doc["playlist_atual"], doc["total_musicas"]}), J::array({1, 51}));
  EXPECT_NE(doc["pasta_dados"].get<std::string>().find("madrugada"), std::string::npos);

  // A collection that stops loading is a warning: the command still answers.
  estacao.GravarTexto("lxdb.rdb", std::string("\x7f\x45\x4c\x46\x00\x01garbage\n\xff\xfe", 16));
  const teste::ResultadoCli r = RodarCli({"acervo", "--dir", dir, "--json", "--now", "2026-11-22 10:00:00"});
  EXPECT_TRUE(r.codigo == 0 && r.erros.find("aviso:") != std::string::npos) << r.erros;
  EXPECT_FALSE(nlohmann::json::parse(r.saida)["erro"].is_null());
}

TEST(CliRdb, CodificaDecodificaEApontaALinhaRuim) {
  EstacaoTeste estacao;
  estacao.GravarTexto("texto.txt", "Canção\r\nGenero:Rock;Pop\n\nÚltima");
  estacao.GravarTexto("texto.rdb",
                      RodarCli({"rdb", "encode", estacao.Caminho("texto.txt").string()}).saida);
  EXPECT_EQ(RodarCli({"rdb", "decode", estacao.Caminho("texto.rdb").string()}).saida,
            "Canção\nGenero:Rock;Pop\n\nÚltima\n");

  // The lines before a bad one are still written out.
  estacao.GravarTexto("ruim.rdb", EstacaoTeste::Codificada("ok") + "\n099999\n");
  const teste::ResultadoCli ruim = RodarCli({"rdb", "decode", estacao.Caminho("ruim.rdb").string()});
  EXPECT_EQ(J::array({ruim.codigo, ruim.saida}), J::array({1, "ok\n"}));
  EXPECT_NE(ruim.erros.find("linha 2"), std::string::npos);
}

TEST(CliSelectETocar, JsonDoContratoComHistoricoEmMemoriaETocadasNoBanco) {
  EstacaoTeste estacao;
  const std::string dir = estacao.Pasta().string();
  ASSERT_EQ(RodarCli({"demo", "--dir", dir, "--musicas", "80"}).codigo, 0);
  const std::vector<std::string> args{"select", "--dir", dir, "--now", "2026-11-22 10:00:00", "--seed", "4",
                                      "--played", "1000,1007@2026-11-22T09:50:00", "--no-wait", "--json"};
  const teste::ResultadoCli r = RodarCli(args);
  ASSERT_EQ(r.codigo, 0) << r.erros;
  auto doc = nlohmann::json::parse(r.saida);
  const auto& s = doc["selecoes"].at(0);
  // The history was not empty, so the opening-song rule kept everything.
  EXPECT_EQ(J::array({doc["total_musicas"], doc["selecoes"].size(), s["nivel"],
                      s["arquivos"]["mrt"], s["regras"][0]["id"], s["regras"][0]["removidas"]}),
            J::array({80, 2, 50, "temp/000001.mrt", "01", J::array()}));
  EXPECT_EQ(s["arquivos"]["lre"].get<std::string>().substr(0, 12), "list/000001_");
  const auto& restantes = s["restantes"];
  EXPECT_NE(std::find(restantes.begin(), restantes.end(), s["escolhida"]), restantes.end());

  // Same seed, same inputs, same output.
  EXPECT_EQ(RodarCli(args).saida, r.saida);
  EXPECT_EQ(RodarCli({"select", "--dir", dir, "--played", "12x", "--no-wait"}).codigo, 2);

  // The simulated player logs its plays in the station's database, which the next start-up reads.
  const teste::ResultadoCli t = RodarCli({"tocar", "--dir", dir, "--musicas", "5", "--inicio", "2026-11-22 15:00:00"});
  ASSERT_EQ(t.codigo, 0) << t.erros;
  size_t tocando = 0;
  for (size_t p = t.saida.find("tocando"); p != std::string::npos; p = t.saida.find("tocando", p + 1)) ++tocando;
  EXPECT_EQ(tocando, 5u);
  const int32_t codigo = std::stoi(t.saida.substr(t.saida.rfind("tocando") + 7, 10));
  AmbienteFixo ambiente(MontarDataHora(2026, 11, 22, 16, 0, 0));
  Motor motor(estacao.Pasta(), ambiente);
  InstalarHistorico(motor);
  motor.Iniciar();
  EXPECT_EQ(motor.E().historico().HistoricoCodigos[-1], codigo);
}

}  // namespace
}  // namespace lumavox::cli
