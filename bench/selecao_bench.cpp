// One selection of the run over a full station: 4001 songs, a full history and 48 rules per set
// using every implemented rule number, without the waits (frozen clock) and the periodic reload.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>

#include "base/ambiente.h"
#include "cli/copia_estacao.h"
#include "cli/demo.h"
#include "engine/motor.h"
#include "estacao_cheia.h"
#include "stores/saida.h"

namespace {

using namespace lumavox;
namespace fs = std::filesystem;

const fs::path& EstacaoSelecao() {
  static const fs::path pasta = [] {
    fs::path p = fs::temp_directory_path() / "lumavox-bench-selecao";
    fs::remove_all(p);
    cli::OpcoesDemo op;
    op.musicas = 4001;
    op.regrasPorConjunto = 48;
    op.regrasCompletas = true;
    op.bytesMre = 16;
    op.playlistNoturna = false;
    op.tocadasNoBanco = 0;
    cli::GerarEstacaoDemo(p, op);
    return p;
  }();
  return pasta;
}

// Argument 1: on a simulation's scratch copy, its text files and hand-over in memory.
void BM_UmaSelecao(benchmark::State& state) {
  AmbienteFixo ambiente(MontarDataHora(2026, 11, 22, 10, 0, 0), 11);
  std::unique_ptr<cli::CopiaDaEstacao> copia;
  if (state.range(0) == 1) {
    copia = std::make_unique<cli::CopiaDaEstacao>(EstacaoSelecao());
    ambiente.DefinirArquivos(*copia);
  }
  SistemaArquivos& arquivos = ambiente.Arquivos();
  const fs::path pasta = copia ? copia->Pasta() : EstacaoSelecao();
  Motor motor(pasta, ambiente);
  motor.Iniciar();
  Estado& e = motor.E();
  bench::PreencherHistorico(e, ambiente.Agora(), 3000);
  motor.TestarRegras();  // the start-up call fills the queue
  const fs::path fila = pasta / "list";
  for (auto _ : state) {
    state.PauseTiming();
    // The player took one.
    ApagarArquivo(arquivos, ListarArquivos(arquivos, fila, ".lre").front());
    e.ContagemRecarga = 100;
    state.ResumeTiming();
    benchmark::DoNotOptimize(motor.TestarRegras());
  }
  state.counters["regras_ativas"] = 0;
  for (long r = 0; r < e.catalogo.QuantidadeRegras[0]; ++r)
    state.counters["regras_ativas"] += e.catalogo.CatalogoRegras(0, r).Ativo ? 1 : 0;
}
// The same selection without the files: rules, log model and draw.
void BM_UmaSelecaoSemArquivos(benchmark::State& state) {
  AmbienteFixo ambiente(MontarDataHora(2026, 11, 22, 10, 0, 0), 11);
  Motor motor(EstacaoSelecao(), ambiente);
  motor.Iniciar();
  Estado& e = motor.E();
  bench::PreencherHistorico(e, ambiente.Agora(), 3000);
  e.selecao.DataHoraReferencia = ambiente.Agora();
  e.execucao.NivelAtual = 50;
  for (auto _ : state) {
    const long slot = motor.EscolherMusica();
    // The chosen song joins the history, as after a real selection.
    state.PauseTiming();
    e.AdicionarTocada(e.acervo().AcervoCodigos[slot], e.selecao.DataHoraReferencia);
    if (e.historico().TotalTocadas > 3400) e.SubstituirHistorico([](Historico& h) { h.TotalTocadas = 3000; });
    e.selecao.DataHoraReferencia = SomarSegundos(e.selecao.DataHoraReferencia, 180);
    state.ResumeTiming();
  }
}
BENCHMARK(BM_UmaSelecaoSemArquivos)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

BENCHMARK(BM_UmaSelecao)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

}  // namespace
