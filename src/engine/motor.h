// The engine object: owns the state, loads the playlist in force (collection, rule sets,
// history) and runs the selections. Raised errors of a load reach the caller of
// DefinirAcervo/VerificarPlaylist; Iniciar absorbs them as the start-up does. The loading is
// defined in motor.cpp and the selection run in execucao.cpp, which applies each rule through
// despacho.h.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "base/ambiente.h"
#include "base/sistema_arquivos.h"
#include "engine/execucao.h"
#include "state/estado.h"

namespace lumavox {

namespace fs = std::filesystem;

class Motor {
 public:
  Motor(fs::path caminhoApp, Ambiente& ambiente);

  Estado& E() { return estado_; }
  const Estado& E() const { return estado_; }
  Ambiente& Amb() { return ambiente_; }
  const fs::path& CaminhoApp() const { return caminhoApp_; }

  void DefinirOrigemHistorico(std::unique_ptr<OrigemHistorico> origem) { historico_ = std::move(origem); }
  void DefinirPainel(Painel* painel) { estado_.painel = painel; }
  // Where collection loads are recorded between runs (GuardaGravacoes); none by default.
  void DefinirPastaGravacoes(std::optional<fs::path> pasta) { pastaGravacoes_ = std::move(pasta); }

  // ---- Start-up and loading (motor.cpp) ----

  // Debug mode: on when "debug.red" exists in the application folder.
  bool DetectarModoDebug();
  // The rest of the start-up: start time, playlist table ("Abriu Playlists" in debug mode) and
  // the first check of the playlist in force. Errors are absorbed and kept in UltimoErro.
  void CarregarInicio();
  // Both, in that order.
  void Iniciar();

  void DefinirAcervo(int32_t CodAcervo, int16_t CarregarLogs = 0);
  void AbrirPlaylists();
  void VerificarPlaylist(int16_t CarregarLogs);
  void EscreverDebug(std::u16string_view texto);
  void CarregarMusicasTocadas();

  // ---- The selection run (execucao.cpp) ----

  // One call of the selection run: reads the level and the advance click, chooses songs until
  // the queue holds two, and hands each over through temp/ and list/.
  ResultadoExecucao TestarRegras();
  // The heart of one selection, without files or waits: the run's log entry, every song a
  // candidate, the active rules of the level's set in file order, the remaining songs and the
  // draw (or the forced song). Returns the chosen slot.
  long EscolherMusica();

  // Cause of the last error the start-up absorbed, if any.
  const std::optional<std::string>& UltimoErro() const { return ultimoErro_; }

 private:
  // The player's level and advance click, read at the start of each call (execucao.cpp).
  void LerNivel();
  void LerAvanco();
  // The draw among the surviving songs (execucao.cpp).
  long Sortear();

  fs::path caminhoApp_;
  Ambiente& ambiente_;
  Estado estado_;
  std::unique_ptr<OrigemHistorico> historico_;
  std::optional<std::string> ultimoErro_;
  // Write time and size of an advance file that was read but could not be deleted.
  std::optional<MarcaArquivo> avancoNaoApagado_;

  // The inputs of the last collection load that completed, and the collection it left. Reading
  // the same inputs into that same collection would write every value again unchanged, and
  // make every table derived from it be rebuilt for nothing.
  struct CargaAcervo {
    fs::path pasta;
    VersaoArquivo lxdb, mre;
    uint64_t versaoAcervo = 0;
    bool MesmosArquivos(const CargaAcervo& o) const { return pasta == o.pasta && lxdb == o.lxdb && mre == o.mre; }
  };
  std::optional<CargaAcervo> ultimaCarga_;
  std::optional<CargaAcervo> InsumosDoAcervo(const fs::path& pasta);
  // What the last loads of a few playlists' collections wrote, by their inputs: a station that
  // switches playlists by the hour writes a recorded load again instead of decoding its file.
  struct CargaGravada {
    CargaAcervo insumos;
    GravacaoAcervo gravacao;
  };
  std::vector<CargaGravada> gravadas_;
  void LembrarCarga(const CargaAcervo& insumos, GravacaoAcervo gravacao);
  std::optional<fs::path> pastaGravacoes_;
  std::vector<fs::path> carregadas_;  // folders loaded from known inputs so far
};

}  // namespace lumavox
