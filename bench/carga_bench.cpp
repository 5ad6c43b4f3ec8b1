// Start-up load of a full station: 4001 songs (132,033 encoded lines) and three rules files of
// 256 rules each.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "base/ambiente.h"
#include "estacao_cheia.h"
#include "engine/motor.h"

namespace {

namespace fs = std::filesystem;

void BM_CarregarEstacaoCheia(benchmark::State& state) {
  lumavox::AmbienteFixo ambiente(lumavox::MontarDataHora(2026, 11, 22, 10, 0, 0));
  lumavox::Motor motor(lumavox::bench::EstacaoCheia(), ambiente);
  motor.AbrirPlaylists();
  motor.E().playlists.PlaylistAtual = 0;
  for (auto _ : state) {
    motor.DefinirAcervo(0, -1);
    benchmark::DoNotOptimize(motor.E().acervo.TotalMusicas);
  }
  if (motor.E().acervo.TotalMusicas != 4001) state.SkipWithError("estação incompleta");
}
BENCHMARK(BM_CarregarEstacaoCheia)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace

BENCHMARK_MAIN();
