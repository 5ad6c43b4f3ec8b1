// An engine state built by hand for rule and dispatcher tests: songs with tags, a history of
// plays, catalogue rules and a frozen clock, without any file.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/ambiente.h"
#include "state/estado.h"

namespace lumavox::teste {

class EstadoTeste {
 public:
  explicit EstadoTeste(DataHora agora = MontarDataHora(2026, 11, 22, 10, 0, 0), uint32_t semente = 1);

  Estado& E() { return *estado_; }
  Estado* operator->() { return estado_.get(); }
  AmbienteFixo& Amb() { return ambiente_; }

  // Adds a song at the next slot with code and tags by field index (vibe computed).
  EstadoTeste& Musica(int32_t codigo, std::initializer_list<std::pair<int, std::string>> tags = {});
  // Appends plays to the history at positions 0.. (oldest first), one minute apart, ending a
  // minute before the reference moment.
  EstadoTeste& Tocadas(std::initializer_list<int32_t> codigos);
  // Appends one play at the next position, at a given moment.
  EstadoTeste& TocadaEm(int32_t codigo, DataHora quando);
  // Marks every loaded song as a candidate.
  EstadoTeste& TodasCandidatas();
  // Puts a rule into set `conjunto` at index `indice` (vars are Var1..).
  RegrasCatalogo& Regra(int conjunto, long indice, std::string id, std::vector<std::string> vars = {},
                        std::string descricao = "");
  // Copies a rule straight into RegraAtual (for calling a rule procedure directly).
  EstadoTeste& RegraAtual(std::string id, std::vector<std::string> vars);

  // Runs `regra` as rule `id` on every loaded song and returns the codes it keeps (still
  // candidates, MusicaMantida set).
  std::vector<int32_t> Aplicar(const std::function<void(Estado&)>& regra, std::string id,
                               std::vector<std::string> vars);
  std::vector<int32_t> Candidatas();

 private:
  AmbienteFixo ambiente_;
  std::unique_ptr<Estado> estado_;
};

}  // namespace lumavox::teste
