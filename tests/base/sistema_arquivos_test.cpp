// The file system seam on the real disk, and whole writes that leave the old file or the new one.
#include "base/sistema_arquivos.h"

#include <gtest/gtest.h>

#include "apoio/estacao.h"
#include "apoio/sistema_arquivos_falho.h"
#include "base/arquivos.h"

namespace lumavox {
namespace {

using teste::ErroDe;
using teste::EstacaoTeste;
using teste::SistemaArquivosFalho;

class ContratoArquivos : public ::testing::Test {
 protected:
  SistemaArquivos& A() { return ArquivosReais(); }

  EstacaoTeste estacao;
};

TEST_F(ContratoArquivos, BytesInteirosEErroPelaCausa) {
  const std::string bytes("a\0b\r\n\xff", 6);
  A().EscreverBytes(estacao.Caminho("x.bin"), bytes);
  EXPECT_EQ(A().LerBytes(estacao.Caminho("x.bin")), bytes);
  A().EscreverBytes(estacao.Caminho("x.bin"), "c");
  EXPECT_EQ(estacao.Ler("x.bin"), "c");
  EXPECT_EQ(ErroDe([&] { A().LerBytes(estacao.Caminho("falta.bin")); }), CodigoErro::ArquivoNaoEncontrado);
  EXPECT_EQ(ErroDe([&] { A().EscreverBytes(estacao.Caminho("sem/pasta.bin"), "x"); }),
            CodigoErro::ArquivoNaoEncontrado);
}

// A rename replaces the target and keeps the file's mark; a missing source changes nothing.
TEST_F(ContratoArquivos, RenomearMantemAMarcaEApagarDizSeApagou) {
  const fs::path a = estacao.Caminho("a.rer"), b = estacao.Caminho("b.rer");
  A().EscreverBytes(a, "1\n");
  A().EscreverBytes(b, "antigo");
  const std::optional<MarcaArquivo> marca = A().Marca(a);
  ASSERT_TRUE(marca.has_value());
  A().Renomear(a, b);
  EXPECT_EQ(estacao.Ler("b.rer"), "1\n");
  EXPECT_EQ(A().Marca(b), marca);
  EXPECT_EQ(ErroDe([&] { A().Renomear(a, b); }), CodigoErro::ArquivoNaoEncontrado);
  EXPECT_FALSE(A().Marca(a).has_value());
  EXPECT_TRUE(A().Apagar(b));
  EXPECT_FALSE(A().Apagar(b));
}

class ArquivosFalhos : public ::testing::Test {
 protected:
  EstacaoTeste estacao;
  SistemaArquivosFalho falho;
};

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
