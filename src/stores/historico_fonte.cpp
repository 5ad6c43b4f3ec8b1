#include "stores/historico_fonte.h"

#include <cmath>
#include <cstdint>
#include <exception>
#include <optional>

#include "base/erro.h"
#include "base/mapa_inteiros.h"
#include "base/numeros.h"

namespace lumavox {

namespace {

// OLE days of 01/01/0100 and of the last second of 31/12/9999.
constexpr double kPrimeiroDiaOle = -657434.0;
constexpr double kUltimoDiaOle = 2958466.0;

constexpr long kPosicoesDoBanco = 500;

// Runs one assignment with its error ignored, as the load does for every statement.
template <typename F>
void Ignorando(F&& f) {
  try {
    f();
  } catch (const std::exception&) {
  }
}

// First slot of each code over all 4001 slots, built once per load instead of scanning the
// slots for every row.
class PrimeiroSlot {
 public:
  explicit PrimeiroSlot(const Acervo& acervo) {
    for (long s = 0; s <= kUltimoSlot; ++s) slots_.Inserir(acervo.AcervoCodigos[s], static_cast<int16_t>(s));
  }

  // The codes are whole 32-bit numbers, so a value with a fraction or out of range equals none.
  std::optional<long> Buscar(double valor) const {
    if (!(valor >= INT32_MIN && valor <= INT32_MAX) || std::trunc(valor) != valor)
      return std::nullopt;
    const int16_t* s = slots_.Procurar(static_cast<int32_t>(valor));
    if (!s) return std::nullopt;
    return *s;
  }

 private:
  MapaInteiros slots_;
};

// Opens a query and walks its rows; false when it could not run or failed midway.
template <typename F>
bool Percorrer(FonteLogs& fonte, ConsultaLogs consulta, F&& porLinha) {
  try {
    auto cursor = fonte.Consultar(consulta);
    LinhaLogs linha;
    while (cursor->Proxima(linha)) porLinha(linha);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace

DataHora DataHoraDeOle(double dias) {
  if (!(dias >= kPrimeiroDiaOle && dias < kUltimoDiaOle))
    throw ErroExecucao(CodigoErro::Estouro, "OLE date out of range");
  const double inteiros = std::trunc(dias);
  const double fracao = std::fabs(dias - inteiros);
  const auto segundosDoDia = static_cast<int64_t>(ArredondarPar(fracao * kSegundosPorDia));
  return {static_cast<int64_t>(inteiros) * kSegundosPorDia + segundosDoDia};
}

double NumeroDoValor(const ValorBanco& valor) {
  if (const double* n = std::get_if<double>(&valor)) return *n;
  if (const Texto* t = std::get_if<Texto>(&valor)) return ValorNumerico(*t);
  return 0;
}

DataHora DataDoValor(const ValorBanco& valor) {
  if (const DataHora* d = std::get_if<DataHora>(&valor)) return *d;
  if (const double* n = std::get_if<double>(&valor)) return DataHoraDeOle(*n);
  if (const Texto* t = std::get_if<Texto>(&valor)) return TextoParaDataHora(*t);
  throw ErroExecucao(CodigoErro::TiposIncompativeis, "Null is not a date");
}

void CarregarMusicasTocadas(Historico& h, const Acervo& acervo, FonteLogs& fonte) {
  try {
    fonte.Abrir();
  } catch (const std::exception&) {
    return;
  }

  for (long p = -kPosicoesDoBanco; p <= -1; ++p) h.HistoricoCodigos[p] = 0;
  long p = -1;
  const bool tocadasLidas = Percorrer(fonte, ConsultaLogs::Tocadas, [&](const LinhaLogs& linha) {
    Ignorando([&] { h.HistoricoCodigos[p] = ParaInteiro32(NumeroDoValor(linha[1])); });
    Ignorando([&] { h.HistoricoDatas[p] = DataDoValor(linha[2]); });
    --p;
  });
  if (!tocadasLidas) return;

  const PrimeiroSlot slots(acervo);

  h.HistoricoTipo4.Preencher(false);
  const bool tipo4Lido = Percorrer(fonte, ConsultaLogs::Tipo4, [&](const LinhaLogs& linha) {
    if (auto s = slots.Buscar(NumeroDoValor(linha[1]))) h.HistoricoTipo4[*s] = true;
  });
  if (!tipo4Lido) return;

  h.HistoricoTipo5.Preencher(false);
  Percorrer(fonte, ConsultaLogs::Tipo5, [&](const LinhaLogs& linha) {
    auto s = slots.Buscar(NumeroDoValor(linha[1]));
    if (!s) return;
    for (long k = 0; k < kDatasTipo5; ++k) {
      if (h.HistoricoTipo5(*s, k)) continue;
      // The mark is set before the date is read: a row whose date does not convert still
      // takes its place, keeping the date an earlier load left there.
      h.HistoricoTipo5(*s, k) = true;
      Ignorando([&] { h.HistoricoTipo5Datas(*s, k) = DataDoValor(linha[2]); });
      break;
    }
  });
}

}  // namespace lumavox
