// The playlist table over an arbitrary pl.rdb: never raises, stays within its 31 entries, keeps
// every folder inside the application folder, and the playlist in force is one of them.
#include <memory>

#include "fuzz_apoio.h"
#include "stores/playlists.h"

using namespace lumavox;
namespace fs = std::filesystem;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* dados, size_t tamanho) {
  static const fs::path pasta = fuzz::PastaDeTrabalho("app");
  static const std::unique_ptr<TabelaPlaylists> tabela = std::make_unique<TabelaPlaylists>();
  fuzz::Gravar(pasta / "pl.rdb", std::string_view(reinterpret_cast<const char*>(dados), tamanho));

  if (fuzz::ErroDe([&] { AbrirPlaylists(ArquivosReais(), *tabela, pasta); })) fuzz::Falha("AbrirPlaylists levantou erro");
  const TabelaPlaylists& t = *tabela;
  if (t.TotalPlaylists < 1 || t.TotalPlaylists > kUltimaPlaylist + 1) fuzz::Falha("TotalPlaylists fora de 1..31");
  if (t.Playlists[0] != pasta) fuzz::Falha("playlist padrão não é a pasta do programa");
  const std::string prefixo = pasta.native() + fs::path::preferred_separator;
  for (long i = 1; i < t.TotalPlaylists; ++i)
    if (!t.Playlists[i].native().starts_with(prefixo) || t.Playlists[i].native().size() == prefixo.size())
      fuzz::Falha("pasta de playlist fora da pasta do programa");
  for (int64_t s = 0; s < kSegundosPorDia; s += 1799) {
    const int32_t i = PlaylistDoHorario(t, SomarSegundos(MontarDataHora(2026, 11, 22), s));
    if (i < 0 || i >= t.TotalPlaylists) fuzz::Falha("playlist escolhida fora da tabela");
  }
  return 0;
}
