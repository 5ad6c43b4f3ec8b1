#include "stores/acervo.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <optional>
#include <random>
#include <tuple>
#include <vector>

#include "apoio/estacao.h"
#include "base/numeros.h"
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
    EXPECT_EQ(acervo.AcervoCodigos[0], 123);
    EXPECT_EQ(acervo.AcervoCodigos[1], 12345678);
    EXPECT_EQ(acervo.AcervoArquivos[0], estacao.Pasta() / "mre" / "0000123.mre");
    EXPECT_EQ(acervo.AcervoArquivos[1], estacao.Pasta() / "mre" / "12345678.mre");
    EXPECT_DOUBLE_EQ(acervo.AcervoVibe[0], 6.5);
    for (const auto& [slot, campo, texto] : tags)
      EXPECT_EQ(acervo.AcervoTags(slot, campo), texto) << slot << "/" << campo;
  }
  estacao.GravarTexto("lxdb.rdb", "");
  Carregar();
  EXPECT_EQ(acervo.TotalMusicas, 0);
}

// Past 4001 songs, a code that is no number or empty, a character past 65535 or no file at all:
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
      {EstacaoTeste::Linhas({"", "ok"}), std::nullopt},
      {EstacaoTeste::Linhas({"5"}) + "0000659999900066\n", std::nullopt}};
  for (size_t i = 0; i < std::size(casos); ++i) {
    estacao.GravarTexto("lxdb.rdb", casos[i].first);
    const std::optional<CodigoErro> erro = ErroDe([&] { Carregar(); });
    EXPECT_TRUE(erro && (!casos[i].second || erro == casos[i].second)) << i;
    EXPECT_EQ(acervo.TotalMusicas, kTotalSlots) << i;
  }
  fs::remove(estacao.Caminho("lxdb.rdb"));
  EXPECT_EQ(ErroDe([&] { Carregar(); }), CodigoErro::ArquivoNaoEncontrado);
  EXPECT_EQ(acervo.TotalMusicas, kTotalSlots);
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
      // As kept in memory, and as written to a file and read back.
      const InsumosGravacao insumos{{1, 2, 3, 4, 5}, {6, 7, 8, 9, 10}};
      for (bool doArquivo : {false, true}) {
        auto regravada = std::make_unique<Acervo>(antes);
        const std::string bytes = SerializarGravacao(gravacao, insumos, "id");
        RegravarColecao(*regravada, doArquivo ? LerGravacao(bytes, insumos, "id").value() : gravacao);
        SCOPED_TRACE(std::to_string(ultimaSemMre) + "/" + std::to_string(cortadas) + "/" + std::to_string(doArquivo));
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
}

TEST(NomeArquivoMusica, SeteDigitosNoMinimoComSinal) {
  for (int32_t c : {0, 1, 42, 1234567, 12345678, -5, -1234567, INT32_MAX, INT32_MIN})
    EXPECT_EQ(NomeArquivoMusica(c), FormatarZeros(c, 7) + ".mre") << c;
}

// The table against plain strings under many rewrites: longer, shorter, empty, copied from
// another text of the same table, with enough churn that the room of replaced texts is taken
// back several times.
TEST(TagsAcervo, ReescritasGuardamCadaTexto) {
  auto tags = std::make_unique<TagsAcervo>();
  std::vector<Texto> esperado(static_cast<size_t>(kTotalSlots * kCampos));
  auto Esperado = [&](long s, long k) -> Texto& { return esperado[static_cast<size_t>(s * kCampos + k)]; };
  std::mt19937 g(7);
  for (int i = 0; i < 400000; ++i) {
    const uint64_t versao = tags->Versao();
    const long s = static_cast<long>(g() % kTotalSlots), k = static_cast<long>(g() % kCampos);
    if (i % 50000 == 0) {
      // A block of the first cells in one write, as a recorded load writes them.
      std::u16string textos;
      std::vector<uint32_t> tamanhos;
      for (size_t c = 0, n = g() % esperado.size(); c < n; ++c) {
        esperado[c] = Texto(g() % 9, static_cast<char16_t>(u'A' + c % 26));
        textos += esperado[c];
        tamanhos.push_back(static_cast<uint32_t>(esperado[c].size()));
      }
      tags->DefinirEmOrdem(std::move(textos), tamanhos);
    } else if (g() % 4 == 0) {
      const long s2 = static_cast<long>(g() % kTotalSlots), k2 = static_cast<long>(g() % kCampos);
      Esperado(s, k) = Esperado(s2, k2);
      tags->Definir(s, k, (*tags)(s2, k2));
    } else {
      Esperado(s, k) = Texto(g() % 60, static_cast<char16_t>(u'a' + i % 26));
      tags->Definir(s, k, Esperado(s, k));
    }
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
