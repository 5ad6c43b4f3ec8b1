#include "stores/codec.h"

#include <string>

#include "base/erro.h"
#include "base/numeros.h"

namespace lumavox {

namespace {

[[noreturn]] void CodigoInvalido(double codigo) {
  throw ErroExecucao(CodigoErro::ChamadaInvalida,
                     "Invalid procedure call: código de caractere inválido " +
                         ParaUtf8(FormatarNumero(codigo)));
}

bool Alto(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool Baixo(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

}  // namespace

Texto DecodificarLinha(std::u16string_view linha) {
  Texto saida;
  // 1-based positions 2, 7, 12, ... while p <= length - 1; the last group may be short.
  for (size_t p = 1; p + 2 <= linha.size(); p += 5) {
    double codigo = ValorNumerico(linha.substr(p, 5));
    double inteiro = ArredondarPar(codigo);
    if (!(inteiro >= 0 && inteiro <= 65535)) CodigoInvalido(codigo);
    saida.push_back(static_cast<char16_t>(inteiro));
  }
  for (size_t i = 0; i < saida.size(); ++i) {
    if (Alto(saida[i]) && i + 1 < saida.size() && Baixo(saida[i + 1])) {
      ++i;
    } else if (Alto(saida[i]) || Baixo(saida[i])) {
      CodigoInvalido(saida[i]);
    }
  }
  return saida;
}

Texto CodificarLinha(std::u16string_view texto) {
  Texto saida = u"0";
  for (char16_t c : texto) {
    std::string digitos = std::to_string(static_cast<unsigned>(c));
    saida.append(5 - digitos.size(), u'0');
    for (char d : digitos) saida.push_back(static_cast<char16_t>(d));
  }
  return saida;
}

}  // namespace lumavox
