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

void ConferirNumero(std::u16string_view t) {
  const std::optional<double> v = ConverterNumero(t);
  if (!v && fuzz::SoErroExecucao([&] { TextoParaInteiro32(t); })) fuzz::Falha("texto não numérico virou inteiro");
  if (!v) return;
  if (std::isnan(*v)) fuzz::Falha("número NaN");
  fuzz::SoErroExecucao([&] {
    if (std::fabs(ParaInteiro16(*v) - *v) > 0.5) fuzz::Falha("ParaInteiro16 longe do valor");
  });
  fuzz::SoErroExecucao([&] {
    if (std::fabs(TextoParaInteiro32(t) - *v) > 0.5) fuzz::Falha("TextoParaInteiro32 longe do valor");
  });
}

void ConferirFormatacao(double v) {
  const Texto t = FormatarNumero(v);
  const double a = std::fabs(v);
  // Inside this band the text has no exponent, so it must read back to 15 digits.
  if (!std::isfinite(v) || a < 1e-4 || a >= 1e15) return;
  const std::optional<double> lido = ConverterNumero(t);
  if (!lido || std::fabs(*lido - v) > a * 1e-14) fuzz::Falha("FormatarNumero não volta ao número");
}

void ConferirData(std::u16string_view t) {
  const std::optional<DataHora> d = ConverterDataHora(t);
  if (!d) return;
  const std::string iso = FormatarIso(*d);
  if (ConverterDataHora(DeUtf8(iso)) != d) fuzz::Falha("data formatada não volta à mesma data");
  const PartesData p = Decompor(*d);
  if (MontarDataHora(p.ano, p.mes, p.dia, p.hora, p.minuto, p.segundo) != *d)
    fuzz::Falha("Decompor e MontarDataHora não se desfazem");
  const int64_t s = SegundosDoDia(*d);
  if (s < 0 || s >= kSegundosPorDia) fuzz::Falha("SegundosDoDia fora do dia");
  if (DiferencaMinutos(*d, SomarSegundos(SoData(*d), s - s % 60 + 60)) != 1)
    fuzz::Falha("um minuto depois não dá um minuto");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* dados, size_t tamanho) {
  const std::string_view bytes(reinterpret_cast<const char*>(dados), tamanho);
  const Texto texto = DecodificarBytes(bytes);
  ConferirNumero(texto);
  ConferirData(texto);

  if (tamanho >= 8) {
    double v;
    std::memcpy(&v, dados, sizeof v);
    ConferirFormatacao(v);
    fuzz::SoErroExecucao([&] { (void)ArredondarPar(v); (void)ParaInteiro32(v); });
    // Dates read from a Jet database arrive as OLE day numbers of any value.
    fuzz::SoErroExecucao([&] {
      const DataHora d = DataHoraDeOle(v);
      const int ano = Decompor(d).ano;
      if (ano < 100 || ano > 9999) fuzz::Falha("data OLE aceita fora dos anos 100..9999");
      FormatarIso(d);
    });
    fuzz::SoErroExecucao([&] { DataDoValor(ValorBanco(v)); });
    fuzz::SoErroExecucao([&] { DataDoValor(ValorBanco(texto)); });
    if (std::isnan(NumeroDoValor(ValorBanco(texto)))) fuzz::Falha("NumeroDoValor NaN");

    int32_t codigo;
    std::memcpy(&codigo, dados, sizeof codigo);
    const std::string nome = FormatarZeros(codigo, 7);
    if (nome.size() < 7 || TextoParaInteiro32(DeUtf8(nome)) != codigo)
      fuzz::Falha("FormatarZeros não volta ao código");
  }
  if (const std::optional<double> v = ConverterNumero(texto)) ConferirFormatacao(*v);
  return 0;
}
