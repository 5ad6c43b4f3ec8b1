#include "rules/descricoes.h"

#include <array>
#include <stdexcept>
#include <string>

#include "rules/regras.h"

namespace lumavox {

namespace {

// One entry per number, in number order: number, procedure, description, example, period
// (date, start, end), filters, what the other variables mean. A new rule fills in its entry
// here.
constexpr std::array<DescricaoRegra, 34> kDescricoes{{
    {u"01", Regra01,
     u"Começar sempre com uma musica do tipo (X1) [(X2)DATA / ENTRE (X3) E (X4)].",
     u"Comecar sempre com uma musica (Animada)",
     {2, 3, 4}, {1},
     u"X1: filtro que a primeira música da estação deve ter."},
    {u"02", [](Estado& e) { Regra02(e, 0); },
     u"(X1) tocar o mesmo (X2) em um período de (X3) horas [(X4)DATA / ENTRE (X5) E (X6)].",
     u"(Não) tocar o mesmo (artista) em um periodo de (10) horas",
     {4, 5, 6}, {2},
     u"X1: \"Sim\" toca o mesmo valor de novo, outro texto não; "
     u"X2: filtro do campo (Geral*: qualquer valor dele); X3: a janela, em horas."},
    {u"03", Regra03,
     u"Quando avancar a musica no clique (X1), (X2) trocar (X3). Persistir (X4) [(X5)DATA / ENTRE (X6) E (X7)].",
     u"",
     {5, 6, 7}, {3},
     u"X1: o clique do avanço em que a regra age; "
     u"X2: \"Não\" mantém o tag, outro texto o troca; "
     u"X3: filtro (Geral*: o valor da última música); "
     u"X4: \"Sim\" age também nos cliques seguintes."},
    {u"04", Regra04,
     u"Reproduzir musicas com rating (X1) decrescente mais freqüentemente [(X2)DATA / ENTRE (X3) E (X4)].",
     u"Reproduzir musicas com rating 10 decrescente mais frequentemente",
     {2, 3, 4}, {},
     u"X1: a nota (0 a 10) que sempre fica; "
     u"cada nota abaixo dela tem 10 pontos a menos de chance."},
    {u"05", Regra05,
     u"Priorizar musicas que não foram tocadas porem usar incidência de cada musica [(X1)DATA / ENTRE (X2) E (X3)].",
     u"",
     {1, 2, 3}, {},
     u""},
    {u"06", Regra06,
     u"Checar (X1) dias, (X2) horas [(X3)DATA / ENTRE (X4) E (X5)].",
     u"",
     {3, 4, 5}, {},
     u"X1: quantos dias para trás; X2: horas antes e depois da hora atual."},
    {u"07", Regra07,
     u"Tocar a próxima musica com (X2)% de chance de ser mesmo X1 [(X6)DATA / ENTRE (X7) E (X8)].",
     u"",
     {6, 7, 8}, {1},
     u"X1: filtro (Geral*: o valor da última música); "
     u"X2 a X5: chance (%) de manter o tag depois de 1, 2, 3 e 4 músicas com ele."},
    {u"08", Regra08,
     u"Priorizar musicas com rating entre (X1) e (X2) com classificação (X3) e (X4) [(X8)DATA / ENTRE (X9) E (X10)].",
     u"",
     {8, 9, 10}, {3, 4},
     u"X1: nota mais alta; X2: nota mais baixa; X3 e X4: filtros que a música deve ter; "
     u"X5 e X6: as horas em que a regra age; X7: período do dia com nome (nunca em vigor)."},
    {u"09", nullptr, u"", u"", {}, {}, u""},
    {u"10", nullptr, u"", u"", {}, {}, u""},
    {u"11", nullptr, u"", u"", {}, {}, u""},
    {u"12", Regra12,
     u"Maximo de (X1) musicas (X2) consecutivas [(X3)DATA / ENTRE (X4) E (X5)].",
     u"Maximo de (3) musicas (animadas) consecutivas.",
     {3, 4, 5}, {2},
     u"X1: máximo de músicas seguidas; "
     u"X2: filtro do campo (Geral*: o valor da última música)."},
    {u"13", Regra13,
     u"Uma musica não deve tocar mais de X1 dias consecutivos [(X2)DATA / ENTRE (X3) E (X4)].",
     u"",
     {2, 3, 4}, {},
     u"X1: dias seguidos que tiram a música."},
    {u"14", nullptr, u"", u"", {}, {}, u""},
    {u"15", nullptr,
     u"NÃO FEITA ! Tocar Todas as musicas da playlist [(X1)DATA / ENTRE (X2) E (X3)].",
     u"", {}, {}, u""},
    {u"16", nullptr, u"", u"", {}, {}, u""},
    {u"17", nullptr, u"", u"", {}, {}, u""},
    {u"18", nullptr, u"", u"", {}, {}, u""},
    {u"19", nullptr, u"", u"", {}, {}, u""},
    {u"20", nullptr, u"", u"", {}, {}, u""},
    {u"21", nullptr, u"", u"", {}, {}, u""},
    {u"22", Regra22,
     u"Apos o tag (X1) (X2)% de chance de tocar tag (X3), se não tocar o tag (X4) [(X5)DATA / ENTRE (X6) E (X7)]..",
     u"",
     {5, 6, 7}, {1, 3, 4},
     u"X1: filtro da última música; X2: chance (%) de X3; "
     u"X3: filtro da próxima quando o sorteio passa; X4: filtro senão (vazio: tudo menos X3)."},
    {u"23", Regra23,
     u"Quando a musica tiver os tags (X1)(X2)(X3)(X4) tender a tocar (X5)(X6)(X7) [(X8)DATA / ENTRE (X9) E (X10)].",
     u"",
     {8, 9, 10}, {1, 2, 3, 5, 6, 7},
     u"X1 a X3: filtros que a última música deve ter (X1 obrigatório); "
     u"X4: \"Sim\" toca os alvos, outro texto os evita, vazio desliga a regra; "
     u"X5 a X7: filtros alvo."},
    {u"24", Regra24,
     u"(X1)% de chance de tocar o genero influente[(X2)DATA / ENTRE (X3) E (X4)].",
     u"",
     {2, 3, 4}, {},
     u"X1: chance (%) de só ficarem as músicas cujo Genero divide um valor com o GeneroSub "
     u"da última."},
    {u"25", Regra25,
     u"Aplicar Tabela X1, tipo X2 (0 - Tempo, 1 - Posição). [(X3)DATA / ENTRE (X4) E (X5)].",
     u"",
     {3, 4, 5}, {},
     u"X1: número da tabela de horários; "
     u"X2: 0 escolhe a faixa pela hora do dia, 1 pela posição."},
    {u"26", Regra26,
     u"Variar X1 (0-velocidade/1-ritmo/2-Nota/3-BPM/4-Vibe) em no máximo X2 pontos. [(X3)DATA / ENTRE (X4) E (X5)].",
     u"",
     {3, 4, 5}, {},
     u"X1: o campo (0 Velocidade, 1 Ritmo, 2 Nota, 3 Bpm, 4 Vibe); "
     u"X2: a maior diferença permitida do valor da última música."},
    {u"27", Regra27,
     u"(X1)% de chance de tocar com o genero influente igual ao genero da musica anterior [(X2)DATA / ENTRE (X3) E (X4)].",
     u"",
     {2, 3, 4}, {},
     u"X1: chance (%) de só ficarem as músicas cujo GeneroSub divide um valor com o Genero "
     u"da última."},
    {u"28", Regra28,
     u"(X1)% de chance de (X2) tocar o tag X3 [(X4)DATA / ENTRE (X5) E (X6)].",
     u"(80)% de chance de (SIM/NÃO) tocar o tag Ritmo:Calmo [(X4)DATA / ENTRE (X5) E (X6)].",
     {4, 5, 6}, {3},
     u"X1: chance (%); X2: \"SIM\" (em qualquer caixa) toca X3, outro texto o evita; X3: filtro."},
    {u"29", Regra29,
     u"(X1)% de chance de tocar musica favorita [(X2)DATA / ENTRE (X3) E (X4)].",
     u"",
     {2, 3, 4}, {},
     u"X1: chance (%) de só ficarem as favoritas."},
    {u"30", Regra30,
     u"(X1)% de chance de não tocar musica em quarentena [(X2)DATA / ENTRE (X3) E (X4)].",
     u"",
     {2, 3, 4}, {},
     u"X1: chance (%) de saírem as músicas em quarentena."},
    {u"31", Regra31,
     u"Musicas em Quarentena deixam de tocar no respectivo período em X1 horas, para mais e para menos [(X2)DATA / ENTRE (X3) E (X4)].",
     u"",
     {2, 3, 4}, {},
     u"X1: horas antes e depois da hora das marcas de quarentena."},
    {u"32", Regra32,
     u"Aplicar Vibe na barra de ritmo varição (X1) [(X2)DATA / ENTRE (X3) E (X4)].",
     u"",
     {2, 3, 4}, {},
     u"X1: meia largura da faixa de vibe em volta do nível / 10."},
    {u"33", Regra33,
     u"Selecionar músicas de acordo com a barra de ritmo com varição (X1) [(X2)DATA / ENTRE (X3) E (X4)].",
     u"",
     {2, 3, 4}, {},
     u"X1: tolerância da vibe em volta do nível / 10."},
    {u"34", Regra34,
     u"Intervalo mínimo de (X1) musicas para o tag (X2) [(X3)DATA / ENTRE (X4) E (X5)].",
     u"Intervalo mínimo de (3) musicas para o tag (Title).",
     {3, 4, 5}, {2},
     u"X1: intervalo mínimo, em músicas; X2: filtro com campo e valores."},
}};

// The layout the contract promises, checked when the table is compiled.
constexpr bool TabelaCoerente() {
  for (size_t i = 0; i < kDescricoes.size(); ++i) {
    const DescricaoRegra& d = kDescricoes[i];
    const int n = static_cast<int>(i) + 1;
    if (d.numero.size() != 2 || d.numero[0] != u'0' + n / 10 || d.numero[1] != u'0' + n % 10)
      return false;
    const PeriodoRegra& p = d.periodo;
    // A procedure's address is not a constant under every compiler's instrumentation, so the
    // table is read by its period here; the test pairs periods with procedures.
    if (!p.Existe()) {
      if (p.inicio != 0 || p.fim != 0) return false;
      for (int v = 1; v <= kVariaveisPorRegra; ++v)
        if (d.filtros.Contem(v)) return false;
      continue;
    }
    for (int v : {p.data, p.inicio, p.fim})
      if (v < 1 || v > kVariaveisPorRegra || d.filtros.Contem(v)) return false;
    if (p.data == p.inicio || p.data == p.fim || p.inicio == p.fim) return false;
  }
  return true;
}
static_assert(TabelaCoerente());

}  // namespace

std::span<const DescricaoRegra> DescricoesRegras() { return kDescricoes; }

const DescricaoRegra* ProcurarDescricao(std::u16string_view numero) {
  for (const DescricaoRegra& d : kDescricoes)
    if (d.numero == numero) return &d;
  return nullptr;
}

const DescricaoRegra& DescricaoDaRegra(int numero) {
  if (numero < 1 || numero > static_cast<int>(kDescricoes.size()))
    throw std::out_of_range("regra sem descrição: " + std::to_string(numero));
  return kDescricoes[static_cast<size_t>(numero - 1)];
}

}  // namespace lumavox
