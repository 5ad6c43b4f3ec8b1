#include "cli/curva_nivel.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>
#include <stdexcept>

#include "base/numeros.h"
#include "base/texto.h"

namespace lumavox::cli {

int CurvaNivel::NivelEm(DataHora momento) const {
  const int segundo = static_cast<int>(SegundosDoDia(momento));
  int nivel = pontos.back().second;
  for (const auto& [quando, n] : pontos)
    if (quando <= segundo) nivel = n;
  return nivel;
}

DataHora CurvaNivel::ProximaMudanca(DataHora momento) const {
  const int64_t segundo = SegundosDoDia(momento);
  const DataHora dia = SoData(momento);
  for (const auto& [quando, n] : pontos)
    if (quando > segundo) return SomarSegundos(dia, quando);
  return SomarSegundos(dia, kSegundosPorDia + pontos.front().first);
}

CurvaNivel LerCurvaNivel(std::string_view texto, const std::string& origem) {
  CurvaNivel curva;
  std::istringstream entrada{std::string(texto)};
  std::string linha;
  for (int numero = 1; std::getline(entrada, linha); ++numero) {
    if (auto c = linha.find('#'); c != std::string::npos) linha.erase(c);
    std::istringstream partes(linha);
    std::string hora, nivel, resto;
    if (!(partes >> hora)) continue;
    auto Falha = [&](const std::string& causa) {
      throw std::runtime_error(origem + ":" + std::to_string(numero) + ": " + causa);
    };
    int hh = -1, mm = -1;
    char separador = 0, sobra = 0;
    if (std::sscanf(hora.c_str(), "%d%c%d%c", &hh, &separador, &mm, &sobra) != 3 || separador != ':' || hh < 0 ||
        hh > 23 || mm < 0 || mm > 59)
      Falha("hora inválida \"" + hora + "\" (use HH:MM)");
    if (!(partes >> nivel) || (partes >> resto)) Falha("esperado \"HH:MM nível\"");
    const auto valor = ConverterNumero(DeUtf8(nivel));
    if (!valor || *valor < 0 || *valor > 100 || *valor != std::floor(*valor))
      Falha("nível inválido \"" + nivel + "\" (inteiro de 0 a 100)");
    curva.pontos.emplace_back(hh * 3600 + mm * 60, static_cast<int>(*valor));
  }
  if (curva.pontos.empty()) throw std::runtime_error(origem + ": curva sem pontos");
  std::stable_sort(curva.pontos.begin(), curva.pontos.end(),
                   [](const auto& a, const auto& b) { return a.first < b.first; });
  return curva;
}

}  // namespace lumavox::cli
