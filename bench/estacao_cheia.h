// A full-capacity station for the benchmarks: the demo generator's 4001 songs and three
// rules files of 256 rules, written once per process into a temporary folder.
#pragma once

#include <benchmark/benchmark.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "base/ambiente.h"
#include "base/texto.h"
#include "cli/demo.h"
#include "engine/despacho.h"
#include "engine/motor.h"
#include "state/estado.h"

namespace lumavox::bench {

inline const std::filesystem::path& EstacaoCheia() {
  static const std::filesystem::path pasta = [] {
    std::filesystem::path p = std::filesystem::temp_directory_path() / "lumavox-bench-cheia";
    cli::OpcoesDemo op;
    op.musicas = 4001;
    op.regrasPorConjunto = 256;
    op.bytesMre = 16;
    op.playlistNoturna = false;
    cli::GerarEstacaoDemo(p, op);
    return p;
  }();
  return pasta;
}

// Plays every three minutes up to `agora`: the database's 500 at -500..-1 and the engine's at
// 0..ultima-1, songs taken across the whole collection.
inline void PreencherHistorico(Estado& e, DataHora agora, long ultima) {
  e.SubstituirHistorico([&](Historico& h) {
    for (long p = -500; p < ultima; ++p) {
      h.HistoricoCodigos[p] = e.acervo().AcervoCodigos[(p + 500) * 7 % 4001];
      h.HistoricoDatas[p] = SomarSegundos(agora, -180 * (ultima - p));
    }
    h.TotalTocadas = static_cast<int16_t>(ultima);
  });
}

// The full station loaded into an engine on a clock fixed at 22/11/2026 10:00, its history full
// (plays at -500..3999) and the rules' reference moment set to now. `semente` seeds the draws.
struct MotorCheio {
  AmbienteFixo ambiente;
  std::unique_ptr<Motor> motor;

  explicit MotorCheio(uint32_t semente) : ambiente(MontarDataHora(2026, 11, 22, 10, 0, 0), semente) {
    motor = std::make_unique<Motor>(EstacaoCheia(), ambiente);
    motor->AbrirPlaylists();
    motor->E().playlists.PlaylistAtual = 0;
    motor->DefinirAcervo(0, -1);
    PreencherHistorico(motor->E(), ambiente.Agora(), 4000);
    motor->E().selecao.DataHoraReferencia = ambiente.Agora();
  }
  MotorCheio(const MotorCheio&) = delete;  // the engine holds a reference to `ambiente`
  Estado& E() { return motor->E(); }
};

// Times one AplicarRegra of rule `id` (Var1.. from `vars`) per iteration, as the first rule of
// set 0 at level 50. Before each one, untimed, every song is a candidate again, the log is emptied and
// `antes` runs.
inline void AplicarUmaRegra(benchmark::State& state, Estado& e, const char* id,
                            const std::vector<Texto>& vars,
                            const std::function<void()>& antes = {}) {
  RegrasCatalogo& r = e.catalogo.CatalogoRegras(0, 0);
  r = RegrasCatalogo{};
  r.ID = DeUtf8(id);
  for (size_t k = 0; k < vars.size(); ++k) r.Var(static_cast<int>(k) + 1).Valor = vars[k];
  for (auto _ : state) {
    state.PauseTiming();
    for (long i = 0; i < e.acervo().TotalMusicas; ++i) e.selecao.MusicaCandidata[i] = true;
    e.log.Limpar();
    if (antes) antes();
    state.ResumeTiming();
    benchmark::DoNotOptimize(AplicarRegra(e, true, 0, 50));
  }
}

}  // namespace lumavox::bench
