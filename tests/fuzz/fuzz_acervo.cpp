// The collection loader over an arbitrary lxdb.rdb in a station folder whose mre/ holds media
// for the codes -5..120: whatever the file, the load either fills a consistent collection or
// stops with the engine's own error.
#include <memory>

#include "base/arquivos.h"
#include "base/numeros.h"
#include "fuzz_apoio.h"
#include "stores/acervo.h"

using namespace lumavox;
namespace fs = std::filesystem;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* dados, size_t tamanho) {
  static const fs::path estacao = [] {
    const fs::path mre = fuzz::PastaDeTrabalho("estacao/mre");
    for (int32_t c = -5; c <= 120; ++c) fuzz::Gravar(mre / NomeArquivoMusica(c), "m");
    return mre.parent_path();
  }();
  // One collection for the whole run, as the engine reloads over what the last load left.
  static const std::unique_ptr<Acervo> acervo = std::make_unique<Acervo>();
  acervo->CaminhoApp = estacao;
  fuzz::Gravar(estacao / "lxdb.rdb", fuzz::ArquivoCodificado(dados, tamanho));

  const int16_t antes = acervo->TotalMusicas;
  long linhas = 0;
  const bool carregou = !fuzz::ErroDe(
      [&] { CarregarColecao(ArquivosReais(), *acervo, estacao, [&](long) { ++linhas; }); });
  const Acervo& a = *acervo;
  if (!carregou && a.TotalMusicas != antes) fuzz::Falha("load que parou mudou TotalMusicas");
  if (!carregou) return 0;
  if (a.TotalMusicas < 0 || a.TotalMusicas > kTotalSlots || a.TotalMusicas > linhas / 33)
    fuzz::Falha("TotalMusicas fora do que o arquivo contém");
  for (long s = 0; s < a.TotalMusicas; ++s) {
    if (a.AcervoArquivos[s] != estacao / "mre" / NomeArquivoMusica(a.AcervoCodigos[s]) ||
        !ArquivoExiste(a.AcervoArquivos[s]))
      fuzz::Falha("música carregada sem o seu arquivo de mídia");
    if (a.AcervoTags(s, kCampoVibe) != FormatarNumero(a.AcervoVibe[s]) ||
        a.AcervoVibe[s] != CalcularVibe(a, s))
      fuzz::Falha("vibe inconsistente com as tags");
  }
  return 0;
}
