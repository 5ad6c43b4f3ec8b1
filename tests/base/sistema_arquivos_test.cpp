// The file system seam on the real disk, and whole writes that leave the old file or the new one.
#include "base/sistema_arquivos.h"

#include <gtest/gtest.h>

#include <functional>

#include "apoio/estacao.h"
#include "apoio/sistema_arquivos_falho.h"
#include "base/arquivos.h"

namespace lumavox {
namespace {

using teste::ErroDe;
using teste::EstacaoTeste;

// Bytes kept whole and a rename that keeps the file's mark; the rest of the disk's answers are
// held against the file system in memory, errors by cause included.
TEST(ArquivosReais, BytesInteirosERenomearMantemAMarca) {
  EstacaoTeste estacao;
  SistemaArquivos& a = ArquivosReais();
  const fs::path x = estacao.Caminho("a.rer"), y = estacao.Caminho("b.rer");
  const std::string bytes("a\0b\r\n\xff", 6);
  a.EscreverBytes(x, bytes);
  a.EscreverBytes(y, "antigo");
  const std::optional<MarcaArquivo> marca = a.Marca(x);
  a.Renomear(x, y);
  EXPECT_EQ(a.LerBytes(y), bytes);
  EXPECT_TRUE(marca && a.Marca(y) == marca);
}

// Whatever step of a whole write fails (the disk fills, the rename onto the target is refused),
// readers see the old file as it was and nothing partial stays beside it; when none fails they
// see the whole new one.
TEST(ArquivosFalhos, EscritaInteiraOuNenhuma) {
  EstacaoTeste estacao;
  teste::SistemaArquivosFalho falho;
  const fs::path alvo = estacao.Caminho("list/000001_0000007_050.lre");
  const fs::path parcial = alvo.string() + std::string(kTerminacaoParcial);
  estacao.GravarTexto("list/000001_0000007_050.lre", "antigo\n");
  const std::pair<std::function<void()>, std::optional<CodigoErro>> passos[] = {
      {[&] { falho.EncherDiscoApos(3); EscreverInteiro(falho, alvo, "0000007\n"); }, CodigoErro::ErroDeEntradaSaida},
      {[&] { falho.LiberarDisco(); falho.NegarRenomear(parcial); EscreverLinhaInteira(falho, alvo, u"7"); },
       CodigoErro::PermissaoNegada},
      {[&] { falho.Permitir(); EscreverLinhaInteira(falho, alvo, u"7"); }, std::nullopt}};
  for (const auto& [passo, erro] : passos) {
    EXPECT_EQ(ErroDe(passo), erro);
    EXPECT_EQ(estacao.Ler("list/000001_0000007_050.lre"), erro ? "antigo\n" : "7\n");
    EXPECT_EQ(falho.Listar(estacao.Caminho("list"), ""), std::vector<fs::path>{alvo});
  }
}

}  // namespace
}  // namespace lumavox
