#include <gtest/gtest.h>

#include "apoio/estacao.h"
#include "base/datas.h"
#include "base/erro.h"

using namespace lumavox;

// A time alone ("8:00", "23:59:59") falls on day zero.
TEST(ConverterDataHora, FormatosAceitosERecusados) {
  const std::pair<const char16_t*, const char*> casos[] = {
      {u"1/1/29", "2029-01-01 00:00:00"},     {u"31/12/30", "1930-12-31 00:00:00"},
      {u"2026-11-22", "2026-11-22 00:00:00"}, {u"29/02/2028", "2028-02-29 00:00:00"},
      {u" 22/11/2026  8:05:09 ", "2026-11-22 08:05:09"}, {u"8:00", "1899-12-30 08:00:00"},
      {u"2026-11-22T08:00:00", "2026-11-22 08:00:00"}, {u"23:59:59", "1899-12-30 23:59:59"}};
  for (const auto& [texto, iso] : casos) {
    const auto d = ConverterDataHora(texto);
    ASSERT_TRUE(d) << ParaUtf8(texto);
    EXPECT_EQ(FormatarIso(*d), iso);
  }
  for (const char16_t* t : {u"31/02/2026", u"29/02/2026", u"25:00", u"", u"10:00:60", u"22/11", u"22-11-2026",
                            u"22/11/2026 abc", u"8:00 22/11/2026", u"13/13/2026", u"0/11/2026"})
    EXPECT_FALSE(ConverterDataHora(t)) << ParaUtf8(t);
  EXPECT_EQ(teste::ErroDe([] { TextoParaDataHora(u"31/02/2026"); }), CodigoErro::TiposIncompativeis);
}

// The writer's own form is read by a shortcut; a leading blank sends the same text through the
// general reading, and both must agree on every date, valid or not.
TEST(ConverterDataHora, FormaDoGravadorLidaComoPelaLeituraGeral) {
  for (const char16_t* t : {u"2028-02-29 23:59:59", u"2026-02-29 10:00:00", u"2026-1a-01 10:00:00",
                            u"2026-13-01 10:00:00", u"2026-00-10 10:00:00", u"2026-01-32 10:00:00",
                            u"2026-01-01 24:00:00", u"2026-01-01 10:60:00", u"0000-01-01T00:00:59",
                            u"9999-12-31T23:59:59", u"2026-01-01 10:00:60"}) {
    EXPECT_EQ(ConverterDataHora(t), ConverterDataHora(u" " + std::u16string(t))) << ParaUtf8(t);
    EXPECT_EQ(DataHoraIsoDeBytes(ParaUtf8(t)), ConverterDataHora(t)) << ParaUtf8(t);
  }
  // Straight from the bytes only the writer's form is read; the general reading takes the rest.
  for (const char* t : {" 2026-11-22 10:00:00", "22/11/2026 10:00:00"}) EXPECT_FALSE(DataHoraIsoDeBytes(t)) << t;
  // Every day of years around century and leap-day edges, at a time of day that moves, against
  // the calendar types' own count.
  for (int ano : {100, 399, 400, 1899, 1900, 2000, 2024, 2100, 9999})
    for (int64_t dia = MontarDataHora(ano, 1, 1).segundos; dia <= MontarDataHora(ano, 12, 31).segundos;
         dia += kSegundosPorDia) {
      const DataHora d{dia + (dia / kSegundosPorDia % 86400 + 86400) % 86400};
      const std::string iso = FormatarIso(d);
      ASSERT_EQ(DataHoraIsoDeBytes(iso), d) << iso;
      ASSERT_EQ(ConverterDataHora(u" " + DeUtf8(iso)), d) << iso;
    }
}

TEST(DataHora, DatasAntesDoDiaZeroEDiferencaEmMinutos) {
  const DataHora d = MontarDataHora(1899, 12, 29, 18, 30, 15);
  EXPECT_EQ(FormatarIso(d), "1899-12-29 18:30:15");
  EXPECT_EQ(SegundosDoDia(d), 18 * 3600 + 30 * 60 + 15);

  // Minute boundaries crossed, not seconds elapsed.
  auto h = [](int mm, int ss) { return MontarDataHora(2026, 11, 22, 10, mm, ss); };
  for (const auto& [de, ate, minutos] : {std::tuple{h(0, 59), h(1, 0), 1}, {h(0, 0), h(0, 59), 0},
                                         {h(1, 0), h(0, 59), -1}, {d, DataHora{0}, 330}})
    EXPECT_EQ(DiferencaMinutos(de, ate), minutos);
}
