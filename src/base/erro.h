// Run-time errors of the engine. Every failure the station files, the database or a rule can
// cause is raised as ErroExecucao, carrying the classic error number and a readable cause, so
// the caller that "goes on after errors" can catch exactly this type and log why.
#pragma once

#include <stdexcept>
#include <string>

namespace lumavox {

enum class CodigoErro : int {
  ChamadaInvalida = 5,     // invalid argument to a procedure
  Estouro = 6,             // number does not fit the integer type
  DivisaoPorZero = 11,     // a division whose divisor is zero
  ForaDoIntervalo = 9,     // index past an array bound
  TiposIncompativeis = 13, // text that does not convert to a number or date
  ArquivoNaoEncontrado = 53,
  ErroDeEntradaSaida = 57,
  PermissaoNegada = 70,
};

class ErroExecucao : public std::runtime_error {
 public:
  ErroExecucao(CodigoErro codigo, const std::string& descricao)
      : std::runtime_error(descricao), codigo_(codigo) {}
  CodigoErro Codigo() const { return codigo_; }
  int Numero() const { return static_cast<int>(codigo_); }

 private:
  CodigoErro codigo_;
};

// A failure at one line of a station file, so a check can point at it; catchable as any other.
class ErroNaLinha : public ErroExecucao {
 public:
  ErroNaLinha(CodigoErro codigo, const std::string& descricao, long linha)
      : ErroExecucao(codigo, descricao), linha_(linha) {}
  long Linha() const { return linha_; }

 private:
  long linha_;
};

}  // namespace lumavox
