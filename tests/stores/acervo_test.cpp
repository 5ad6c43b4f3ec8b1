#include "stores/acervo.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <random>
#include <tuple>
#include <vector>

#include "apoio/estacao.h"
#include "stores/gravacoes.h"

namespace lumavox {
namespace {

using teste::ErroDe;
using teste::EstacaoTeste;

class CarregarAcervo : public ::testing::Test {
 protected:
  CarregarAcervo() { acervo.CaminhoApp = estacao.Pasta(); }
  void Carregar() { CarregarColecao(ArquivosReais(), acervo, estacao.Pasta(), nullptr); }

  EstacaoTeste estacao;
  Acervo acervo;
};

// A song without its media file gives its slot to the next one, and a record cut short does not
// count; line ends may be LF or CRLF, with none after the last line.
TEST_F(CarregarAcervo, CodigosTagsVibeEArquivosComFinsDeLinhaLfOuCrlf) {
  estacao.Musica(123, {{"Artista", "Ana"}, {3, "oculto"}, {"Publico", "Jovem"}, {"Velocidade", "8"},
                       {"Ritmo", "Normal;"}})
      .Musica(2, {{"Artista", "B"}}, false)
      .Musica(12345678, {{"Title", "Título"}, {"Velocidade", "Rápida;"}, {"Ritmo", "Rápida;"}})
      .Musica(3)
      .Musica(4)
      .GravarAcervo();
  std::string lf = estacao.Ler("lxdb.rdb"), crlf;
  lf.erase(lf.rfind('\n', lf.size() - 2) + 1);  // song 4 loses its last line
  for (char c : lf) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  crlf.resize(crlf.size() - 2);
  const std::tuple<long, long, std::u16string_view> tags[] = {
      {0, 0, u"Ana"}, {0, 3, u"oculto"}, {0, 31, u"Jovem"}, {1, 2, u"Título"},
      {0, kCampoVibe, u"6,5"}, {1, kCampoVibe, u"9"}, {2, kCampoVibe, u"0"}};
  for (const std::string& conteudo : {crlf, lf}) {
    estacao.GravarTexto("lxdb.rdb", conteudo);
    Carregar();
    ASSERT_EQ(acervo.TotalMusicas, 3);
    EXPECT_EQ(std::tuple(acervo.AcervoCodigos[0], acervo.AcervoCodigos[1], acervo.AcervoVibe[0]),
              std::tuple(123, 12345678, 6.5));
    EXPECT_EQ(acervo.AcervoArquivos[0], estacao.Pasta() / "mre" / "0000123.mre");
    EXPECT_EQ(acervo.AcervoArquivos[1], estacao.Pasta() / "mre" / "12345678.mre");
    for (const auto& [slot, campo, texto] : tags)
      EXPECT_EQ(acervo.AcervoTags(slot, campo), texto) << slot << "/" << campo;
  }
  estacao.GravarTexto("lxdb.rdb", "");
  Carregar();
  EXPECT_EQ(acervo.TotalMusicas, 0);
}

// Past 4001 songs, a code that is no number, a character past 65535 or no file at all:
// the load raises and the count of the last good load stays.
TEST_F(CarregarAcervo, ArquivoDefeituosoOuLongoDemaisLevantaEMantemTotal) {
  // A few codes repeated: the loader does not mind, and few media files keep the test fast.
  for (int32_t i = 0; i < kTotalSlots; ++i) estacao.Musica(1 + i % 4);
  estacao.GravarAcervo();
  Carregar();
  ASSERT_EQ(acervo.TotalMusicas, kTotalSlots);
  estacao.Musica(5).GravarAcervo("extra");
  const std::pair<std::string, std::optional<CodigoErro>> casos[] = {
      {estacao.Ler("lxdb.rdb") + estacao.Ler("extra/lxdb.rdb"), CodigoErro::ForaDoIntervalo},
      {EstacaoTeste::Linhas({"12a", "ok"}), std::nullopt},
      {EstacaoTeste::Linhas({"5"}) + "0000659999900066\n", std::nullopt}};
  for (size_t i = 0; i < std::size(casos); ++i) {
    estacao.GravarTexto("lxdb.rdb", casos[i].first);
    const std::optional<CodigoErro> erro = ErroDe([&] { Carregar(); });
    EXPECT_TRUE(erro && (!casos[i].second || erro == casos[i].second)) << i;
    EXPECT_EQ(acervo.TotalMusicas, kTotalSlots) << i;
  }
  fs::remove(estacao.Caminho("lxdb.rdb"));
  EXPECT_EQ(ErroDe([&] { Carregar(); }), CodigoErro::ArquivoNaoEncontrado);
}

// Writing a recorded load again must leave a collection exactly as reading the same file again
// would, over what an earlier and longer collection left: a dropped last song, an unfinished
// last record, and both together.
TEST_F(CarregarAcervo, CargaGravadaRegravadaIgualALerDeNovo) {
  for (int c = 100; c < 110; ++c)
    estacao.Musica(c, {{"Artista", "Antes " + std::to_string(c)}, {"Ritmo", "Lenta;"}, {26, "a26"}, {27, "a27"}});
  estacao.GravarAcervo();
  Carregar();
  const Acervo& antes = acervo;
  for (bool ultimaSemMre : {false, true}) {
    for (int cortadas : {0, 5, 32}) {
      // Codes of every width, and a negative one, name their media files as well.
      estacao.Musica(-5).Musica(12345678).Musica(1, {{"Artista", "A"}}).Musica(2, {{"Velocidade", "8"}});
      estacao.Musica(3, {{"Artista", "C"}}, !ultimaSemMre);
      // Song 4 loses its last lines: fields from 27 on (or all of them) are never read.
      if (cortadas) estacao.Musica(4, {{"Artista", "D"}, {26, "d26"}, {27, "d27"}});
      estacao.GravarAcervo("agora");
      if (ultimaSemMre) fs::remove(estacao.Caminho("mre/0000003.mre"));
      std::string linhas = estacao.Ler("agora/lxdb.rdb");
      for (int i = 0; i < cortadas; ++i) linhas.erase(linhas.rfind('\n', linhas.size() - 2) + 1);
      estacao.GravarTexto("agora/lxdb.rdb", linhas);

      auto lida = std::make_unique<Acervo>(antes);
      GravacaoAcervo gravacao;
      CarregarColecao(ArquivosReais(), *lida, estacao.Caminho("agora"), nullptr, &gravacao);
      // Written to a file and read back first, so what the file keeps counts as well.
      const InsumosGravacao insumos{{1, 2, 3, 4, 5}, {6, 7, 8, 9, 10}};
      auto regravada = std::make_unique<Acervo>(antes);
      const std::string bytes = SerializarGravacao(gravacao, insumos, "id");
      RegravarColecao(*regravada, LerGravacao(bytes, insumos, "id").value());
      SCOPED_TRACE(std::to_string(ultimaSemMre) + "/" + std::to_string(cortadas));
      ASSERT_EQ(regravada->TotalMusicas, lida->TotalMusicas);
      for (long s = 0; s < 12; ++s) {
        EXPECT_EQ(regravada->AcervoCodigos[s], lida->AcervoCodigos[s]) << s;
        EXPECT_EQ(regravada->AcervoVibe[s], lida->AcervoVibe[s]) << s;
        EXPECT_EQ(regravada->AcervoArquivos[s], lida->AcervoArquivos[s]) << s;
        for (long k = 0; k < kCampos; ++k)
          EXPECT_EQ(regravada->AcervoTags(s, k), lida->AcervoTags(s, k)) << s << "/" << k;
      }
    }
  }
}

// The table against plain strings under many rewrites: longer, shorter, empty, copied from
// another text of the same table, with enough churn that the room of replaced texts is taken
// back several times (a block write over older texts is the recorded-load test's).
TEST(TagsAcervo, ReescritasGuardamCadaTexto) {
  auto tags = std::make_unique<TagsAcervo>();
  std::vector<Texto> esperado(static_cast<size_t>(kTotalSlots * kCampos));
  auto Esperado = [&](long s, long k) -> Texto& { return esperado[static_cast<size_t>(s * kCampos + k)]; };
  std::mt19937 g(7);
  for (int i = 0; i < 400000; ++i) {
    const uint64_t versao = tags->Versao();
    const long s = static_cast<long>(g() % kTotalSlots), k = static_cast<long>(g() % kCampos);
    const long s2 = static_cast<long>(g() % kTotalSlots), k2 = static_cast<long>(g() % kCampos);
    const bool copia = g() % 4 == 0;  // a view into the table itself, which the write may move
    Esperado(s, k) = copia ? Esperado(s2, k2) : Texto(g() % 60, char16_t(u'a' + i % 26));
    tags->Definir(s, k, copia ? (*tags)(s2, k2) : std::u16string_view(Esperado(s, k)));
    ASSERT_GT(tags->Versao(), versao);
  }
  long diferentes = 0;
  for (long s = 0; s < kTotalSlots; ++s)
    for (long k = 0; k < kCampos; ++k) diferentes += (*tags)(s, k) != Esperado(s, k);
  EXPECT_EQ(diferentes, 0);
  EXPECT_EQ(ErroDe([&] { tags->Definir(kTotalSlots, 0, u"x"); }), CodigoErro::ForaDoIntervalo);
}

}  // namespace
}  // namespace lumavox
