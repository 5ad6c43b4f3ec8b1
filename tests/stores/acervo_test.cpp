#include "stores/acervo.h"

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <random>
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

TEST_F(CarregarAcervo, CodigosTagsEArquivosComFinsDeLinhaLfOuCrlf) {
  estacao.Musica(123, {{"Artista", "Ana"}, {3, "oculto"}, {"Publico", "Jovem"}})
      .Musica(12345678, {{"Title", "Título"}})
      .GravarAcervo();
  std::string crlf;  // and no line end after the last line
  for (char c : estacao.Ler("lxdb.rdb")) crlf += c == '\n' ? std::string("\r\n") : std::string(1, c);
  crlf.resize(crlf.size() - 2);
  for (const std::string& conteudo : {crlf, estacao.Ler("lxdb.rdb")}) {
    estacao.GravarTexto("lxdb.rdb", conteudo);
    Carregar();
    ASSERT_EQ(acervo.TotalMusicas, 2);
    EXPECT_EQ(acervo.AcervoCodigos[0], 123);
    EXPECT_EQ(acervo.AcervoTags(0, 0), u"Ana");
    EXPECT_EQ(acervo.AcervoTags(0, 3), u"oculto");
    EXPECT_EQ(acervo.AcervoTags(0, 31), u"Jovem");
    EXPECT_EQ(acervo.AcervoTags(1, 2), u"Título");
    EXPECT_EQ(acervo.AcervoArquivos[0], estacao.Pasta() / "mre" / "0000123.mre");
    EXPECT_EQ(acervo.AcervoArquivos[1], estacao.Pasta() / "mre" / "12345678.mre");
  }
  estacao.GravarTexto("lxdb.rdb", "");
  Carregar();
  EXPECT_EQ(acervo.TotalMusicas, 0);
}

TEST_F(CarregarAcervo, MusicaSemMreCedeOSlotERegistroIncompletoNaoConta) {
  estacao.Musica(1, {{"Artista", "A"}})
      .Musica(2, {{"Artista", "B"}}, false)
      .Musica(3, {{"Artista", "C"}})
      .Musica(4)
      .GravarAcervo();
  std::string linhas = estacao.Ler("lxdb.rdb");
  linhas.erase(linhas.rfind('\n', linhas.size() - 2) + 1);  // song 4 loses its last line
  estacao.GravarTexto("lxdb.rdb", linhas);
  Carregar();
  ASSERT_EQ(acervo.TotalMusicas, 2);
  EXPECT_EQ(acervo.AcervoCodigos[1], 3);
  EXPECT_EQ(acervo.AcervoTags(1, 0), u"C");
}

TEST_F(CarregarAcervo, VibeEMediaDeVelocidadeERitmo) {
  estacao.Musica(1, {{"Velocidade", "8"}, {"Ritmo", "Normal;"}})
      .Musica(2, {{"Velocidade", "Rápida;"}, {"Ritmo", "Rápida;"}})
      .Musica(3)
      .GravarAcervo();
  Carregar();
  EXPECT_DOUBLE_EQ(acervo.AcervoVibe[0], 6.5);
  EXPECT_EQ(acervo.AcervoTags(0, kCampoVibe), u"6,5");
  EXPECT_EQ(acervo.AcervoTags(1, kCampoVibe), u"9");
  EXPECT_EQ(acervo.AcervoTags(2, kCampoVibe), u"0");
}

TEST_F(CarregarAcervo, ArquivoDefeituosoLevantaEMantemTotal) {
  const std::string tag = EstacaoTeste::Codificada("ok") + "\n";
  const std::vector<std::pair<const char*, std::string>> casos{
      {"código não numérico", EstacaoTeste::Codificada("12a") + "\n" + tag},
      {"código vazio", "0\n" + tag},
      {"caractere 99999", EstacaoTeste::Codificada("5") + "\n0000659999900066\n"},
  };
  estacao.Musica(1).Musica(2).GravarAcervo();
  Carregar();
  for (const auto& [nome, conteudo] : casos) {
    SCOPED_TRACE(nome);
    estacao.GravarTexto("lxdb.rdb", conteudo);
    EXPECT_TRUE(ErroDe([&] { Carregar(); }));
    EXPECT_EQ(acervo.TotalMusicas, 2);
  }
  std::filesystem::remove(estacao.Caminho("lxdb.rdb"));
  EXPECT_EQ(ErroDe([&] { Carregar(); }), CodigoErro::ArquivoNaoEncontrado);
  EXPECT_EQ(acervo.TotalMusicas, 2);
}

TEST_F(CarregarAcervo, CabemQuatroMilEUmaMusicas) {
  // A few codes repeated: the loader does not mind, and few media files keep the test fast.
  for (int32_t i = 0; i < kTotalSlots; ++i) estacao.Musica(1 + i % 4);
  estacao.GravarAcervo();
  Carregar();
  ASSERT_EQ(acervo.TotalMusicas, kTotalSlots);

  estacao.Musica(5).GravarAcervo("extra");
  estacao.GravarTexto("lxdb.rdb", estacao.Ler("lxdb.rdb") + estacao.Ler("extra/lxdb.rdb"));
  EXPECT_EQ(ErroDe([&] { Carregar(); }), CodigoErro::ForaDoIntervalo);
  EXPECT_EQ(acervo.TotalMusicas, kTotalSlots);
}

// Writing a recorded load again must leave a collection exactly as reading the same file again
// would, over what an earlier and longer collection left: a dropped last song, an unfinished
// last record, and both together.
TEST_F(CarregarAcervo, CargaGravadaRegravadaIgualALerDeNovo) {
  for (int c = 100; c < 110; ++c)
    estacao.Musica(c, {{"Artista", "Antes " + std::to_string(c)}, {"Ritmo", "Lenta;"}, {26, "a26"}, {27, "a27"}});
  estacao.GravarAcervo("antes");
  Acervo antes;
  antes.CaminhoApp = estacao.Pasta();
  CarregarColecao(ArquivosReais(), antes, estacao.Caminho("antes"), nullptr);
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
      for (bool doArquivo : {false, true}) {
      auto regravada = std::make_unique<Acervo>(antes);
      const InsumosGravacao insumos{{1, 2, 3, 4, 5}, {6, 7, 8, 9, 10}};
      if (doArquivo) {
        auto lidaDoArquivo = LerGravacao(SerializarGravacao(gravacao, insumos, "id"), insumos, "id");
        ASSERT_TRUE(lidaDoArquivo);
        RegravarColecao(*regravada, std::move(*lidaDoArquivo));
      } else {
        RegravarColecao(*regravada, gravacao);
      }
      const std::string caso = std::to_string(ultimaSemMre) + "/" + std::to_string(cortadas) + "/" + std::to_string(doArquivo);
      ASSERT_EQ(regravada->TotalMusicas, lida->TotalMusicas) << caso;
      for (long s = 0; s < 12; ++s) {
        EXPECT_EQ(regravada->AcervoCodigos[s], lida->AcervoCodigos[s]) << caso << " slot " << s;
        EXPECT_EQ(regravada->AcervoVibe[s], lida->AcervoVibe[s]) << caso << " slot " << s;
        EXPECT_EQ(regravada->AcervoArquivos[s], lida->AcervoArquivos[s]) << caso << " slot " << s;
        for (long k = 0; k < kCampos; ++k)
          EXPECT_EQ(regravada->AcervoTags(s, k), lida->AcervoTags(s, k)) << caso << " slot " << s << " campo " << k;
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
  std::mt19937 g(7);
  uint64_t versao = tags->Versao();
  for (int i = 0; i < 400000; ++i) {
    if (i % 50000 == 0) {
      // A block of the first cells in one write, as a recorded load writes them.
      const size_t n = g() % esperado.size();
      std::u16string textos;
      std::vector<uint32_t> tamanhos;
      for (size_t c = 0; c < n; ++c) {
        esperado[c] = Texto(g() % 9, static_cast<char16_t>(u'A' + c % 26));
        textos += esperado[c];
        tamanhos.push_back(static_cast<uint32_t>(esperado[c].size()));
      }
      tags->DefinirEmOrdem(std::move(textos), tamanhos);
      ASSERT_GT(tags->Versao(), versao);
      versao = tags->Versao();
      continue;
    }
    const long s = static_cast<long>(g() % kTotalSlots), k = static_cast<long>(g() % kCampos);
    Texto& alvo = esperado[static_cast<size_t>(s * kCampos + k)];
    if (g() % 4 == 0) {
      const long s2 = static_cast<long>(g() % kTotalSlots), k2 = static_cast<long>(g() % kCampos);
      alvo = esperado[static_cast<size_t>(s2 * kCampos + k2)];
      tags->Definir(s, k, (*tags)(s2, k2));
    } else {
      alvo = Texto(g() % 60, static_cast<char16_t>(u'a' + i % 26));
      tags->Definir(s, k, alvo);
    }
    ASSERT_GT(tags->Versao(), versao);
    versao = tags->Versao();
  }
  long diferentes = 0;
  for (long s = 0; s < kTotalSlots; ++s)
    for (long k = 0; k < kCampos; ++k) diferentes += (*tags)(s, k) != esperado[static_cast<size_t>(s * kCampos + k)];
  EXPECT_EQ(diferentes, 0);
  EXPECT_EQ(ErroDe([&] { tags->Definir(kTotalSlots, 0, u"x"); }), CodigoErro::ForaDoIntervalo);
}

}  // namespace
}  // namespace lumavox
