// One application (dispatcher included) of each tag, chance, mark and vibe rule over the full
// station: 4001 songs, a full history, six full schedule tables and marks on every third song.
// Chance rules are given 100% so they always do their work.
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
  Texto generoDaUltima;  // a filter the last played song matches

  Cheia() : MotorCheio(5) {
    Estado& e = E();
    const DataHora agora = ambiente.Agora();
    e.SubstituirHistorico([&](Historico& h) {
      for (long s = 0; s < kTotalSlots; s += 3) {
        h.HistoricoTipo4[s] = true;
        for (long k = 0; k < kDatasTipo5; ++k) {
          h.HistoricoTipo5(s, k) = true;
          h.HistoricoTipo5Datas(s, k) = SomarSegundos(agora, -86400 * (k + 1) - 3600 * (s % 24));
        }
      }
    });
    TabelasAgenda& a = e.agenda;
    const Texto filtros[] = {u"Genero:Rock;Pop;MPB;Samba;Forró;Sertanejo",
                             u"Nacionalidade:Nacional;Internacional",
                             u"Ativo:Sim;Não",
                             u"Lingua:Português;Inglês;Espanhol",
                             u"Publico:Jovem;Adulto;Geral",
                             u"Voz:Masculina;Feminina;Dueto;Coral"};
    for (long t = 0; t < kLugaresAgenda; ++t) {
      a.TabelasNumero[t] = static_cast<int32_t>(t + 1);
      for (long slot = 0; slot < kSlotsAgenda; ++slot)
        for (long k = 0; k < kFiltrosAgenda; ++k) a.TabelasGrade(t, slot, k) = filtros[k];
    }
    const int16_t ultima = static_cast<int16_t>((3999 + 500) * 7 % 4001);
    generoDaUltima = u"Genero:" + Texto(e.acervo().AcervoTags(ultima, 5));
  }
};

Cheia& Estacao() {
  static Cheia cheia;
  return cheia;
}

void AplicarUma(benchmark::State& state, const char* id, std::vector<Texto> vars) {
  bench::AplicarUmaRegra(state, Estacao().E(), id, vars);
}

const Texto& Ultima() { return Estacao().generoDaUltima; }

void BM_Regra08(benchmark::State& s) {
  AplicarUma(
      s, "08",
      {u"10", u"3", u"Genero:Rock;Pop;MPB;Samba", u"Lingua:Português;Inglês", u"08:00", u"12:00"});
}
void BM_Regra22(benchmark::State& s) {
  AplicarUma(s, "22", {Ultima(), u"100", u"Genero:Rock;Pop;Samba"});
}
void BM_Regra23(benchmark::State& s) {
  AplicarUma(
      s, "23",
      {Ultima(), u"", u"", u"Sim", u"Genero:Rock;Pop;MPB", u"Lingua:Português", u"Ativo:Sim"});
}
void BM_Regra24(benchmark::State& s) { AplicarUma(s, "24", {u"100"}); }
void BM_Regra25Tempo(benchmark::State& s) { AplicarUma(s, "25", {u"6", u"0"}); }
void BM_Regra25Posicao(benchmark::State& s) { AplicarUma(s, "25", {u"3", u"1"}); }
void BM_Regra27(benchmark::State& s) { AplicarUma(s, "27", {u"100"}); }
void BM_Regra28(benchmark::State& s) { AplicarUma(s, "28", {u"100", u"NÃO", u"Genero:Rock;Pop"}); }
void BM_Regra29(benchmark::State& s) { AplicarUma(s, "29", {u"100"}); }
void BM_Regra30(benchmark::State& s) { AplicarUma(s, "30", {u"100"}); }
void BM_Regra31(benchmark::State& s) { AplicarUma(s, "31", {u"3"}); }
void BM_Regra32(benchmark::State& s) { AplicarUma(s, "32", {u"3"}); }
void BM_Regra33(benchmark::State& s) { AplicarUma(s, "33", {u"2"}); }
BENCHMARK(BM_Regra08)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra22)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra23)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra24)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra25Tempo)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra25Posicao)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra27)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra28)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra29)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra30)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra31)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra32)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Regra33)->Unit(benchmark::kMicrosecond);

}  // namespace
