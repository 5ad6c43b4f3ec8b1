// Text convention of the engine: UTF-16 code units (the station files store character codes
// 0..65535), upper-casing by ICU's simple mapping, plain files read as UTF-8 with a
// Windows-1252 fallback, lines ended by LF or CRLF.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumavox {

using Texto = std::u16string;

Texto DeUtf8(std::string_view utf8);       // invalid sequences become U+FFFD
std::string ParaUtf8(std::u16string_view texto);  // lone surrogates become U+FFFD

// Bytes of a plain text file: UTF-8 when they are valid UTF-8, else Windows-1252.
Texto DecodificarBytes(std::string_view bytes);

// Splits on LF, dropping one CR before it. A final line without LF counts; the empty piece
// after a final LF does not.
std::vector<Texto> DividirLinhas(std::u16string_view texto);

// Unicode simple upper-case mapping, code point by code point ("á" -> "Á", "ß" stays).
Texto Maiusculas(std::u16string_view texto);
// Maiusculas(texto) appended to `saida`; `texto` must not lie inside `saida`.
void AcrescentarMaiusculas(Texto& saida, std::u16string_view texto);
bool IguaisSemCaixa(std::u16string_view a, std::u16string_view b);

}  // namespace lumavox
