#include "stores/playlists.h"

#include <gtest/gtest.h>

#include "apoio/estacao.h"

namespace lumavox {
namespace {

using teste::EstacaoTeste;

class LerPlaylists : public ::testing::Test {
 protected:
  void Abrir(const std::string& conteudo) {
    estacao.GravarTexto("pl.rdb", conteudo);
    AbrirPlaylists(ArquivosReais(), tabela, estacao.Pasta());
  }
  int32_t As(int hora, int minuto, int segundo = 0) const {
    return PlaylistDoHorario(tabela, MontarDataHora(2026, 11, 22, hora, minuto, segundo));
  }

  EstacaoTeste estacao;
  TabelaPlaylists tabela;
};

// Invalid lines are skipped and do not count towards the 31st valid line, which ends the reading.
TEST_F(LerPlaylists, LinhasInvalidasSaoPuladasENomeEmWindows1252) {
  std::string mais;
  for (int i = 1; i <= 29; ++i) mais += "08:00:00 09:00:00 p" + std::to_string(i) + "\n";
  Abrir("08:00:00 10:00:00 \n"              // exactly 18 characters: no name
        "25:00:00 10:00:00 hora\n"
        "08:00:00 xx:00:00 fim\n"
        "08:00\n"
        "\n"
        "08:00:00 10:00:00 Manha\\Rock\r\n"
        "10:00:01-11:30:00|Tarde\r\n"
        "08:00:00 10:00:00 M\xfasica J\xe1\r\n" + mais);
  ASSERT_EQ(tabela.TotalPlaylists, 31);
  EXPECT_EQ(tabela.Playlists[1], estacao.Pasta() / "Manha" / "Rock");
  EXPECT_EQ(tabela.Playlists[2], estacao.Pasta() / "Tarde");
  EXPECT_EQ(tabela.PlaylistFim[2], MontarDataHora(1899, 12, 30, 11, 30, 0));
  EXPECT_EQ(tabela.Playlists[3], estacao.Pasta() / "Música Já");
  EXPECT_EQ(tabela.Playlists[30], estacao.Pasta() / "p27");
}

TEST_F(LerPlaylists, HorarioEscolheAUltimaFaixaQueContemOInstante) {
  Abrir("08:00:00 12:00:00 manha\n"
        "22:00:00 02:00:00 madrugada\n"   // crosses midnight: never matches
        "10:00:00 11:00:00 destaque\n");
  const int casos[][4] = {{7, 59, 59, 0}, {8, 0, 0, 1}, {10, 0, 0, 3}, {11, 0, 0, 3}, {11, 0, 1, 1}, {12, 0, 1, 0}, {23, 0, 0, 0}};
  for (const auto& [hora, minuto, segundo, playlist] : casos) EXPECT_EQ(As(hora, minuto, segundo), playlist) << hora << ":" << minuto;
}

}  // namespace
}  // namespace lumavox
