// The rule log as plain data: one subtree per selection ("P" + counter) with an entry per rule
// applied, refused, not performed or ended by an error ("R"), the songs each rule removed ("n"),
// the remaining songs ("M", "MR") and the chosen song ("E"). The window and the CLI render it.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "base/datas.h"
#include "base/texto.h"

namespace lumavox {

enum class TipoLog : int16_t {
  Aplicada = 0,      // " -> REGRA: "
  Negada = 1,        // "REGRA NEGADA: "
  Restantes = 2,     // "MUSICAS RESTANTES:"
  Escolhida = 3,
  NaoRealizada = 4,  // "REGRA SCRIPT NÃO REALIZADO: "
  Inicio = 5,        // parent entry of a selection
  Erro = 6,          // the rule raised an error and was ended without removals
  EntregaFalhou = 7, // "ENTREGA FALHOU: ": the choice could not be handed over whole
};

// A song under a rule entry (removed by it) or under the remaining-songs entry. Kept compact:
// its key and text follow from its parent, so thousands of them cost little to record.
struct MusicaLog {
  int32_t codigo = 0;
  int16_t slot = 0;
};

struct NoLog {
  std::string chave;
  Texto texto;
  TipoLog tipo = TipoLog::Inicio;
  DataHora momento;
  int32_t codigo = 0;       // the chosen-song entry
  Texto id;                 // rule entries
  int16_t regraNumero = 0;  // rule entries
  std::string erro;         // error entries: the cause
  std::vector<NoLog> filhos;
  std::vector<MusicaLog> musicas;  // song entries under this one, in slot order
};

// Key and text of a song entry: "n<counter>_<rule>_<slot>" under a rule entry,
// "MR<counter>_<slot>" under the remaining-songs entry; the text is the song's code.
std::string ChaveMusica(const NoLog& pai, const MusicaLog& musica);
Texto TextoMusica(const MusicaLog& musica);

class LogRegras {
 public:
  // Only the latest selections are kept, so a station running for months holds a bounded log.
  static constexpr size_t kSelecoesGuardadas = 50;

  const std::deque<NoLog>& Selecoes() const { return selecoes_; }
  NoLog* Atual() { return selecoes_.empty() ? nullptr : &selecoes_.back(); }
  void NovaSelecao(NoLog no);
  void Limpar() { selecoes_.clear(); }

 private:
  std::deque<NoLog> selecoes_;
};

}  // namespace lumavox
