// AjustarValorVariavel on arbitrary variable texts and levels: it returns plain values
// unchanged, gives "a" in the middle band, stays between "a" and "b" on the level scale, and
// fails only with the engine's overflow error.
#include <algorithm>
#include <memory>

#include "base/numeros.h"
#include "base/texto.h"
#include "engine/despacho.h"
#include "fuzz_apoio.h"
#include "state/estado.h"

using namespace lumavox;
namespace fs = std::filesystem;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* dados, size_t tamanho) {
  static const std::unique_ptr<Estado> estado = std::make_unique<Estado>();
  if (tamanho < 2) return 0;
  Estado& e = *estado;
  const int16_t nivel = static_cast<int16_t>(dados[0] | (dados[1] << 8));
  e.selecao.NivelRitmo = nivel;
  const Texto valor = DecodificarBytes(std::string_view(reinterpret_cast<const char*>(dados) + 2, tamanho - 2));

  Texto ajustado;
  try {
    ajustado = AjustarValorVariavel(e, valor);
  } catch (const ErroExecucao& erro) {
    if (erro.Codigo() != CodigoErro::Estouro) fuzz::Falha("erro que não é estouro");
    return 0;
  } catch (...) {
    fuzz::Falha("exceção inesperada");
  }
  if (valor.empty() || valor.front() != u'*') {
    if (ajustado != valor) fuzz::Falha("valor sem * foi mudado");
    return 0;
  }
  const std::optional<double> numero = ConverterNumero(ajustado);
  if (!numero) fuzz::Falha("valor ajustado não é número");
  // The two ends, computed at the middle band and at level 0.
  e.selecao.NivelRitmo = 50;
  const double a = ValorNumerico(AjustarValorVariavel(e, valor));
  e.selecao.NivelRitmo = 0;
  double b = 0;
  if (!fuzz::SoErroExecucao([&] { b = ValorNumerico(AjustarValorVariavel(e, valor)); })) return 0;
  if (nivel >= 36 && nivel <= 64 && *numero != a) fuzz::Falha("faixa do meio não deu a");
  if (nivel >= 0 && nivel <= 100 && (*numero < std::min(a, b) || *numero > std::max(a, b)))
    fuzz::Falha("valor ajustado fora de a..b");
  return 0;
}
