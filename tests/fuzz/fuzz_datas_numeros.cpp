// Number and date conversions on arbitrary texts and values: what converts converts back,
// what does not raises only the engine's own errors.
#include <cmath>
#include <cstring>

#include "base/datas.h"
#include "base/numeros.h"
#include "base/texto.h"
#include "fuzz_apoio.h"
#include "stores/historico_fonte.h"

using namespace lumavox;

namespace {

// Inside this band the text has no exponent, so it must read back to 15 digits.
void ConferirFormatacao(double v) {
  const double a = std::fabs(v);
  if (!std::isfinite(v) || a < 1e-4 || a >= 1e15) return;
  const std::optional<double> lido = ConverterNumero(FormatarNumero(v));
  if (!lido || std::fabs(*lido - v) > a * 1e-14) fuzz::Falha("FormatarNumero não volta ao número");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* dados, size_t tamanho) {
  const std::string_view bytes(reinterpret_cast<const char*>(dados), tamanho);
  const Texto texto = DecodificarBytes(bytes);
  const std::optional<double> numero = ConverterNumero(texto);
  if (numero && std::isnan(*numero)) fuzz::Falha("número NaN");
  const auto inteiro = fuzz::ErroDe([&] {
    if (std::fabs(TextoParaInteiro32(texto) - numero.value_or(0)) > 0.5)
      fuzz::Falha("TextoParaInteiro32 longe do valor");
  });
  if (!numero && !inteiro) fuzz::Falha("texto não numérico virou inteiro");
  if (numero) ConferirFormatacao(*numero);
  const std::optional<DataHora> d = ConverterDataHora(texto);
  if (d && ConverterDataHora(DeUtf8(FormatarIso(*d))) != d)
    fuzz::Falha("data formatada não volta à mesma data");

  if (tamanho < 8) return 0;
  double v;
  std::memcpy(&v, dados, sizeof v);
  ConferirFormatacao(v);
  fuzz::ErroDe([&] { (void)ArredondarPar(v); (void)ParaInteiro32(v); });
  // Dates read from a Jet database arrive as OLE day numbers of any value.
  fuzz::ErroDe([&] {
    const int ano = Decompor(DataHoraDeOle(v)).ano;
    if (ano < 100 || ano > 9999) fuzz::Falha("data OLE aceita fora dos anos 100..9999");
  });
  if (std::isnan(NumeroDoValor(ValorBanco(texto)))) fuzz::Falha("NumeroDoValor NaN");
  return 0;
}
