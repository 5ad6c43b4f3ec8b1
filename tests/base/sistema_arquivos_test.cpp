// The file system seam: the real disk and the fault-injecting wrapper with nothing armed answer
// alike, and each armed fault leaves behind what the real fault would.
#include "base/sistema_arquivos.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "apoio/estacao.h"
#include "apoio/sistema_arquivos_falho.h"
#include "base/arquivos.h"

namespace lumavox {
namespace {

using teste::ErroDe;
using teste::EstacaoTeste;
using teste::SistemaArquivosFalho;

// The wrapper runs under the same expectations as the disk: it must pass everything on as is.
class ContratoArquivos : public ::testing::TestWithParam<bool> {
 protected:
  SistemaArquivos& A() { return GetParam() ? static_cast<SistemaArquivos&>(falho) : ArquivosReais(); }

  EstacaoTeste estacao;
  SistemaArquivosFalho falho;
};

TEST_P(ContratoArquivos, BytesInteirosEErroPelaCausa) {
  const std::string bytes("a\0b\r\n\xff", 6);
  A().EscreverBytes(estacao.Caminho("x.bin"), bytes);
  EXPECT_EQ(A().LerBytes(estacao.Caminho("x.bin")), bytes);
  A().EscreverBytes(estacao.Caminho("x.bin"), "c");
  EXPECT_EQ(estacao.Ler("x.bin"), "c");
  EXPECT_EQ(ErroDe([&] { A().LerBytes(estacao.Caminho("falta.bin")); }), CodigoErro::ArquivoNaoEncontrado);
  EXPECT_EQ(ErroDe([&] { A().EscreverBytes(estacao.Caminho("sem/pasta.bin"), "x"); }),
            CodigoErro::ArquivoNaoEncontrado);
}

TEST_P(ContratoArquivos, ListaSoArquivosComATerminacao) {
  estacao.GravarTexto("list/000002_0000001_050.lre", "1\n");
  estacao.GravarTexto("list/000001_0000002_050.lre", "2\n");
  estacao.GravarTexto("list/000003.mrt", "");
  estacao.GravarTexto("list/lre", "");
  fs::create_directories(estacao.Caminho("list/pasta.lre"));
  std::vector<fs::path> lista = A().Listar(estacao.Caminho("list"), ".lre");
  std::sort(lista.begin(), lista.end());
  EXPECT_EQ(lista, (std::vector<fs::path>{estacao.Caminho("list/000001_0000002_050.lre"),
                                          estacao.Caminho("list/000002_0000001_050.lre")}));
  EXPECT_TRUE(A().Listar(estacao.Caminho("nada"), ".lre").empty());
}

TEST_P(ContratoArquivos, RenomearApagarMarcaEPastas) {
  const fs::path a = estacao.Caminho("a.rer"), b = estacao.Caminho("b.rer");
  A().EscreverBytes(a, "1\n");
  A().EscreverBytes(b, "antigo");
  const std::optional<MarcaArquivo> marca = A().Marca(a);
  ASSERT_TRUE(marca.has_value());
  EXPECT_EQ(marca->second, 2u);

  // A rename replaces the target and keeps the file's mark; a missing source changes nothing.
  A().Renomear(a, b);
  EXPECT_FALSE(A().ArquivoExiste(a));
  EXPECT_EQ(estacao.Ler("b.rer"), "1\n");
  EXPECT_EQ(A().Marca(b), marca);
  EXPECT_EQ(ErroDe([&] { A().Renomear(a, b); }), CodigoErro::ArquivoNaoEncontrado);
  EXPECT_EQ(estacao.Ler("b.rer"), "1\n");
  EXPECT_FALSE(A().Marca(a).has_value());

  EXPECT_TRUE(A().Apagar(b));
  EXPECT_FALSE(A().Apagar(b));

  EXPECT_TRUE(A().CriarPastas(estacao.Caminho("x/y")));
  EXPECT_TRUE(A().CriarPastas(estacao.Caminho("x/y")));
  EXPECT_FALSE(A().ArquivoExiste(estacao.Caminho("x/y")));  // a folder is no file
  estacao.GravarTexto("f", "");
  EXPECT_FALSE(A().CriarPastas(estacao.Caminho("f/g")));
}

INSTANTIATE_TEST_SUITE_P(DiscoEEnvoltorio, ContratoArquivos, ::testing::Bool(),
                         [](const auto& p) { return p.param ? "Falho" : "Real"; });

class ArquivosFalhos : public ::testing::Test {
 protected:
  EstacaoTeste estacao;
  SistemaArquivosFalho falho;
};

TEST_F(ArquivosFalhos, DiscoCheioGuardaOComecoDaGravacaoQueOEnche) {
  falho.EncherDiscoApos(10);
  falho.EscreverBytes(estacao.Caminho("a"), "123456");
  estacao.GravarTexto("b", "antigo");
  try {
    falho.EscreverBytes(estacao.Caminho("b"), "abcdefgh");
    ADD_FAILURE() << "gravou além do disco";
  } catch (const ErroExecucao& e) {
    EXPECT_EQ(e.Codigo(), CodigoErro::ErroDeEntradaSaida);
    EXPECT_NE(std::string(e.what()).find(std::strerror(ENOSPC)), std::string::npos) << e.what();
  }
  EXPECT_EQ(estacao.Ler("b"), "abcd");

  // Full: a later write leaves an empty file, an empty one succeeds, deleting frees nothing.
  falho.Apagar(estacao.Caminho("a"));
  EXPECT_EQ(ErroDe([&] { falho.EscreverBytes(estacao.Caminho("c"), "x"); }), CodigoErro::ErroDeEntradaSaida);
  EXPECT_EQ(estacao.Ler("c"), "");
  falho.EscreverBytes(estacao.Caminho("d"), "");

  falho.LiberarDisco();
  falho.EscreverBytes(estacao.Caminho("c"), "x");
  EXPECT_EQ(estacao.Ler("c"), "x");
}

TEST_F(ArquivosFalhos, OperacoesRecusadasDeixamOsArquivosComoEstavam) {
  estacao.GravarTexto("list/1.lre", "1\n");
  estacao.GravarTexto("novo.lre", "n");
  falho.NegarLeitura(estacao.Caminho("list"));
  falho.NegarEscrita(estacao.Caminho("list/"));
  falho.NegarApagar(estacao.Caminho("list"));
  falho.NegarRenomear(estacao.Caminho("list/2.lre"));

  EXPECT_EQ(ErroDe([&] { falho.LerBytes(estacao.Caminho("list/1.lre")); }), CodigoErro::PermissaoNegada);
  EXPECT_EQ(ErroDe([&] { falho.EscreverBytes(estacao.Caminho("list/1.lre"), "x"); }), CodigoErro::PermissaoNegada);
  EXPECT_EQ(estacao.Ler("list/1.lre"), "1\n");
  EXPECT_FALSE(falho.Apagar(estacao.Caminho("list/1.lre")));
  EXPECT_TRUE(estacao.Existe("list/1.lre"));
  EXPECT_TRUE(falho.CriarPastas(estacao.Caminho("list")));
  EXPECT_FALSE(falho.CriarPastas(estacao.Caminho("list/sub")));
  EXPECT_FALSE(estacao.Existe("list/sub"));

  // A refused rename leaves both names as they were.
  EXPECT_EQ(ErroDe([&] { falho.Renomear(estacao.Caminho("novo.lre"), estacao.Caminho("list/2.lre")); }),
            CodigoErro::PermissaoNegada);
  EXPECT_EQ(estacao.Ler("novo.lre"), "n");
  EXPECT_FALSE(estacao.Existe("list/2.lre"));

  // A name that only begins like the refused folder is another file.
  falho.EscreverBytes(estacao.Caminho("listagem"), "ok");
  EXPECT_EQ(falho.LerBytes(estacao.Caminho("listagem")), "ok");

  falho.Permitir();
  EXPECT_EQ(falho.LerBytes(estacao.Caminho("list/1.lre")), "1\n");
  falho.Renomear(estacao.Caminho("novo.lre"), estacao.Caminho("list/2.lre"));
  EXPECT_TRUE(falho.Apagar(estacao.Caminho("list/2.lre")));
}

TEST_F(ArquivosFalhos, ArquivoSomeUmaVezLogoDepoisDeVisto) {
  estacao.GravarTexto("list/1.lre", "1\n");
  estacao.GravarTexto("mre/0000007.mre", "m");
  falho.SumirDepoisDeVisto(estacao.Caminho("list/1.lre"));
  falho.SumirDepoisDeVisto(estacao.Caminho("mre/0000007.mre"));

  EXPECT_EQ(falho.Listar(estacao.Caminho("list"), ".lre").size(), 1u);
  EXPECT_EQ(ErroDe([&] { falho.LerBytes(estacao.Caminho("list/1.lre")); }), CodigoErro::ArquivoNaoEncontrado);
  EXPECT_TRUE(falho.ArquivoExiste(estacao.Caminho("mre/0000007.mre")));
  EXPECT_EQ(ErroDe([&] { falho.LerBytes(estacao.Caminho("mre/0000007.mre")); }), CodigoErro::ArquivoNaoEncontrado);

  estacao.GravarTexto("list/1.lre", "1\n");
  EXPECT_EQ(falho.Listar(estacao.Caminho("list"), ".lre").size(), 1u);
  EXPECT_TRUE(estacao.Existe("list/1.lre"));
}

// Whatever step of a whole write fails, readers see the old file as it was and nothing partial
// stays beside it; when none fails they see the whole new one.
TEST_F(ArquivosFalhos, EscritaInteiraOuNenhuma) {
  const fs::path alvo = estacao.Caminho("list/000001_0000007_050.lre");
  estacao.GravarTexto("list/000001_0000007_050.lre", "antigo\n");
  auto SoOAlvo = [&] {
    std::vector<fs::path> lista = falho.Listar(estacao.Caminho("list"), "");
    return lista == std::vector<fs::path>{alvo};
  };

  falho.EncherDiscoApos(3);
  EXPECT_EQ(ErroDe([&] { EscreverInteiro(falho, alvo, "0000007\n"); }), CodigoErro::ErroDeEntradaSaida);
  EXPECT_EQ(estacao.Ler("list/000001_0000007_050.lre"), "antigo\n");
  EXPECT_TRUE(SoOAlvo());
  falho.LiberarDisco();

  fs::path parcial = alvo;
  parcial += kTerminacaoParcial;
  falho.NegarRenomear(parcial);
  EXPECT_EQ(ErroDe([&] { EscreverLinhaInteira(falho, alvo, u"7"); }), CodigoErro::PermissaoNegada);
  EXPECT_EQ(estacao.Ler("list/000001_0000007_050.lre"), "antigo\n");
  EXPECT_TRUE(SoOAlvo());
  falho.Permitir();

  EscreverLinhaInteira(falho, alvo, u"7");
  EXPECT_EQ(estacao.Ler("list/000001_0000007_050.lre"), "7\n");
  EXPECT_TRUE(SoOAlvo());
  EscreverInteiro(falho, estacao.Caminho("vazio"), "");
  EXPECT_EQ(estacao.Ler("vazio"), "");
}

}  // namespace
}  // namespace lumavox
