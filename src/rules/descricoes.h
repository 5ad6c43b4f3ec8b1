// One description per rule number: the procedure the number runs, its reference description
// and example, and the layout of its variables X1..X10 (which hold its period of validity, which
// are field filters, what the others mean). Every reader of a rule's layout (the dispatcher, the
// rules' period checks, `regras conferir`, the demo station, the documentation test) takes it
// from here, so it is written once.
//
// Contract:
// - The table holds every number the engine knows, "01" to "34", once each and in number order;
//   any other text (" 01", "1", "35") is no rule number.
// - A number with a procedure is performed. Its period is three distinct variables 1..10 and
//   none of them is a filter; its reference description ends in "[(Xa)DATA / ENTRE (Xb) E (Xc)]"
//   naming them.
// - A number without a procedure is known but never performed: it reads no variable, so it has
//   no period and no filter.
// - Every text is static; an empty example or meaning text means there is none.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

namespace lumavox {

class Estado;

using ProcedimentoRegra = void (*)(Estado&);

constexpr int kVariaveisPorRegra = 10;

// A set of variable numbers, 1 to 10.
class ConjuntoVariaveis {
 public:
  constexpr ConjuntoVariaveis() = default;
  constexpr ConjuntoVariaveis(std::initializer_list<int> numeros) {
    for (int n : numeros) bits_ = static_cast<uint16_t>(bits_ | 1u << n);
  }
  constexpr bool Contem(int n) const {
    return n >= 1 && n <= kVariaveisPorRegra && (bits_ >> n & 1u) != 0;
  }

 private:
  uint16_t bits_ = 0;
};

// The variables of the period: the only date on which the rule is in force, and the start and
// end of its daily span. All three 0 when the rule has no period.
struct PeriodoRegra {
  int data = 0;
  int inicio = 0;
  int fim = 0;

  constexpr bool Existe() const { return data != 0; }
};

struct DescricaoRegra {
  std::u16string_view numero;          // exact text of the rule record's number line
  ProcedimentoRegra procedimento;      // null when the number is not performed
  std::u16string_view texto;           // reference description, placeholders "(X1)" and so on
  std::u16string_view exemplo;         // reference example
  PeriodoRegra periodo;
  ConjuntoVariaveis filtros;           // variables read as field filters ("Campo:valor")
  std::u16string_view outrasVariaveis; // what the variables outside the period mean, for people
};

// Every description, in number order.
std::span<const DescricaoRegra> DescricoesRegras();

// The description of a number written as the rule record writes it, or null for a text that is
// no rule number.
const DescricaoRegra* ProcurarDescricao(std::u16string_view numero);

// The description of rule 1..34, for code that names its own rule; other numbers raise
// std::out_of_range.
const DescricaoRegra& DescricaoDaRegra(int numero);

}  // namespace lumavox
