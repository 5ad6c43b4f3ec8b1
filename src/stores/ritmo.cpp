#include "stores/ritmo.h"

#include <array>
#include <utility>

#include "base/numeros.h"

namespace lumavox {

namespace {

constexpr std::array<std::pair<std::u16string_view, double>, 9> kTextosFixos{{
    {u"Rápida;", 9},
    {u"Rápida;Normal;", 7},
    {u"Normal;Rápida;", 7},
    {u"Normal;", 5},
    {u"Normal;Lenta;", 3},
    {u"Lenta;Normal;", 3},
    {u"Lenta;", 1},
    {u"Nacional", -1},
    {u"Internacional", 1},
}};

constexpr std::array<std::pair<std::u16string_view, double>, 9> kHumor{{
    {u"Pra Baixo", -1},
    {u"Romântico", -1},
    {u"Sexy", 1},
    {u"Relax", -1},
    {u"Agitado", 1},
    {u"Pista", 1},
    {u"Cover", 0},
    {u"Positivo", 1},
    {u"Comedia", -1},
}};

template <typename F>
void ParaCadaPalavra(std::u16string_view texto, F&& f) {
  size_t inicio = 0;
  for (size_t p = 0; p < texto.size(); ++p) {
    if (texto[p] == u';') {
      f(texto.substr(inicio, p - inicio));
      inicio = p + 1;
    }
  }
}

}  // namespace

double ValorRitmo(std::u16string_view valor) {
  if (valor.empty() || EhNumerico(valor)) return ValorNumerico(valor);
  for (const auto& [texto, resultado] : kTextosFixos)
    if (valor == texto) return resultado;

  double x = 0;
  int n = 0;
  ParaCadaPalavra(valor, [&](std::u16string_view palavra) {
    if (palavra == u"Calmo") {
      x += 1, ++n;
    } else if (palavra == u"Normal") {
      x += 5, ++n;
    } else if (palavra == u"Animado") {
      x += 9, ++n;
    }
  });
  if (n > 0) x /= n;
  ParaCadaPalavra(valor, [&](std::u16string_view palavra) {
    for (const auto& [humor, ajuste] : kHumor)
      if (palavra == humor) {
        x += ajuste;
        break;
      }
  });
  return x;
}

}  // namespace lumavox
