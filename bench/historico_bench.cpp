// One application (dispatcher included) of each rule of the history and flow over the full
// station: 4001 songs and a full history of 500 database plays and 4000 engine plays, three
// minutes apart. Chance rules are given 100% so they always do their work.
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

struct Cheia : bench::MotorCheio {
  Cheia() : MotorCheio(7) { E().selecao.CliqueAtual = 1; }
};

Cheia& Estacao() {
  static Cheia cheia;
  return cheia;
}

// `novaTocada` rewrites the history (with the same plays) before each application, as a new
// selection would change it, so the index over the plays is rebuilt inside the timed part.
void AplicarUma(benchmark::State& state, const char* id, std::vector<Texto> vars,
                bool novaTocada = false) {
  Estado& e = Estacao().E();
  bench::AplicarUmaRegra(state, e, id, vars, [&] {
    if (novaTocada) e.SubstituirHistorico([](Historico&) {});
  });
}

void BM_Regra02(benchmark::State& s) { AplicarUma(s, "02", {u"Não", u"Artista:Geral*", u"10"}); }
void BM_Regra02Sim72Horas(benchmark::State& s) { AplicarUma(s, "02", {u"Sim", u"Artista:Geral*", u"72"}); }
void BM_Regra03(benchmark::State& s) { AplicarUma(s, "03", {u"1", u"Sim", u"Genero:Geral*", u"Não"}); }
void BM_Regra04(benchmark::State& s) { AplicarUma(s, "04", {u"10"}); }
void BM_Regra05(benchmark::State& s) { AplicarUma(s, "05", {}); }
void BM_Regra05NovaTocada(benchmark::State& s) { AplicarUma(s, "05", {}, true); }
void BM_Regra06(benchmark::State& s) { AplicarUma(s, "06", {u"3", u"2"}); }
void BM_Regra06NovaTocada(benchmark::State& s) { AplicarUma(s, "06", {u"3", u"2"}, true); }
void BM_Regra07(benchmark::State& s) { AplicarUma(s, "07", {u"Genero:Geral*", u"100", u"100", u"100", u"100"}); }
void BM_Regra13(benchmark::State& s) { AplicarUma(s, "13", {u"3"}); }
void BM_Regra13NovaTocada(benchmark::State& s) { AplicarUma(s, "13", {u"3"}, true); }
void BM_Regra26(benchmark::State& s) { AplicarUma(s, "26", {u"1", u"2"}); }
BENCHMARK(BM_Regra02)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra02Sim72Horas)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra03)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra04)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra05)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra05NovaTocada)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra06)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra06NovaTocada)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra07)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra13)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra13NovaTocada)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra26)->Unit(benchmark::kMicrosecond);

}  // namespace
