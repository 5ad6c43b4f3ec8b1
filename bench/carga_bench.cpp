// Start-up load of a full station: 4001 songs (132,033 encoded lines) and three rules files of
// 256 rules each.
#include <benchmark/benchmark.h>

#include <chrono>
#include <filesystem>
#include <memory>

#include "base/ambiente.h"
#include "cli/demo.h"
#include "cli/subcomandos.h"
#include "engine/instalacao.h"
#include "engine/motor.h"
#include "estacao_cheia.h"

namespace {

namespace fs = std::filesystem;

void BM_CarregarEstacaoCheia(benchmark::State& state) {
  lumavox::AmbienteFixo ambiente(lumavox::MontarDataHora(2026, 11, 22, 10, 0, 0));
  lumavox::Motor motor(lumavox::bench::EstacaoCheia(), ambiente);
  motor.AbrirPlaylists();
  motor.E().playlists.PlaylistAtual = 0;
  for (auto _ : state) {
    motor.DefinirAcervo(0, -1);
    benchmark::DoNotOptimize(motor.E().acervo().TotalMusicas);
  }
  if (motor.E().acervo().TotalMusicas != 4001) state.SkipWithError("estação incompleta");
}
BENCHMARK(BM_CarregarEstacaoCheia)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace


namespace {

// The start-up load with the history: collection, three rules files of 48 rules and a log
// database of 20,000 rows; with argument 1 the log stays open between loads, as a simulation's.
void BM_CargaPartida(benchmark::State& state) {
  static const std::filesystem::path pasta = [] {
    std::filesystem::path p = std::filesystem::temp_directory_path() / "lumavox-bench-partida";
    std::filesystem::remove_all(p);
    lumavox::cli::OpcoesDemo op;
    op.musicas = 4001;
    op.regrasPorConjunto = 48;
    op.regrasCompletas = true;
    op.bytesMre = 16;
    op.playlistNoturna = false;
    op.tocadasNoBanco = 20000 - 4001 / 10 - 3 * (4001 / 8);
    lumavox::cli::GerarEstacaoDemo(p, op);
    return p;
  }();
  lumavox::AmbienteFixo ambiente(lumavox::MontarDataHora(2026, 11, 22, 10, 0, 0));
  lumavox::Motor motor(pasta, ambiente);
  lumavox::InstalarHistorico(motor, state.range(0) == 1);
  motor.AbrirPlaylists();
  motor.E().playlists.PlaylistAtual = 0;
  for (auto _ : state) {
    motor.DefinirAcervo(0, 0);
    benchmark::DoNotOptimize(motor.E().historico().HistoricoCodigos[-1]);
  }
  if (motor.E().acervo().TotalMusicas != 4001) state.SkipWithError("estação incompleta");
}
BENCHMARK(BM_CargaPartida)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace

namespace {

// The first load of a new engine, as every one-shot run makes it: decoding lxdb.rdb (0), or
// taking the record an earlier run left in the folder of records (1).
void BM_PrimeiraCarga(benchmark::State& state) {
  const fs::path pasta = lumavox::bench::EstacaoCheia();
  // Files written a moment ago have no version yet, and no record is kept of them.
  const auto antigo = fs::file_time_type::clock::now() - std::chrono::hours(1);
  fs::last_write_time(pasta / "lxdb.rdb", antigo);
  fs::last_write_time(pasta / "mre", antigo);
  const fs::path registros = fs::temp_directory_path() / "lumavox-bench-registros";
  lumavox::AmbienteFixo ambiente(lumavox::MontarDataHora(2026, 11, 22, 10, 0, 0));
  int16_t total = 0;
  for (auto _ : state) {
    auto motor = std::make_unique<lumavox::Motor>(pasta, ambiente);
    if (state.range(0)) motor->DefinirPastaGravacoes(registros);
    motor->AbrirPlaylists();
    motor->E().playlists.PlaylistAtual = 0;
    motor->DefinirAcervo(0, -1);
    benchmark::DoNotOptimize(motor->E().acervo().TotalMusicas);
    total = motor->E().acervo().TotalMusicas;
  }
  if (total != 4001) state.SkipWithError("estação incompleta");
}
BENCHMARK(BM_PrimeiraCarga)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace
