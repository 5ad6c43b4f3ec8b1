#include "stores/codec.h"

#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
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

// Five plain digits, the form every writer produces, read without the general conversion.
template <typename Char>
std::optional<double> GrupoDeDigitos(std::basic_string_view<Char> g) {
  if (g.size() != 5) return std::nullopt;
  int v = 0;
  for (Char c : g) {
    if (c < '0' || c > '9') return std::nullopt;
    v = v * 10 + (c - '0');
  }
  return v;
}

double ValorDoGrupo(std::u16string_view g) { return ValorNumerico(g); }
double ValorDoGrupo(std::string_view g) { return ValorNumerico(Texto(g.begin(), g.end())); }

bool Alto(char16_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool Baixo(char16_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

}  // namespace

namespace {

// Decodes `linha` into `saida`, which keeps its capacity from line to line.
template <typename Char>
void DecodificarEm(std::basic_string_view<Char> linha, Texto& saida) {
  saida.clear();
  // 1-based positions 2, 7, 12, ... while p <= length - 1; the last group may be short.
  size_t p = 1;
  bool substitutos = false;
  // Whole groups of five plain digits, the form every writer produces, in one tight loop; the
  // first group of another form and everything after it take the general path below.
  for (; p + 5 <= linha.size(); p += 5) {
    const Char* g = linha.data() + p;
    const auto d0 = static_cast<unsigned>(g[0]) - '0', d1 = static_cast<unsigned>(g[1]) - '0',
               d2 = static_cast<unsigned>(g[2]) - '0', d3 = static_cast<unsigned>(g[3]) - '0',
               d4 = static_cast<unsigned>(g[4]) - '0';
    if (d0 > 9 || d1 > 9 || d2 > 9 || d3 > 9 || d4 > 9) break;
    const unsigned v = d0 * 10000 + d1 * 1000 + d2 * 100 + d3 * 10 + d4;
    if (v > 65535) break;
    substitutos |= v >= 0xD800 && v <= 0xDFFF;
    saida.push_back(static_cast<char16_t>(v));
  }
  if (p + 2 <= linha.size()) substitutos = true;  // the general path does not track them
  for (; p + 2 <= linha.size(); p += 5) {
    std::basic_string_view<Char> grupo = linha.substr(p, 5);
    double inteiro;
    if (auto direto = GrupoDeDigitos(grupo)) {
      inteiro = *direto;
    } else {
      double codigo = ValorDoGrupo(grupo);
      inteiro = ArredondarPar(codigo);
      if (!(inteiro >= 0 && inteiro <= 65535)) CodigoInvalido(codigo);
    }
    if (!(inteiro >= 0 && inteiro <= 65535)) CodigoInvalido(inteiro);
    saida.push_back(static_cast<char16_t>(inteiro));
  }
  if (!substitutos) return;
  for (size_t i = 0; i < saida.size(); ++i) {
    if (Alto(saida[i]) && i + 1 < saida.size() && Baixo(saida[i + 1])) {
      ++i;
    } else if (Alto(saida[i]) || Baixo(saida[i])) {
      CodigoInvalido(saida[i]);
    }
  }
}

}  // namespace

Texto DecodificarLinha(std::u16string_view linha) {
  Texto saida;
  DecodificarEm(linha, saida);
  return saida;
}

void ParaCadaLinhaCodificada(SistemaArquivos& arquivos, const std::filesystem::path& arquivo,
                             const std::function<void(Texto&&)>& usar) {
  const std::string bytes = arquivos.LerBytes(arquivo);
  // Eight bytes at a time: a file of several megabytes is looked at whole before any line.
  uint64_t altos = 0;
  size_t i = 0;
  for (; i + 8 <= bytes.size(); i += 8) {
    uint64_t w;
    std::memcpy(&w, bytes.data() + i, sizeof w);
    altos |= w;
  }
  for (; i < bytes.size(); ++i) altos |= static_cast<unsigned char>(bytes[i]);
  const bool ascii = (altos & 0x8080808080808080ULL) == 0;
  // One buffer for every line: a reader that copies the text (rather than taking it) lets the
  // next line reuse its room.
  Texto texto;
  if (!ascii) {
    for (const Texto& linha : DividirLinhas(DecodificarBytes(bytes))) {
      DecodificarEm(std::u16string_view(linha), texto);
      usar(std::move(texto));
    }
    return;
  }
  // Pure ASCII, as every writer makes these files: decode straight from the bytes.
  std::string_view resto(bytes);
  while (!resto.empty()) {
    size_t fim = resto.find('\n');
    std::string_view linha = resto.substr(0, fim);
    if (!linha.empty() && linha.back() == '\r') linha.remove_suffix(1);
    DecodificarEm(linha, texto);
    usar(std::move(texto));
    if (fim == std::string_view::npos) break;
    resto.remove_prefix(fim + 1);
  }
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
