#include "stores/playlists.h"

#include "base/arquivos.h"
#include "base/erro.h"

namespace lumavox {

void AbrirPlaylists(SistemaArquivos& arquivos, TabelaPlaylists& tabela, const fs::path& caminhoApp,
                    LeituraPlaylists* leitura) {
  tabela.TotalPlaylists = 0;
  tabela.Playlists[0] = caminhoApp;
  tabela.TotalPlaylists = 1;

  std::vector<Texto> linhas;
  try {
    linhas = LerLinhas(arquivos, caminhoApp / "pl.rdb");
  } catch (const ErroExecucao&) {
    return;
  }
  using Motivo = LeituraPlaylists::Motivo;
  long numero = 0;
  auto Ignorar = [&](Motivo motivo) {
    if (leitura) leitura->ignoradas.emplace_back(numero, motivo);
  };
  try {
    for (const Texto& linha : linhas) {
      ++numero;
      if (linha.size() <= 18) {
        if (!linha.empty()) Ignorar(Motivo::Curta);
        continue;
      }
      std::u16string_view l(linha);
      auto inicio = ConverterDataHora(l.substr(0, 8));
      auto fim = ConverterDataHora(l.substr(9, 8));
      std::u16string_view nome = l.substr(18);
      if (!inicio || !fim || nome.empty()) {
        Ignorar(!inicio || !fim ? Motivo::HoraInvalida : Motivo::SemPasta);
        continue;
      }
      const long i = tabela.TotalPlaylists;
      if (leitura && i > kUltimaPlaylist) leitura->linhaDoExcesso = numero;
      // Joined as text: the name is always read relative to the application folder.
      tabela.Playlists[i] = fs::path(caminhoApp.native() + fs::path::preferred_separator +
                                     CaminhoDeTexto(nome).native());
      tabela.PlaylistInicio[i] = *inicio;
      tabela.PlaylistFim[i] = *fim;
      ++tabela.TotalPlaylists;
      if (leitura) leitura->linhasDasEntradas.push_back(numero);
    }
  } catch (const ErroExecucao&) {
    // A 31st playlist: the entries read so far stay.
  }
}

int32_t PlaylistDoHorario(const TabelaPlaylists& tabela, DataHora agora) {
  // The stored start and end are compared as they are: a start that also carries a date lies
  // far past any time of day and never matches.
  const DataHora hora = SoHora(agora);
  int32_t escolhida = 0;
  for (long i = 1; i < tabela.TotalPlaylists; ++i)
    if (hora >= tabela.PlaylistInicio[i] && hora <= tabela.PlaylistFim[i]) escolhida = static_cast<int32_t>(i);
  return escolhida;
}

}  // namespace lumavox
