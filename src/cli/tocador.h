// The stand-in player of the simulating commands (tocar, simular): a clock that moves only when
// someone waits or a song plays to its end, and a player that takes the queue in order, drops
// the entry and its media, and logs the play as the station's player would.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <random>
#include <string>

#include "base/ambiente.h"
#include "base/datas.h"
#include "base/sistema_arquivos.h"

namespace lumavox {
class BancoLogs;
class Estado;
}  // namespace lumavox

namespace lumavox::cli {

namespace fs = std::filesystem;

// Time passes only when the engine waits or the player jumps ahead; waits round up to whole
// seconds, as the engine's 800 ms hand-over pause is one tick of a one-second timer.
class AmbienteSimulado : public Ambiente {
 public:
  AmbienteSimulado(DataHora inicio, uint32_t semente) : agora_(inicio), gerador_(semente) {}
  DataHora Agora() override { return agora_; }
  SistemaArquivos& Arquivos() override { return arquivos_ ? *arquivos_ : Ambiente::Arquivos(); }
  void UsarArquivos(SistemaArquivos& arquivos) { arquivos_ = &arquivos; }
  void Esperar(int milissegundos) override { Avancar((milissegundos + 999) / 1000); }
  float Aleatorio() override;
  void SemearPeloRelogio() override {}
  void Avancar(int64_t segundos) { agora_ = SomarSegundos(agora_, segundos); }
  // Never moves the clock back: the engine's waits may already have passed `momento`.
  void AvancarAte(DataHora momento) {
    if (momento > agora_) agora_ = momento;
  }

 private:
  DataHora agora_;
  std::mt19937 gerador_;
  SistemaArquivos* arquivos_ = nullptr;
};

struct Tocada {
  int32_t codigo = 0;
  std::string nomeFila;  // the queue entry it came from, "000001_0001234_050.lre"
};

class TocadorSimulado {
 public:
  // Plays are logged into the SQLite log database of `pasta` when it is the station's log (no
  // lumavox.mdb there, which the engine would read instead and this cannot write).
  // The queue and the exchange files are reached through `arquivos`. `copiaDescartavel`: the
  // folder is a scratch copy, so the log may skip its disk syncs.
  explicit TocadorSimulado(fs::path pasta, SistemaArquivos& arquivos = ArquivosReais(),
                           bool copiaDescartavel = false);
  ~TocadorSimulado();

  // Takes the first entry of list/, deletes it and its temp/ media and logs the play at
  // `momento`. Nothing when the queue is empty. A log that cannot be written is reported in
  // `aviso` and the play still counts.
  std::optional<Tocada> TocarProxima(DataHora momento, std::string* aviso = nullptr);

  // Asks the engine for the next song, as the listener's skip button does.
  void Avancar();
  // Sets the rhythm level the engine reads.
  void DefinirNivel(int nivel);

 private:
  fs::path pasta_;
  SistemaArquivos& arquivos_;
  std::unique_ptr<BancoLogs> banco_;
  bool descartavel_ = false;
  bool registrar_ = true;
};

// The song's length in seconds from its DuracaoSec tag, 180 when the tag is missing or not
// positive, so a song without a length cannot stop the clock.
int64_t DuracaoDaMusica(Estado& e, int32_t codigo);

}  // namespace lumavox::cli
