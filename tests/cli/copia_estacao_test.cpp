// The scratch copy a simulation runs on: the station's text files in memory, its log database on
// disk for SQLite, its media as empty files; nothing the run does reaches the station.
#include "cli/copia_estacao.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

#include "apoio/estacao.h"
#include "base/arquivos.h"

namespace lumavox::cli {
namespace {

using teste::ErroDe;
using teste::EstacaoTeste;

TEST(CopiaDaEstacao, TextosEmMemoriaBancoNoDiscoEstacaoIntacta) {
  EstacaoTeste estacao;
  estacao.Musica(101).Musica(102);
  estacao.GravarAcervo();
  estacao.Regra(0, true, "02").GravarRegras();
  estacao.GravarTexto("noite/lxie0.rdb", "noite\n");
  estacao.GravarTexto("ritmo.rer", "70\n");         // the live player's, not the copy's
  estacao.GravarTexto("temp/000001.mrt", "audio");  // the live queue's
  estacao.GravarTexto("lumavox.db", "banco");
  // An old enough collection file has a version, which the copy answers as its own.
  fs::last_write_time(estacao.Caminho("lxdb.rdb"), fs::file_time_type::clock::now() - std::chrono::hours(1));
  const auto antes = estacao.Conteudo();

  fs::path pasta;
  {
    CopiaDaEstacao copia(estacao.Pasta());
    pasta = copia.Pasta();
    EXPECT_EQ(copia.LerBytes(pasta / "noite" / "lxie0.rdb"), "noite\n");
    EXPECT_FALSE(copia.ArquivoExiste(pasta / "ritmo.rer"));
    EXPECT_FALSE(copia.ArquivoExiste(pasta / "temp" / "000001.mrt"));
    // However the path is written, the collection left at the station is brought whole.
    EXPECT_EQ(copia.LerBytes(pasta / "." / "lxdb.rdb"), estacao.Ler("lxdb.rdb"));
    EXPECT_EQ(copia.Versao(fs::path(pasta.string() + "//lxdb.rdb")).value(),
              ArquivosReais().Versao(estacao.Caminho("lxdb.rdb")).value());

    // The database is a file on disk; the hand-over below is not.
    EXPECT_EQ(LerBytes(pasta / "lumavox.db"), "banco");

    std::vector<std::string> midias = copia.ListarNomes(pasta / "mre", ".mre");
    std::sort(midias.begin(), midias.end());
    ASSERT_EQ(midias, estacao.Nomes("mre", ".mre"));
    EXPECT_EQ(copia.LerBytes(pasta / "mre" / midias.at(0)), "");

    // A hand-over into the copy stays in memory; between memory and disk there is no rename.
    ASSERT_TRUE(copia.CriarPastas(pasta / "list"));
    EscreverInteiro(copia, pasta / "list" / "000001_0000101_050.lre", "0000101\n");
    EXPECT_EQ(copia.ListarNomes(pasta / "list", ".lre"), std::vector<std::string>{"000001_0000101_050.lre"});
    EXPECT_FALSE(fs::exists(pasta / "list"));
    EXPECT_EQ(ErroDe([&] { copia.Renomear(pasta / "lxie0.rdb", pasta / "lumavox.db"); }),
              CodigoErro::ErroDeEntradaSaida);
    EXPECT_EQ(copia.LerBytes(pasta / "lxie0.rdb"), estacao.Ler("lxie0.rdb"));
  }
  EXPECT_FALSE(fs::exists(pasta));
  EXPECT_EQ(estacao.Conteudo(), antes);

  // A collection changed at the station before the run first reads it is read as it is then,
  // and the version taken at the start no longer answers for it.
  CopiaDaEstacao copia(estacao.Pasta());
  estacao.GravarTexto("lxdb.rdb", "outro acervo\n");
  EXPECT_EQ(copia.LerBytes(copia.Pasta() / "lxdb.rdb"), "outro acervo\n");
  EXPECT_FALSE(copia.Versao(copia.Pasta() / "lxdb.rdb").has_value());
}

}  // namespace
}  // namespace lumavox::cli
