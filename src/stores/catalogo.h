// The rule catalogue: three rule sets of up to 256 records loaded from lxie0/1/2.rdb, the
// never-loaded RegrasScript list and RegraAtual, the copy of the rule being applied.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>

#include "base/sistema_arquivos.h"
#include "base/texto.h"
#include "base/vetor.h"

namespace lumavox {

namespace fs = std::filesystem;

constexpr int kLinhasPorRegra = 14;
constexpr long kRegrasPorConjunto = 256;

struct RegrasVariavel {
  bool Ativo = false;   // kept with the record, never used
  Texto Valor;
  int16_t Tipo = 0;     // kept with the record, never used
};

struct RegrasCatalogo {
  Texto ID;
  Texto Exemplo;
  std::array<RegrasVariavel, 10> Vars;
  bool Ativo = false;
  int16_t Prioridade = 0;  // never written or read by the engine
  Texto Descricao;

  // Var(1)..Var(10), as the rules name them; other numbers raise ForaDoIntervalo.
  RegrasVariavel& Var(int n);
  const RegrasVariavel& Var(int n) const;
  const Texto& Valor(int n) const { return Var(n).Valor; }
};

struct Catalogo {
  Matriz<RegrasCatalogo, 3, kRegrasPorConjunto> CatalogoRegras;
  std::array<int16_t, 3> QuantidadeRegras{};
  Vetor<RegrasCatalogo, 0, kRegrasPorConjunto - 1> RegrasScript;
  RegrasCatalogo RegraAtual;
};

// Reads one rules file into set `conjunto`: 14 encoded lines per rule (active flag, ID,
// description, example, Var1..Var10). QuantidadeRegras counts complete records only and is set
// after the whole file was read. Raises on a missing file, an undecodable line or a 257th rule,
// leaving the entries written so far and the previous count.
void CarregarArquivoRegras(SistemaArquivos& arquivos, Catalogo& catalogo, int conjunto,
                           const fs::path& arquivo);

// The record lines of one rule, in file order, decoded (for tools and tests).
std::array<Texto, kLinhasPorRegra> LinhasDaRegra(const RegrasCatalogo& regra);

}  // namespace lumavox
