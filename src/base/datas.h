// Date convention of the engine: a date-time is a civil instant in local time, held as whole
// seconds from the day zero 30/12/1899 00:00:00. A time of day alone lies on day zero.
// Texts convert as day/month/year ("22/11/2026", 2-digit years 00-29 -> 20xx, 30-99 -> 19xx),
// ISO "2026-11-22", times "8:00" or "08:00:00", or a date and a time joined by a blank (or "T").
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/texto.h"

namespace lumavox {

struct DataHora {
  int64_t segundos = 0;  // since 30/12/1899 00:00:00
  auto operator<=>(const DataHora&) const = default;
};

struct PartesData {
  int ano = 1899, mes = 12, dia = 30, hora = 0, minuto = 0, segundo = 0;
};

constexpr int64_t kSegundosPorDia = 86400;

DataHora MontarDataHora(int ano, int mes, int dia, int hora = 0, int minuto = 0, int segundo = 0);
PartesData Decompor(DataHora d);

std::optional<DataHora> ConverterDataHora(std::u16string_view texto);
inline bool EhData(std::u16string_view texto) { return ConverterDataHora(texto).has_value(); }
// Raises TiposIncompativeis when the text is not a date or time.
DataHora TextoParaDataHora(std::u16string_view texto);
// The date of a text in the log writer's form "YYYY-MM-DD HH:MM:SS" (or with "T"), read from its
// bytes as ConverterDataHora reads it; nothing for any other text, valid date or not.
std::optional<DataHora> DataHoraIsoDeBytes(std::string_view texto);

int64_t SegundosDoDia(DataHora d);            // 0..86399
inline DataHora SoHora(DataHora d) { return {SegundosDoDia(d)}; }
inline DataHora SoData(DataHora d) { return {d.segundos - SegundosDoDia(d)}; }
inline DataHora SomarSegundos(DataHora d, int64_t s) { return {d.segundos + s}; }
// Minute boundaries crossed from `de` to `ate` (seconds ignored): 10:00:59 -> 10:01:00 is 1.
int64_t DiferencaMinutos(DataHora de, DataHora ate);

std::string FormatarIso(DataHora d);  // "2026-11-22 08:00:00"

}  // namespace lumavox
