#include "base/texto.h"

#include <unicode/uchar.h>
#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <memory>

namespace lumavox {

Texto DeUtf8(std::string_view utf8) {
  if (utf8.empty()) return {};
  // Most texts are plain ASCII (numbers, dates, codes): each byte is then its own code unit.
  if (std::all_of(utf8.begin(), utf8.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
    return Texto(utf8.begin(), utf8.end());
  Texto saida(utf8.size(), u'\0');
  int32_t tamanho = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8WithSub(reinterpret_cast<UChar*>(saida.data()), static_cast<int32_t>(saida.size()),
                       &tamanho, utf8.data(), static_cast<int32_t>(utf8.size()), 0xFFFD, nullptr,
                       &status);
  if (U_FAILURE(status)) return {};
  saida.resize(static_cast<size_t>(tamanho));
  return saida;
}

std::string ParaUtf8(std::u16string_view texto) {
  if (texto.empty()) return {};
  std::string saida(texto.size() * 3, '\0');
  int32_t tamanho = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strToUTF8WithSub(saida.data(), static_cast<int32_t>(saida.size()), &tamanho,
                     reinterpret_cast<const UChar*>(texto.data()),
                     static_cast<int32_t>(texto.size()), 0xFFFD, nullptr, &status);
  if (U_FAILURE(status)) return {};
  saida.resize(static_cast<size_t>(tamanho));
  return saida;
}

namespace {

bool Utf8Valido(std::string_view bytes) {
  if (bytes.empty()) return true;
  int32_t tamanho = 0;
  UErrorCode status = U_ZERO_ERROR;
  u_strFromUTF8(nullptr, 0, &tamanho, bytes.data(), static_cast<int32_t>(bytes.size()), &status);
  return status == U_BUFFER_OVERFLOW_ERROR || U_SUCCESS(status);
}

Texto DeWindows1252(std::string_view bytes) {
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<UConverter, decltype(&ucnv_close)> conversor(ucnv_open("windows-1252", &status),
                                                              &ucnv_close);
  if (U_FAILURE(status)) {
    // Without the converter table, Latin-1 is the closest reading of the same bytes.
    Texto saida;
    for (unsigned char c : bytes) saida.push_back(static_cast<char16_t>(c));
    return saida;
  }
  Texto saida(bytes.size() * 2, u'\0');
  int32_t tamanho = ucnv_toUChars(conversor.get(), reinterpret_cast<UChar*>(saida.data()),
                                  static_cast<int32_t>(saida.size()), bytes.data(),
                                  static_cast<int32_t>(bytes.size()), &status);
  saida.resize(U_SUCCESS(status) ? static_cast<size_t>(tamanho) : 0);
  return saida;
}

}  // namespace

Texto DecodificarBytes(std::string_view bytes) {
  // Encoded station files are pure ASCII: widen them without a converter.
  bool ascii = true;
  for (char c : bytes) ascii &= static_cast<unsigned char>(c) < 0x80;
  if (ascii) return Texto(bytes.begin(), bytes.end());
  return Utf8Valido(bytes) ? DeUtf8(bytes) : DeWindows1252(bytes);
}

std::vector<Texto> DividirLinhas(std::u16string_view texto) {
  std::vector<Texto> linhas;
  size_t inicio = 0;
  while (inicio < texto.size()) {
    size_t fim = texto.find(u'\n', inicio);
    if (fim == std::u16string_view::npos) fim = texto.size();
    size_t corte = fim;
    if (corte > inicio && texto[corte - 1] == u'\r') --corte;
    linhas.emplace_back(texto.substr(inicio, corte - inicio));
    inicio = fim + 1;
  }
  return linhas;
}

void AcrescentarMaiusculas(Texto& saida, std::u16string_view texto) {
  // Plain ASCII, most tags, needs no case tables.
  if (std::all_of(texto.begin(), texto.end(), [](char16_t c) { return c < 0x80; })) {
    const size_t inicio = saida.size();
    saida.append(texto);
    for (size_t i = inicio; i < saida.size(); ++i)
      if (saida[i] >= u'a' && saida[i] <= u'z') saida[i] = static_cast<char16_t>(saida[i] - 32);
    return;
  }
  saida.reserve(saida.size() + texto.size());
  const UChar* dados = reinterpret_cast<const UChar*>(texto.data());
  int32_t tamanho = static_cast<int32_t>(texto.size());
  for (int32_t i = 0; i < tamanho;) {
    UChar32 c;
    U16_NEXT(dados, i, tamanho, c);
    UChar32 m = u_toupper(c);
    if (U_IS_BMP(m)) {
      saida.push_back(static_cast<char16_t>(m));
    } else {
      saida.push_back(static_cast<char16_t>(U16_LEAD(m)));
      saida.push_back(static_cast<char16_t>(U16_TRAIL(m)));
    }
  }
}

Texto Maiusculas(std::u16string_view texto) {
  Texto saida;
  AcrescentarMaiusculas(saida, texto);
  return saida;
}

bool IguaisSemCaixa(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  return Maiusculas(a) == Maiusculas(b);
}

}  // namespace lumavox
