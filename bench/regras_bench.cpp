// One application of a rule (dispatcher included) over the full station, with the history full:
// 500 database plays at -500..-1 and 4000 engine plays at 0..3999.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "base/ambiente.h"
#include "base/texto.h"
#include "engine/despacho.h"
#include "engine/motor.h"
#include "estacao_cheia.h"

namespace {

using namespace lumavox;

bench::MotorCheio& Estacao() {
  static bench::MotorCheio cheia(3);
  return cheia;
}

void AplicarUma(benchmark::State& state, const char* id, std::vector<Texto> vars,
                bool historicoVazio = false) {
  Estado& e = Estacao().E();
  const int16_t tocadas = e.historico().TotalTocadas;
  if (historicoVazio) e.SubstituirHistorico([](Historico& h) { h.TotalTocadas = 0; });
  bench::AplicarUmaRegra(state, e, id, vars);
  e.SubstituirHistorico([&](Historico& h) { h.TotalTocadas = tocadas; });
}

void BM_Regra01(benchmark::State& s) { AplicarUma(s, "01", {u"Genero:Rock;Samba"}, true); }
void BM_Regra12Geral(benchmark::State& s) { AplicarUma(s, "12", {u"3", u"Artista:Geral*"}); }
void BM_Regra12Genero(benchmark::State& s) { AplicarUma(s, "12", {u"2", u"Genero:Pop;Rock"}); }
void BM_Regra34(benchmark::State& s) { AplicarUma(s, "34", {u"20", u"Genero:Rock"}); }
BENCHMARK(BM_Regra01)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra12Geral)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra12Genero)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra34)->Unit(benchmark::kMicrosecond);

}  // namespace
