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

struct Cheia {
  AmbienteFixo ambiente{MontarDataHora(2026, 11, 22, 10, 0, 0), 3};
  std::unique_ptr<Motor> motor;

  Cheia() {
    motor = std::make_unique<Motor>(bench::EstacaoCheia(), ambiente);
    motor->AbrirPlaylists();
    motor->E().playlists.PlaylistAtual = 0;
    motor->DefinirAcervo(0, -1);
    Estado& e = motor->E();
    const DataHora agora = ambiente.Agora();
    bench::PreencherHistorico(e, agora, 4000);
    e.selecao.DataHoraReferencia = agora;
  }
};

Cheia& Estacao() {
  static Cheia cheia;
  return cheia;
}

void AplicarUma(benchmark::State& state, const char* id, std::vector<const char16_t*> vars,
                bool historicoVazio = false) {
  Estado& e = Estacao().motor->E();
  const int16_t tocadas = e.historico.TotalTocadas;
  if (historicoVazio) e.historico.TotalTocadas = 0;
  RegrasCatalogo& r = e.catalogo.CatalogoRegras(0, 0);
  r = RegrasCatalogo{};
  r.ID = DeUtf8(id);
  for (size_t k = 0; k < vars.size(); ++k) r.Var(static_cast<int>(k) + 1).Valor = vars[k];
  for (auto _ : state) {
    state.PauseTiming();
    for (long i = 0; i < e.acervo.TotalMusicas; ++i) e.selecao.MusicaCandidata[i] = true;
    e.log.Limpar();
    state.ResumeTiming();
    benchmark::DoNotOptimize(AplicarRegra(e, true, 0, 50));
  }
  e.historico.TotalTocadas = tocadas;
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
