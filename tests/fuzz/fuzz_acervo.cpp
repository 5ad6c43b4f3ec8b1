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

namespace {

const fs::path& Estacao() {
  static const fs::path pasta = [] {
    const fs::path p = fuzz::PastaDeTrabalho() / "estacao";
    fs::create_directories(p / "mre");
    for (int32_t c = -5; c <= 120; ++c) fuzz::Gravar(p / "mre" / NomeArquivoMusica(c), "m");
    return p;
  }();
  return pasta;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* dados, size_t tamanho) {
  // One collection for the whole run, as the engine reloads over what the last load left.
  static const std::unique_ptr<Acervo> acervo = [] {
    auto a = std::make_unique<Acervo>();
    a->CaminhoApp = Estacao();
    return a;
  }();
  fuzz::Gravar(Estacao() / "lxdb.rdb", fuzz::ArquivoCodificado(dados, tamanho));

  const int16_t antes = acervo->TotalMusicas;
  long linhas = 0;
  const bool carregou = fuzz::SoErroExecucao(
      [&] { CarregarColecao(ArquivosReais(), *acervo, Estacao(), [&](long) { ++linhas; }); });
  const Acervo& a = *acervo;
  if (!carregou) {
    if (a.TotalMusicas != antes) fuzz::Falha("load que parou mudou TotalMusicas");
    return 0;
  }
  if (a.TotalMusicas < 0 || a.TotalMusicas > kTotalSlots || a.TotalMusicas > linhas / 33)
    fuzz::Falha("TotalMusicas fora do que o arquivo contém");
  for (long s = 0; s < a.TotalMusicas; ++s) {
    if (a.AcervoArquivos[s] != Estacao() / "mre" / NomeArquivoMusica(a.AcervoCodigos[s]) ||
        !ArquivoExiste(a.AcervoArquivos[s]))
      fuzz::Falha("música carregada sem o seu arquivo de mídia");
    if (a.AcervoTags(s, kCampoVibe) != FormatarNumero(a.AcervoVibe[s]) ||
        a.AcervoVibe[s] != CalcularVibe(a, s))
      fuzz::Falha("vibe inconsistente com as tags");
  }
  return 0;
}
