// The line decoder of the collection and rules files: arbitrary lines, the encoder's inverse,
// and the file reader's two paths (pure ASCII straight from the bytes, anything else through
// the text decoding) giving the same lines.
#include <vector>

#include "base/texto.h"
#include "fuzz_apoio.h"
#include "stores/codec.h"

using namespace lumavox;
namespace fs = std::filesystem;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* dados, size_t tamanho) {
  const std::string_view bytes(reinterpret_cast<const char*>(dados), tamanho);

  // The bytes as one line, each byte one character.
  const Texto linha(bytes.begin(), bytes.end());
  Texto decodificada;
  if (!fuzz::ErroDe([&] { decodificada = DecodificarLinha(linha); })) {
    // A lone surrogate comes back from UTF-8 as U+FFFD; a well-formed text as it was.
    if (DeUtf8(ParaUtf8(decodificada)) != decodificada)
      fuzz::Falha("linha decodificada com surrogate solto");
    if (DecodificarLinha(CodificarLinha(decodificada)) != decodificada)
      fuzz::Falha("codificar e decodificar não devolve o texto");
  }

  // The bytes as a file: the reader hands over the same lines as decoding each text line.
  static const fs::path arquivo = fuzz::PastaDeTrabalho() / "linhas.rdb";
  fuzz::Gravar(arquivo, bytes);
  std::vector<Texto> lidas, esperadas;
  const auto erroLido = fuzz::ErroDe(
      [&] { ParaCadaLinhaCodificada(ArquivosReais(), arquivo, [&](Texto&& t) { lidas.push_back(std::move(t)); }); });
  const auto erroEsperado = fuzz::ErroDe([&] {
    for (const Texto& t : DividirLinhas(DecodificarBytes(bytes))) esperadas.push_back(DecodificarLinha(t));
  });
  if (lidas != esperadas || erroLido != erroEsperado)
    fuzz::Falha("leitura do arquivo difere da decodificação linha a linha");
  return 0;
}
