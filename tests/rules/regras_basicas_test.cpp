// Rules "01", "12" and "34", called directly on a hand-built state.
#include <gtest/gtest.h>

#include "apoio/estado_teste.h"
#include "base/erro.h"
#include "rules/regras.h"

namespace lumavox {
namespace {

using teste::EstadoTeste;
using Codigos = std::vector<int32_t>;

constexpr int kArtista = 0, kGenero = 5;

TEST(Regra01, SoAPrimeiraMusicaDaEstacaoPrecisaDoTag) {
  EstadoTeste t;
  t.Musica(1, {{kGenero, "Rock;"}}).Musica(2, {{kGenero, "Pop;"}}).Musica(3, {{kGenero, "Pop;Rock"}}).TodasCandidatas();
  t.RegraAtual("01", {"Genero:Rock"});
  Regra01(t.E());
  EXPECT_EQ(t.Mantidas(), (Codigos{1, 3}));

  t.TodasCandidatas().RegraAtual("01", {"Genero:Geral*"});
  Regra01(t.E());
  EXPECT_EQ(t.Mantidas().size(), 3u);
  t.RegraAtual("01", {"Cor:Azul"});
  Regra01(t.E());
  EXPECT_TRUE(t.Mantidas().empty());

  t.TodasCandidatas().RegraAtual("01", {"Genero:Rock", "21/11/2026"});  // another day
  Regra01(t.E());
  EXPECT_EQ(t.Mantidas().size(), 3u);
  t.Tocadas({2}).RegraAtual("01", {"Genero:Rock"});
  Regra01(t.E());
  EXPECT_EQ(t.Mantidas().size(), 3u);
}

class Regra12Teste : public ::testing::Test {
 protected:
  void SetUp() override {
    t.Musica(1, {{kArtista, "Ana"}}).Musica(2, {{kArtista, "Bia"}}).Musica(3, {{kArtista, "Caio"}})
        .Musica(4, {{kArtista, "Ana feat Caio"}});
  }
  Codigos Aplicar(std::vector<std::string> vars) {
    t.TodasCandidatas().RegraAtual("12", std::move(vars));
    Regra12(t.E());
    return t.Mantidas();
  }
  EstadoTeste t;
};

TEST_F(Regra12Teste, ContaOUltimoEOsQueDividemOValorSemSeremVizinhos) {
  // Position 0 holds a filler play: it never counts.
  t.Tocadas({1, 3, 1, 2, 1});  // ..., Caio, Ana, Bia, Ana
  EXPECT_EQ(Aplicar({"3", "Artista:Geral*"}).size(), 4u);  // C = 2 < 3
  t.Tocadas({1});                                          // ..., Ana, Bia, Ana, Ana
  EXPECT_EQ(Aplicar({"3", "Artista:Geral*"}), (Codigos{2, 3}));
  EXPECT_EQ(Aplicar({"0", "Artista:Geral*"}), (Codigos{2, 3}));  // C = 1 is not below 0
  EXPECT_EQ(Aplicar({"1", "Artista:Ana"}), (Codigos{2, 3}));
  EXPECT_EQ(Aplicar({"1", "Artista:Bia"}).size(), 4u);    // the last song lacks the tag
  EXPECT_EQ(Aplicar({"99", "Artista:Geral*"}).size(), 4u); // history too short
}

TEST_F(Regra12Teste, PosicaoZeroNuncaContaECampoDesconhecidoComGeralLevanta) {
  t.Tocadas({1, 1});
  EXPECT_EQ(Aplicar({"2", "Artista:Geral*"}).size(), 4u);  // C = 1: position 0 is skipped
  t.TodasCandidatas().RegraAtual("12", {"1", "Cor:Geral*"});
  EXPECT_THROW(Regra12(t.E()), ErroExecucao);
  EXPECT_EQ(Aplicar({"1", "Cor:Azul"}).size(), 4u);
}

TEST(Regra34, RejeitaOTagEnquantoEstiverEntreAsUltimasX1) {
  EstadoTeste t;
  t.Musica(1, {{kGenero, "Rock;"}}).Musica(2, {{kGenero, "Pop;"}}).Musica(3, {{kGenero, "Jazz;Rock"}});
  auto Aplicar = [&](std::vector<std::string> vars) {
    t.TodasCandidatas().RegraAtual("34", std::move(vars));
    Regra34(t.E());
    return t.Mantidas();
  };
  t.Tocadas({1, 2, 2});
  EXPECT_EQ(Aplicar({"3", "Genero:Rock"}), (Codigos{2}));
  EXPECT_EQ(Aplicar({"2", "Genero:Rock"}).size(), 3u);
  EXPECT_EQ(Aplicar({"1", "Genero:Pop"}), (Codigos{1, 3}));
  EXPECT_EQ(Aplicar({"", "Genero:Pop"}).size(), 3u);
  EXPECT_EQ(Aplicar({"0", "Genero:Pop"}).size(), 3u);
  EXPECT_EQ(Aplicar({"3", "Genero:Geral*"}).size(), 3u);
  t.Tocadas({2});
  EXPECT_EQ(Aplicar({"3", "Genero:Rock"}).size(), 3u);
  // Reaching below the history's first position is an error of the rule.
  t.TodasCandidatas().RegraAtual("34", {"4010", "Genero:Rock"});
  EXPECT_THROW(Regra34(t.E()), ErroExecucao);
}

}  // namespace
}  // namespace lumavox
