#include <gtest/gtest.h>

#include <cstdlib>

#include "apoio/estacao.h"
#include "apoio/linha_comando.h"
#include "base/sistema_arquivos.h"
#include "cli/icecast.h"
#include "cli/tocador_ar.h"
#include "stores/saida.h"

namespace lumavox::cli {
namespace {

using teste::EstacaoTeste;
using teste::RodarCli;

const DataHora kAgora = MontarDataHora(2026, 11, 23, 10, 0, 0);

// A station whose engine has queued songs: the media written by the engine's own hand-over.
class FilaNoAr : public ::testing::Test {
 protected:
  FilaNoAr() {
    e.Musica(1001, {{"Artista", "Ana"}, {"Title", "Diz \"não\""}}).Musica(1002, {{"Artista", "Bia"}, {"Title", "Lá"}});
    e.GravarAcervo();
    for (const char* pasta : {"list", "temp"}) fs::create_directories(e.Caminho(pasta));
  }
  void Enfileirar(int64_t contador, int32_t codigo, const std::string& audio, int nivel = 50) {
    e.GravarTexto("fonte.mre", audio);
    ASSERT_TRUE(GerarArquivoSaida(ArquivosReais(), e.Caminho("fonte.mre"), contador, e.Pasta()));
    ASSERT_TRUE(EscreverFila(ArquivosReais(), e.Pasta(), NomeArquivoFila(contador, codigo, nivel), codigo));
  }
  EstacaoTeste e;
};

// The oldest entry by counter goes first with its song's bytes; the song that starts removes the
// audio before the one that played last. What the engine reads of the logged plays is the on-air
// test's business.
TEST_F(FilaNoAr, TomaAMaisAntigaPeloContadorEATocadaLevaOsAudiosAnteriores) {
  const std::string ogg("OggS\0\x02\xff\x80 vorbis", 16);
  Enfileirar(1000000, 1002, "ID3 segunda");
  Enfileirar(9, 1001, ogg);
  // An entry whose media is gone is dropped on the way; a stray file is left alone.
  ASSERT_TRUE(EscreverFila(ArquivosReais(), e.Pasta(), NomeArquivoFila(5, 1002, 50), 1002));
  e.GravarTexto("list/leia-me.lre", "x");

  const auto primeira = TomarProxima(e.Pasta(), kAgora);
  ASSERT_TRUE(primeira);
  EXPECT_EQ(primeira->audio.extension(), ".ogg");
  EXPECT_EQ(e.Ler(fs::relative(primeira->audio, e.Pasta()).string()), ogg);
  EXPECT_FALSE(e.Existe("list/000005_0001002_050.lre") || e.Existe("list/000009_0001001_050.lre"));
  EXPECT_FALSE(e.Existe("temp/000009.mrt"));
  EXPECT_TRUE(e.Existe("list/leia-me.lre"));
  // The collection's artist and title, quoted for Liquidsoap.
  EXPECT_EQ(AnotacaoLiquidsoap(*primeira),
            "annotate:lumavox_entrada=\"000009\",lumavox_codigo=\"1001\",lumavox_nivel=\"50\","
            "lumavox_artista=\"Ana\",lumavox_titulo=\"Diz \\\"não\\\"\":" + primeira->audio.string());

  const auto segunda = TomarProxima(e.Pasta(), kAgora);
  ASSERT_TRUE(segunda);
  EXPECT_EQ(segunda->entrada.contador, 1000000);
  EXPECT_EQ(segunda->audio.extension(), ".mp3");
  EXPECT_EQ(ParaUtf8(segunda->titulo), "Lá");
  EXPECT_FALSE(TomarProxima(e.Pasta(), kAgora));

  fs::last_write_time(primeira->audio, fs::last_write_time(segunda->audio) - std::chrono::seconds(5));
  RegistrarNoAr(e.Pasta(), 1001, primeira->audio, kAgora);
  EXPECT_TRUE(fs::exists(primeira->audio) && fs::exists(segunda->audio));
  RegistrarNoAr(e.Pasta(), 1002, segunda->audio, SomarSegundos(kAgora, 200));
  EXPECT_TRUE(!fs::exists(primeira->audio) && fs::exists(segunda->audio));
}

// The click count is the number of songs in a row the operator cut short. A click the engine has
// not read yet holds the queue, but one a player left without an engine does not hold it for ever.
TEST_F(FilaNoAr, CliquesSeguidosContamAteUmaMusicaTocarAteOFim) {
  const std::string dir = e.Pasta().string();
  auto clicar = [&] { return RodarCli({"avancar", "--dir", dir}).saida; };
  auto comecou = [&] { RegistrarNoAr(e.Pasta(), 1001, e.Caminho("nada.ogg"), kAgora); };

  Enfileirar(1, 1001, "OggS");
  Enfileirar(2, 1002, "OggS");
  EXPECT_EQ(clicar(), "clique 1\n");
  EXPECT_EQ(e.Ler("avancar.rer"), "1\n");
  EXPECT_TRUE(e.Existe("temp/tocador/pular"));
  // The queued choices are void: entries and media go, so the engine reads the click at once.
  EXPECT_TRUE(ListarFila(ArquivosReais(), e.Pasta()).empty());
  EXPECT_FALSE(e.Existe("temp/000001.mrt") || e.Existe("temp/000002.mrt"));
  Enfileirar(3, 1001, "OggS");
  EXPECT_FALSE(TomarProxima(e.Pasta(), kAgora));
  fs::last_write_time(e.Caminho("avancar.rer"), fs::file_time_type::clock::now() - std::chrono::seconds(11));
  EXPECT_TRUE(TomarProxima(e.Pasta(), kAgora));

  comecou();  // the song the skip brought
  comecou();  // this one came after a song that played to its end
  EXPECT_EQ(clicar(), "clique 1\n");
}

TEST(ControlesAr, NivelRecusasDoArEUrlDoIcecast) {
  EstacaoTeste e;
  const std::string dir = e.Pasta().string();
  EXPECT_EQ(RodarCli({"nivel", "--dir", dir, "70"}).codigo, 0);
  EXPECT_EQ(e.Ler("ritmo.rer"), "70\n");
  EXPECT_EQ(RodarCli({"nivel", "--dir", dir, "101"}).codigo, 2);
  EXPECT_EQ(e.Ler("ritmo.rer"), "70\n");

  auto umaLinha = [](const teste::ResultadoCli& r, int codigo, const std::string& trecho) {
    EXPECT_EQ(r.codigo, codigo) << r.erros;
    EXPECT_NE(r.erros.find(trecho), std::string::npos) << r.erros;
    EXPECT_EQ(r.erros.find('\n'), r.erros.size() - 1) << r.erros;
  };
  umaLinha(RodarCli({"ar", "--dir", dir, "--icecast", "http://x:1/a"}), 2, "icecast://");

  // Nobody listens on port 1 of the loopback: the connection is refused at once.
  umaLinha(RodarCli({"ar", "--dir", dir, "--icecast", "icecast://source:x@127.0.0.1:1/a.ogg"}), 1,
           "não responde");

  ::setenv("LUMAVOX_LIQUIDSOAP", "/nao/existe/liquidsoap", 1);
  umaLinha(RodarCli({"ar", "--dir", dir}), 1, "liquidsoap não encontrado");
  ::unsetenv("LUMAVOX_LIQUIDSOAP");

  e.GravarTexto("lumavox.mdb", "Standard Jet DB");
  umaLinha(RodarCli({"ar", "--dir", dir}), 1, "banco converter");
  EXPECT_FALSE(e.Existe("temp/tocador"));

  // The stream address: the user and port left out take their defaults, the password is decoded.
  std::string erro;
  auto d = LerUrlIcecast("icecast://:p%40ss:w@[::1]/ao-vivo.ogg", erro);
  ASSERT_TRUE(d) << erro;
  EXPECT_EQ(d->usuario + " " + d->senha, "source p@ss:w");
  EXPECT_EQ(d->UrlOuvinte(), "http://[::1]:8000/ao-vivo.ogg");
}

}  // namespace
}  // namespace lumavox::cli
