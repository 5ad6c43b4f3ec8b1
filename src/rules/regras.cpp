#include "rules/regras.h"

#include <utility>

namespace lumavox {

namespace {

// One line per rule number, in number order; a new rule adds its procedure here.
constexpr std::pair<std::u16string_view, ProcedimentoRegra> kTabela[] = {
    {u"01", Regra01},
    {u"02", [](Estado& e) { Regra02(e, 0); }},
    {u"03", Regra03},
    {u"04", Regra04},
    {u"05", Regra05},
    {u"06", Regra06},
    {u"07", Regra07},
    {u"08", Regra08},
    {u"09", nullptr},
    {u"10", nullptr},
    {u"11", nullptr},
    {u"12", Regra12},
    {u"13", Regra13},
    {u"14", nullptr},
    {u"15", nullptr},
    {u"16", nullptr},
    {u"17", nullptr},
    {u"18", nullptr},
    {u"19", nullptr},
    {u"20", nullptr},
    {u"21", nullptr},
    {u"22", Regra22},
    {u"23", Regra23},
    {u"24", Regra24},
    {u"25", Regra25},
    {u"26", Regra26},
    {u"27", Regra27},
    {u"28", Regra28},
    {u"29", Regra29},
    {u"30", Regra30},
    {u"31", Regra31},
    {u"32", Regra32},
    {u"33", Regra33},
    {u"34", Regra34},
};

}  // namespace

BuscaRegra ProcurarRegra(std::u16string_view id) {
  for (const auto& [numero, procedimento] : kTabela)
    if (numero == id) return {true, procedimento};
  return {};
}

}  // namespace lumavox
