#include "cli/formato_html.h"

#include <cstdio>

namespace lumavox::cli {

std::string EscaparHtml(std::string_view texto) {
  std::string s;
  for (char c : texto) {
    switch (c) {
      case '&': s += "&amp;"; break;
      case '<': s += "&lt;"; break;
      case '>': s += "&gt;"; break;
      case '"': s += "&quot;"; break;
      default: s += c;
    }
  }
  return s;
}

std::string NumeroComVirgula(double v, int casas) {
  char texto[32];
  std::snprintf(texto, sizeof texto, "%.*f", casas, v);
  std::string s = texto;
  if (auto ponto = s.find('.'); ponto != std::string::npos) s[ponto] = ',';
  return s;
}

std::string HoraMinuto(DataHora d) { return FormatarIso(d).substr(11, 5); }

}  // namespace lumavox::cli
