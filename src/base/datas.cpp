#include "base/datas.h"

#include <chrono>
#include <cstdio>
#include <vector>

#include "base/erro.h"

namespace lumavox {

namespace {

using namespace std::chrono;

constexpr sys_days kDiaZero = sys_days{year{1899} / December / 30};

int64_t DivPiso(int64_t a, int64_t b) { return a / b - ((a % b != 0) && ((a < 0) != (b < 0))); }

// Splits a text into runs of digits and the single separators between them.
struct Pedacos {
  std::vector<std::u16string_view> numeros;
  std::u16string separadores;
};

bool Separar(std::u16string_view t, Pedacos& p) {
  size_t i = 0;
  while (i < t.size()) {
    size_t j = i;
    while (j < t.size() && t[j] >= u'0' && t[j] <= u'9') ++j;
    if (j == i || j - i > 4) return false;
    p.numeros.push_back(t.substr(i, j - i));
    if (j == t.size()) break;
    p.separadores.push_back(t[j]);
    i = j + 1;
    if (i == t.size()) return false;  // text ends in a separator
  }
  return !p.numeros.empty();
}

int Inteiro(std::u16string_view d) {
  int v = 0;
  for (char16_t c : d) v = v * 10 + (c - u'0');
  return v;
}

// Years 100 to 9999 of the Gregorian calendar, as the station's dates always were.
bool DataValida(int a, int m, int d) {
  static constexpr int kDiasNoMes[13] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (a < 100 || a > 9999 || m < 1 || m > 12 || d < 1) return false;
  const bool bissexto = a % 4 == 0 && (a % 100 != 0 || a % 400 == 0);
  return d <= kDiasNoMes[m] + (m == 2 && bissexto);
}

// Days from the day zero 30/12/1899 to a valid date, by whole 400-year eras (the calendar
// repeats every 146097 days), without the calendar types: every date of every history load
// comes through here.
int64_t DiasDesdeODiaZero(int a, int m, int d) {
  const int anoMarco = m <= 2 ? a - 1 : a;  // years counted from March, so February ends them
  const int era = anoMarco / 400;
  const int anoDaEra = anoMarco - era * 400;
  const int diaDoAno = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
  const int diaDaEra = anoDaEra * 365 + anoDaEra / 4 - anoDaEra / 100 + diaDoAno;
  // 693899 days from 0000-03-01 to the day zero.
  return static_cast<int64_t>(era) * 146097 + diaDaEra - 693899;
}

std::optional<int64_t> ParteData(std::u16string_view t) {
  Pedacos p;
  if (!Separar(t, p) || p.numeros.size() != 3) return std::nullopt;
  int a, m, d;
  if (p.separadores == u"--" && p.numeros[0].size() == 4) {
    a = Inteiro(p.numeros[0]);
    m = Inteiro(p.numeros[1]);
    d = Inteiro(p.numeros[2]);
  } else if (p.separadores == u"//" && p.numeros[2].size() != 3) {
    d = Inteiro(p.numeros[0]);
    m = Inteiro(p.numeros[1]);
    a = Inteiro(p.numeros[2]);
    if (p.numeros[2].size() <= 2) a += a < 30 ? 2000 : 1900;
  } else {
    return std::nullopt;
  }
  if (p.numeros[0].size() > 4 || !DataValida(a, m, d)) return std::nullopt;
  return DiasDesdeODiaZero(a, m, d) * kSegundosPorDia;
}

std::optional<int64_t> ParteHora(std::u16string_view t) {
  Pedacos p;
  if (!Separar(t, p) || p.numeros.size() < 2 || p.numeros.size() > 3) return std::nullopt;
  for (char16_t s : p.separadores)
    if (s != u':') return std::nullopt;
  for (auto n : p.numeros)
    if (n.size() > 2) return std::nullopt;
  int h = Inteiro(p.numeros[0]), m = Inteiro(p.numeros[1]);
  int s = p.numeros.size() == 3 ? Inteiro(p.numeros[2]) : 0;
  if (h > 23 || m > 59 || s > 59) return std::nullopt;
  return h * 3600 + m * 60 + s;
}

}  // namespace

DataHora MontarDataHora(int ano, int mes, int dia, int hora, int minuto, int segundo) {
  auto dias = (sys_days{year{ano} / month{static_cast<unsigned>(mes)} / day{static_cast<unsigned>(dia)}} - kDiaZero).count();
  return {static_cast<int64_t>(dias) * kSegundosPorDia + hora * 3600 + minuto * 60 + segundo};
}

PartesData Decompor(DataHora d) {
  int64_t dias = DivPiso(d.segundos, kSegundosPorDia);
  int64_t resto = d.segundos - dias * kSegundosPorDia;
  year_month_day ymd{kDiaZero + days{dias}};
  PartesData p;
  p.ano = static_cast<int>(ymd.year());
  p.mes = static_cast<int>(static_cast<unsigned>(ymd.month()));
  p.dia = static_cast<int>(static_cast<unsigned>(ymd.day()));
  p.hora = static_cast<int>(resto / 3600);
  p.minuto = static_cast<int>(resto / 60 % 60);
  p.segundo = static_cast<int>(resto % 60);
  return p;
}

namespace {

// "YYYY-MM-DD HH:MM:SS" (or with "T"), the form the log writer stores, read without splitting;
// nullopt when the text has another shape, and the general reading decides.
template <typename Char>
std::optional<std::optional<DataHora>> DataHoraIso(std::basic_string_view<Char> t) {
  if (t.size() != 19 || t[4] != '-' || t[7] != '-' || (t[10] != ' ' && t[10] != 'T') || t[13] != ':' ||
      t[16] != ':')
    return std::nullopt;
  // Each field by its fixed places; the loop runs for every date of every history load.
  constexpr size_t kInicio[6] = {0, 5, 8, 11, 14, 17}, kFim[6] = {4, 7, 10, 13, 16, 19};
  int v[6];
  for (int k = 0; k < 6; ++k) {
    int n = 0;
    for (size_t i = kInicio[k]; i < kFim[k]; ++i) {
      const Char c = t[i];
      if (c < '0' || c > '9') return std::nullopt;
      n = n * 10 + static_cast<int>(c - '0');
    }
    v[k] = n;
  }
  if (!DataValida(v[0], v[1], v[2]) || v[3] > 23 || v[4] > 59 || v[5] > 59) return std::optional<DataHora>();
  return std::optional<DataHora>(
      DataHora{DiasDesdeODiaZero(v[0], v[1], v[2]) * kSegundosPorDia + v[3] * 3600 + v[4] * 60 + v[5]});
}

}  // namespace

std::optional<DataHora> ConverterDataHora(std::u16string_view t) {
  if (auto iso = DataHoraIso(t)) return *iso;
  while (!t.empty() && (t.front() == u' ' || t.front() == u'\t')) t.remove_prefix(1);
  while (!t.empty() && (t.back() == u' ' || t.back() == u'\t')) t.remove_suffix(1);
  if (t.empty()) return std::nullopt;

  size_t corte = t.find_first_of(u" T");
  if (corte == std::u16string_view::npos) {
    if (auto hora = ParteHora(t)) return DataHora{*hora};
    if (auto data = ParteData(t)) return DataHora{*data};
    return std::nullopt;
  }
  std::u16string_view resto = t.substr(corte + 1);
  while (!resto.empty() && resto.front() == u' ') resto.remove_prefix(1);
  auto data = ParteData(t.substr(0, corte));
  auto hora = ParteHora(resto);
  if (!data || !hora) return std::nullopt;
  return DataHora{*data + *hora};
}

std::optional<DataHora> DataHoraIsoDeBytes(std::string_view texto) {
  auto iso = DataHoraIso(texto);
  return iso ? *iso : std::nullopt;
}

DataHora TextoParaDataHora(std::u16string_view texto) {
  auto d = ConverterDataHora(texto);
  if (!d)
    throw ErroExecucao(CodigoErro::TiposIncompativeis,
                       "Type mismatch: \"" + ParaUtf8(texto) + "\" não é data/hora");
  return *d;
}

int64_t SegundosDoDia(DataHora d) {
  return d.segundos - DivPiso(d.segundos, kSegundosPorDia) * kSegundosPorDia;
}

int64_t DiferencaMinutos(DataHora de, DataHora ate) {
  return DivPiso(ate.segundos, 60) - DivPiso(de.segundos, 60);
}

std::string FormatarIso(DataHora d) {
  PartesData p = Decompor(d);
  char buffer[40];
  std::snprintf(buffer, sizeof buffer, "%04d-%02d-%02d %02d:%02d:%02d", p.ano, p.mes, p.dia, p.hora,
                p.minuto, p.segundo);
  return buffer;
}

}  // namespace lumavox
