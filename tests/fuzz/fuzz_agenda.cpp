// The schedule-table loader over an arbitrary lxtb file: a table stops at its first bad line
// with the engine's own error, and loading a folder's six tables never raises.
#include <memory>

#include "fuzz_apoio.h"
#include "stores/agenda.h"

using namespace lumavox;
namespace fs = std::filesystem;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* dados, size_t tamanho) {
  static const std::unique_ptr<TabelasAgenda> agenda = std::make_unique<TabelasAgenda>();
  static const fs::path pasta = fuzz::PastaDeTrabalho("dados");
  if (tamanho < 1) return 0;
  const long lugar = dados[0] % kLugaresAgenda;
  const fs::path arquivo = ArquivoTabelaAgenda(pasta, lugar);
  fuzz::Gravar(arquivo, fuzz::ArquivoCodificado(dados, tamanho));

  fuzz::ErroDe([&] { CarregarTabelaAgenda(ArquivosReais(), *agenda, lugar, arquivo); });
  agenda->Limpar();
  if (fuzz::ErroDe([&] { CarregarTabelasAgenda(ArquivosReais(), *agenda, pasta); }))
    fuzz::Falha("CarregarTabelasAgenda levantou erro");
  fs::remove(arquivo);
  return 0;
}
