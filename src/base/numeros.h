// Number convention of the engine: texts convert when they hold optional blanks, an optional
// sign, digits and an optional decimal part after "," (the station's separator) or "."; no
// exponents or thousands separators. Rounding to whole numbers is half to even, and the
// 16- and 32-bit conversions raise error 6 when the value does not fit.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/texto.h"

namespace lumavox {

std::optional<double> ConverterNumero(std::u16string_view texto);
bool EhNumerico(std::u16string_view texto);

// Numeric value of a tag or variable: 0 for empty or non-numeric text.
double ValorNumerico(std::u16string_view texto);

double ArredondarPar(double valor);
int16_t ParaInteiro16(double valor);   // raises Estouro outside -32768..32767
int32_t ParaInteiro32(double valor);   // raises Estouro outside the 32-bit range
// A text that must be a number (a song code line): raises TiposIncompativeis when it is not.
int32_t TextoParaInteiro32(std::u16string_view texto);
int16_t TextoParaInteiro16(std::u16string_view texto);

// Double as text with "," as decimal separator and up to 15 significant digits (7.5 -> "7,5").
Texto FormatarNumero(double valor);
// Whole number padded with zeros to at least `digitos` digits; the sign goes first ("-0000005").
std::string FormatarZeros(long long valor, int digitos);

}  // namespace lumavox
