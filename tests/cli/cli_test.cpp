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

TEST(CliAcervo, JsonComPlaylistPorHorarioPastaDoAmbienteECargaInterrompida) {
  EstacaoTeste estacao;
  const std::string dir = estacao.Pasta().string();
  ASSERT_EQ(RodarCli({"demo", "--dir", dir, "--musicas", "60"}).codigo, 0);
  auto doc = nlohmann::json::parse(RodarCli({"acervo", "--dir", dir, "--json", "--now", "2026-11-22 10:00:00"}).saida);
  EXPECT_EQ(doc["total_musicas"], 60);
  EXPECT_EQ(doc["playlist_atual"], 0);
  EXPECT_TRUE(doc["erro"].is_null());
  ASSERT_EQ(doc["musicas"].size(), 60u);
  EXPECT_TRUE(doc["musicas"][0]["tags"]["Vibe"].is_number());
  // Without --dir the folder comes from LUMAVOX_DIR; at night the night playlist is in force,
  // its calm songs topped up to the least the engine chooses from.
  ::setenv("LUMAVOX_DIR", dir.c_str(), 1);
  doc = nlohmann::json::parse(RodarCli({"acervo", "--json", "--now", "2026-11-22 03:00:00"}).saida);
  ::unsetenv("LUMAVOX_DIR");
  EXPECT_EQ(doc["playlist_atual"], 1);
  EXPECT_EQ(doc["total_musicas"], 51);
  EXPECT_NE(doc["pasta_dados"].get<std::string>().find("madrugada"), std::string::npos);

  // A collection that stops loading is a warning: the command still answers.
  estacao.GravarTexto("lxdb.rdb", std::string("\x7f\x45\x4c\x46\x00\x01garbage\n\xff\xfe", 16));
  const teste::ResultadoCli r = RodarCli({"acervo", "--dir", dir, "--json", "--now", "2026-11-22 10:00:00"});
  EXPECT_EQ(r.codigo, 0);
  EXPECT_NE(r.erros.find("aviso:"), std::string::npos);
  doc = nlohmann::json::parse(r.saida);
  EXPECT_EQ(doc["total_musicas"], 0);
  EXPECT_FALSE(doc["erro"].is_null());
}

TEST(CliRdb, CodificaDecodificaEApontaALinhaRuim) {
  EstacaoTeste estacao;
  estacao.GravarTexto("texto.txt", "Canção\r\nGenero:Rock;Pop\n\nÚltima");
  const teste::ResultadoCli cod = RodarCli({"rdb", "encode", estacao.Caminho("texto.txt").string()});
  ASSERT_EQ(cod.codigo, 0) << cod.erros;
  estacao.GravarTexto("texto.rdb", cod.saida);
  const teste::ResultadoCli dec = RodarCli({"rdb", "decode", estacao.Caminho("texto.rdb").string()});
  EXPECT_EQ(dec.saida, "Canção\nGenero:Rock;Pop\n\nÚltima\n");

  // The lines before a bad one are still written out.
  estacao.GravarTexto("ruim.rdb", EstacaoTeste::Codificada("ok") + "\n099999\n");
  const teste::ResultadoCli ruim = RodarCli({"rdb", "decode", estacao.Caminho("ruim.rdb").string()});
  EXPECT_EQ(ruim.codigo, 1);
  EXPECT_EQ(ruim.saida, "ok\n");
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
  EXPECT_EQ(doc["total_musicas"], 80);
  ASSERT_EQ(doc["selecoes"].size(), 2u);
  const auto& s = doc["selecoes"][0];
  EXPECT_EQ(s["nivel"], 50);
  EXPECT_EQ(s["arquivos"]["mrt"], "temp/000001.mrt");
  EXPECT_EQ(s["arquivos"]["lre"].get<std::string>().substr(0, 12), "list/000001_");
  // The history was not empty, so the opening-song rule kept everything.
  EXPECT_EQ(s["regras"][0]["id"], "01");
  EXPECT_TRUE(s["regras"][0]["removidas"].empty());
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
