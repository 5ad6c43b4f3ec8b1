#include "base/numeros.h"

#include <charconv>
#include <cstdint>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string_view>
#include <system_error>

#include "base/erro.h"

namespace lumavox {

namespace {

bool EhBranco(char16_t c) { return c == u' ' || c == u'\t'; }

}  // namespace

std::optional<double> ConverterNumero(std::u16string_view t) {
  size_t i = 0, fim = t.size();
  while (i < fim && EhBranco(t[i])) ++i;
  while (fim > i && EhBranco(t[fim - 1])) --fim;
  if (i == fim) return std::nullopt;

  bool negativo = false;
  if (t[i] == u'+' || t[i] == u'-') {
    negativo = t[i] == u'-';
    ++i;
  }
  // Built as ASCII on the stack and parsed by from_chars, which rounds correctly and ignores
  // the process locale. Plain digit runs, by far the most common, are summed directly.
  char ascii[64];
  size_t n = 0;
  int digitos = 0;
  bool decimal = false;
  uint64_t inteiro = 0;
  for (; i < fim; ++i) {
    char16_t c = t[i];
    if (c >= u'0' && c <= u'9') {
      if (n < sizeof ascii) ascii[n] = static_cast<char>(c);
      ++n;
      ++digitos;
      inteiro = inteiro * 10 + static_cast<uint64_t>(c - u'0');
    } else if ((c == u',' || c == u'.') && !decimal) {
      if (n < sizeof ascii) ascii[n] = '.';
      ++n;
      decimal = true;
    } else {
      return std::nullopt;
    }
  }
  if (digitos == 0) return std::nullopt;
  double valor = 0;
  if (!decimal && digitos <= 15) {
    valor = static_cast<double>(inteiro);
  } else {
    std::string longo;
    if (n > sizeof ascii)
      for (size_t j = fim - n; j < fim; ++j) longo.push_back(t[j] == u',' ? '.' : static_cast<char>(t[j]));
    const char* inicio = n > sizeof ascii ? longo.data() : ascii;
    // from_chars leaves the value untouched when it does not fit a double: a text past the
    // double's range is not a number, and one too small to tell from zero is zero.
    if (std::from_chars(inicio, inicio + n, valor).ec == std::errc::result_out_of_range) {
      const std::string_view texto(inicio, n);
      if (texto.substr(0, texto.find('.')).find_first_not_of('0') != std::string_view::npos) return std::nullopt;
      valor = 0;
    }
  }
  return negativo ? -valor : valor;
}

bool EhNumerico(std::u16string_view texto) { return ConverterNumero(texto).has_value(); }

double ValorNumerico(std::u16string_view texto) { return ConverterNumero(texto).value_or(0.0); }

double ArredondarPar(double valor) {
  // nearbyint follows the current rounding mode, which the engine never changes from
  // round-to-nearest-even.
  return std::nearbyint(valor);
}

int16_t ParaInteiro16(double valor) {
  double r = ArredondarPar(valor);
  if (!(r >= -32768.0 && r <= 32767.0))
    throw ErroExecucao(CodigoErro::Estouro, "Overflow: valor fora de 16 bits");
  return static_cast<int16_t>(r);
}

int32_t ParaInteiro32(double valor) {
  double r = ArredondarPar(valor);
  if (!(r >= -2147483648.0 && r <= 2147483647.0))
    throw ErroExecucao(CodigoErro::Estouro, "Overflow: valor fora de 32 bits");
  return static_cast<int32_t>(r);
}

namespace {
double NumeroObrigatorio(std::u16string_view texto) {
  auto v = ConverterNumero(texto);
  if (!v) throw ErroExecucao(CodigoErro::TiposIncompativeis, "Type mismatch: \"" + ParaUtf8(texto) + "\" não é número");
  return *v;
}
}  // namespace

int32_t TextoParaInteiro32(std::u16string_view texto) { return ParaInteiro32(NumeroObrigatorio(texto)); }
int16_t TextoParaInteiro16(std::u16string_view texto) { return ParaInteiro16(NumeroObrigatorio(texto)); }

Texto FormatarNumero(double valor) {
  if (valor == 0) return u"0";  // also folds -0
  // Whole numbers and halves (a vibe, a mean of two levels), written as the general forms below
  // write them, without the formatted print.
  if (std::fabs(valor) < 1e13 && valor * 2 == std::trunc(valor * 2)) {
    const long long metades = std::llabs(static_cast<long long>(valor * 2));
    Texto saida = valor < 0 ? u"-" : u"";
    for (char c : std::to_string(metades / 2)) saida.push_back(static_cast<char16_t>(c));
    if (metades % 2) saida += u",5";
    return saida;
  }
  char buffer[64];
  if (std::fabs(valor) < 1e15 && valor == std::trunc(valor)) {
    std::snprintf(buffer, sizeof buffer, "%.0f", valor);
  } else {
    std::snprintf(buffer, sizeof buffer, "%.15G", valor);
  }
  Texto saida;
  for (const char* p = buffer; *p; ++p) saida.push_back(*p == '.' ? u',' : static_cast<char16_t>(*p));
  return saida;
}

std::string FormatarZeros(long long valor, int digitos) {
  std::string numero = std::to_string(valor < 0 ? -valor : valor);
  if (static_cast<int>(numero.size()) < digitos)
    numero.insert(0, static_cast<size_t>(digitos) - numero.size(), '0');
  return valor < 0 ? "-" + numero : numero;
}

}  // namespace lumavox
