#include "engine/despacho.h"

#include <algorithm>
#include <string>

#include "base/erro.h"
#include "base/numeros.h"
#include "engine/registro.h"
#include "rules/regras.h"
#include "state/estado.h"

namespace lumavox {

namespace {

int16_t Checar16(long long v) {
  if (v < INT16_MIN || v > INT16_MAX) throw ErroExecucao(CodigoErro::Estouro, "Overflow: ajuste de variável");
  return static_cast<int16_t>(v);
}

}  // namespace

int ConjuntoDoNivel(int nivel) {
  if (nivel <= 35) return 1;
  if (nivel <= 64) return 0;
  return 2;
}

Texto AjustarValorVariavel(const Estado& e, std::u16string_view valor) {
  return AjustarValorVariavel(valor, e.selecao.NivelRitmo);
}

Texto AjustarValorVariavel(std::u16string_view valor, int16_t n) {
  if (valor.empty() || valor.front() != u'*') return Texto(valor);
  const std::u16string_view resto = valor.substr(1);
  int16_t a = 9999, b = 0;
  for (size_t p = 0; p < resto.size(); ++p) {
    if (resto[p] != u'-') continue;
    a = ParaInteiro16(ValorNumerico(resto.substr(0, p)));
    b = ParaInteiro16(ValorNumerico(resto.substr(p + 1)));
  }
  if (a == 9999) a = b = ParaInteiro16(ValorNumerico(resto));

  if (n >= 36 && n <= 64) return DeUtf8(std::to_string(a));
  const int16_t d = Checar16(n <= 35 ? 35 - n : n - 65);
  const int16_t produto = Checar16(static_cast<long long>(Checar16(b - a)) * d);
  // Integer division truncates toward zero, as the station's values always did.
  return DeUtf8(std::to_string(Checar16(a + produto / 35)));
}

bool AplicarRegra(Estado& e, bool UsarCatalogo, long Indice, int16_t Nivel) {
  Selecao& s = e.selecao;
  const long total = e.acervo().TotalMusicas;
  if (total > 0) (void)s.MusicaMantida[total - 1];  // bounds checked once for the loops below
  // The three passes over the collection run for every rule of every selection.
  Booleano* const mantida = total > 0 ? &s.MusicaMantida.SemVerificar(0) : nullptr;
  Booleano* const candidata = total > 0 ? &s.MusicaCandidata.SemVerificar(0) : nullptr;
  std::fill(mantida, mantida + total, Booleano(true));
  s.NaoRealizada = false;

  try {
    s.NivelRitmo = Nivel;
    const int conjunto = ConjuntoDoNivel(Nivel);
    const RegrasCatalogo& origem =
        UsarCatalogo ? e.catalogo.CatalogoRegras(conjunto, Indice) : e.catalogo.RegrasScript[Indice];
    RegrasCatalogo& atual = e.catalogo.RegraAtual;
    atual.ID = origem.ID;
    atual.Descricao = origem.Descricao;
    for (int k = 1; k <= 10; ++k) atual.Var(k).Valor = AjustarValorVariavel(e, origem.Valor(k));

    const BuscaRegra busca = ProcurarRegra(atual.ID);
    if (busca.procedimento) {
      busca.procedimento(e);
    } else if (busca.conhecida) {
      s.NaoRealizada = true;
    }
  } catch (const std::exception& erro) {
    // The rule ends here: nothing it marked is removed, and the selection goes on.
    const ErroExecucao* ee = dynamic_cast<const ErroExecucao*>(&erro);
    std::string causa = "Erro " + std::to_string(ee ? ee->Numero() : 0) + ": " + erro.what();
    RegistrarLog(e, TipoLog::Erro, 0, 0, causa);
    return false;
  }

  if (e.painel) e.painel->Ceder();

  const auto fora = static_cast<int16_t>(total - ContarAmbos(candidata, mantida, total));

  if (fora == total) {
    RegistrarLog(e, s.NaoRealizada ? TipoLog::NaoRealizada : TipoLog::Negada, 0, fora);
    return false;
  }
  s.MusicasExcluidas = fora;
  // The entry is written before the removals, so it still sees which candidates the rule took.
  RegistrarLog(e, s.NaoRealizada ? TipoLog::NaoRealizada : TipoLog::Aplicada, 0, fora);
  ManterOnde(candidata, mantida, total);
  return true;
}

}  // namespace lumavox
