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

// Applies rule `id` on every song of `t` and returns the codes it keeps.
Codigos Aplicar(EstadoTeste& t, void (*regra)(Estado&), std::string id, std::vector<std::string> vars) {
  t.TodasCandidatas().RegraAtual(std::move(id), std::move(vars));
  regra(t.E());
  return t.Mantidas();
}

TEST(Regra01, SoAPrimeiraMusicaDaEstacaoPrecisaDoTag) {
  EstadoTeste t;
  t.Musica(1, {{kGenero, "Rock;"}}).Musica(2, {{kGenero, "Pop;"}}).Musica(3, {{kGenero, "Pop;Rock"}});
  EXPECT_EQ(Aplicar(t, Regra01, "01", {"Genero:Rock"}), (Codigos{1, 3}));
  EXPECT_EQ(Aplicar(t, Regra01, "01", {"Genero:Rock", "21/11/2026"}).size(), 3u);  // another day
  t.Tocadas({2});
  EXPECT_EQ(Aplicar(t, Regra01, "01", {"Genero:Rock"}).size(), 3u);
}

TEST(Regra12, ContaOUltimoEOsQueDividemOValorSemSeremVizinhos) {
  EstadoTeste t;
  t.Musica(1, {{kArtista, "Ana"}}).Musica(2, {{kArtista, "Bia"}}).Musica(3, {{kArtista, "Caio"}})
      .Musica(4, {{kArtista, "Ana feat Caio"}});
  auto R12 = [&](std::vector<std::string> vars) { return Aplicar(t, Regra12, "12", std::move(vars)); };
  t.Tocadas({1, 1});
  EXPECT_EQ(R12({"2", "Artista:Geral*"}).size(), 4u);  // C = 1: position 0 is a filler, never counted
  t.Tocadas({3, 1, 2, 1});                             // ..., Caio, Ana, Bia, Ana
  EXPECT_EQ(R12({"3", "Artista:Geral*"}).size(), 4u);  // C = 2 < 3
  t.Tocadas({1});                                      // ..., Ana, Bia, Ana, Ana
  EXPECT_EQ(R12({"3", "Artista:Geral*"}), (Codigos{2, 3}));
  EXPECT_EQ(R12({"0", "Artista:Geral*"}), (Codigos{2, 3}));  // C = 1 is not below 0
  EXPECT_EQ(R12({"1", "Artista:Ana"}), (Codigos{2, 3}));
  EXPECT_EQ(R12({"1", "Artista:Bia"}).size(), 4u);     // the last song lacks the tag
  EXPECT_EQ(R12({"99", "Artista:Geral*"}).size(), 4u);  // history too short
  EXPECT_THROW(R12({"1", "Cor:Geral*"}), ErroExecucao);
}

TEST(Regra34, RejeitaOTagEnquantoEstiverEntreAsUltimasX1) {
  EstadoTeste t;
  t.Musica(1, {{kGenero, "Rock;"}}).Musica(2, {{kGenero, "Pop;"}}).Musica(3, {{kGenero, "Jazz;Rock"}});
  auto R34 = [&](std::vector<std::string> vars) { return Aplicar(t, Regra34, "34", std::move(vars)); };
  t.Tocadas({1, 2, 2});
  EXPECT_EQ(R34({"3", "Genero:Rock"}), (Codigos{2}));
  EXPECT_EQ(R34({"2", "Genero:Rock"}).size(), 3u);
  EXPECT_EQ(R34({"1", "Genero:Pop"}), (Codigos{1, 3}));
  EXPECT_EQ(R34({"", "Genero:Pop"}).size(), 3u);
  EXPECT_EQ(R34({"0", "Genero:Pop"}).size(), 3u);
  EXPECT_EQ(R34({"3", "Genero:Geral*"}).size(), 3u);
  t.Tocadas({2});
  EXPECT_EQ(R34({"3", "Genero:Rock"}).size(), 3u);
  // Reaching below the history's first position is an error of the rule.
  EXPECT_THROW(R34({"4010", "Genero:Rock"}), ErroExecucao);
}

}  // namespace
}  // namespace lumavox
