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

// Five digits read at once from an eight-byte load whose low five bytes are the group: -1 when
// one of them is not a plain digit. The digits are moved to the top of the word so the word reads
// as an eight-digit number with three leading zeros, folded pairwise by three multiplications.
inline long CincoDigitos(uint64_t w) {
  w <<= 24;
  const uint64_t zeros = 0x3030303030000000ULL, mascara = 0xF0F0F0F0F0000000ULL;
  if ((w & mascara) != zeros || ((w + 0x0606060606000000ULL) & mascara) != zeros) return -1;
  w &= 0x0F0F0F0F0F0F0F0FULL;
  w = (w * 2561) >> 8;  // 10 * 256 + 1
  w = ((w & 0x00FF00FF00FF00FFULL) * 6553601) >> 16;  // 100 * 65536 + 1
  return static_cast<long>(((w & 0x0000FFFF0000FFFFULL) * 42949672960001ULL) >> 32);  // 10000 * 2^32 + 1
}

// Decodes `linha` into `saida`, which keeps its capacity from line to line. `legiveis` is how many
// characters may be read from the start of `linha`, past its end included: from a whole file in
// memory, a group near a line's end can still be read eight bytes at a time.
template <typename Char>
void DecodificarEm(std::basic_string_view<Char> linha, size_t legiveis, Texto& saida) {
  // 1-based positions 2, 7, 12, ... while p <= length - 1; the last group may be short.
  size_t p = 1;
  bool substitutos = false;
  size_t n = 0;
  // Whole groups of five plain digits, the form every writer produces, in one tight loop; the
  // first group of another form and everything after it take the general path below.
  if (linha.size() > 5) {
    saida.resize((linha.size() - 1) / 5);
    char16_t* destino = saida.data();
    if constexpr (sizeof(Char) == 1) {
      for (; p + 5 <= linha.size() && p + 8 <= legiveis; p += 5) {
        uint64_t w;
        std::memcpy(&w, linha.data() + p, sizeof w);
        const long v = CincoDigitos(w);
        if (v < 0 || v > 65535) break;
        substitutos |= v >= 0xD800 && v <= 0xDFFF;
        destino[n++] = static_cast<char16_t>(v);
      }
    }
    for (; p + 5 <= linha.size(); p += 5) {
      const Char* g = linha.data() + p;
      const auto d0 = static_cast<unsigned>(g[0]) - '0', d1 = static_cast<unsigned>(g[1]) - '0',
                 d2 = static_cast<unsigned>(g[2]) - '0', d3 = static_cast<unsigned>(g[3]) - '0',
                 d4 = static_cast<unsigned>(g[4]) - '0';
      if (d0 > 9 || d1 > 9 || d2 > 9 || d3 > 9 || d4 > 9) break;
      const unsigned v = d0 * 10000 + d1 * 1000 + d2 * 100 + d3 * 10 + d4;
      if (v > 65535) break;
      substitutos |= v >= 0xD800 && v <= 0xDFFF;
      destino[n++] = static_cast<char16_t>(v);
    }
  }
  saida.resize(n);
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
  DecodificarEm(linha, linha.size(), saida);
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
      DecodificarEm(std::u16string_view(linha), linha.size(), texto);
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
    DecodificarEm(linha, static_cast<size_t>(bytes.data() + bytes.size() - linha.data()), texto);
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
