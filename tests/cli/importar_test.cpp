#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <id3v2tag.h>
#include <popularimeterframe.h>
#include <tpropertymap.h>
#include <wavfile.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <tuple>

#include "apoio/estacao.h"
#include "apoio/linha_comando.h"
#include "base/ambiente.h"
#include "cli/tags_audio.h"
#include "engine/motor.h"

namespace lumavox::cli {
namespace {

namespace fs = std::filesystem;
using teste::EstacaoTeste;
using teste::RodarCli;

// A mono 16-bit PCM WAV of `segundos` seconds at 200 samples a second: a few hundred samples.
void GravarWav(const fs::path& arquivo, int segundos) {
  const uint32_t taxa = 200, amostras = taxa * static_cast<uint32_t>(segundos), dados = amostras * 2;
  std::string b;
  auto U32 = [&](uint32_t v) { for (int i = 0; i < 4; ++i) b += static_cast<char>(v >> (8 * i)); };
  auto U16 = [&](uint16_t v) { b += static_cast<char>(v & 0xff); b += static_cast<char>(v >> 8); };
  b += "RIFF"; U32(36 + dados); b += "WAVEfmt "; U32(16); U16(1); U16(1); U32(taxa); U32(taxa * 2); U16(2); U16(16);
  b += "data"; U32(dados);
  for (uint32_t i = 0; i < amostras; ++i) U16(static_cast<uint16_t>((i * 37) % 4000));
  fs::create_directories(arquivo.parent_path());
  std::ofstream(arquivo, std::ios::binary) << b;
}

// Writes the ID3 tag by property name (ARTIST, DATE, VELOCIDADE...), plus a popularimeter 1..255.
void Etiquetar(const fs::path& arquivo, const std::map<std::string, std::string>& campos, int popm = 0) {
  TagLib::RIFF::WAV::File wav(arquivo.c_str());
  ASSERT_TRUE(wav.isValid());
  TagLib::PropertyMap p;
  for (const auto& [nome, valor] : campos) p.insert(nome, TagLib::StringList(TagLib::String(valor, TagLib::String::UTF8)));
  wav.ID3v2Tag()->setProperties(p);
  if (popm > 0) {
    auto* frame = new TagLib::ID3v2::PopularimeterFrame();
    frame->setRating(popm);
    wav.ID3v2Tag()->addFrame(frame);
  }
  ASSERT_TRUE(wav.save());
}

class Importar : public ::testing::Test {
 protected:
  fs::path Musica(const std::string& nome) { return musicas.Caminho(nome); }
  teste::ResultadoCli Rodar() {
    return RodarCli({"importar", "--from", musicas.Pasta().string(), "--dir", estacao.Pasta().string()});
  }
  // The collection as the engine loads it: code -> slot.
  std::map<int32_t, long> Carregar() {
    motor = std::make_unique<Motor>(estacao.Pasta(), ambiente);
    motor->Iniciar();
    EXPECT_FALSE(motor->UltimoErro()) << *motor->UltimoErro();
    std::map<int32_t, long> slots;
    for (long s = 0; s < motor->E().acervo().TotalMusicas; ++s) slots[motor->E().acervo().AcervoCodigos[s]] = s;
    return slots;
  }
  std::string Tag(long slot, long campo) { return ParaUtf8(motor->E().acervo().AcervoTags(slot, campo)); }
  nlohmann::json Mapa() { return nlohmann::json::parse(estacao.Ler("importados.json"))["arquivos"]; }

  EstacaoTeste musicas, estacao;
  AmbienteFixo ambiente{MontarDataHora(2026, 11, 22, 10, 0, 0)};
  std::unique_ptr<Motor> motor;
};

TEST_F(Importar, TagsViramCamposEArquivosViramMidias) {
  GravarWav(Musica("rock/a.wav"), 3);
  Etiquetar(Musica("rock/a.wav"),
            {{"ARTIST", "Ana Lima"}, {"TITLE", "Canção do Mar"}, {"GENRE", "Rock"}, {"DATE", "1987"}, {"VELOCIDADE", "Rápida;"}},
            196);
  GravarWav(Musica("b.WAV"), 5);
  Etiquetar(Musica("b.WAV"), {{"DATE", "2015"}, {"FMPS_RATING", "0.7"}});
  musicas.GravarTexto("c.mp3", "isto não é áudio, só texto com nome de mp3");
  musicas.GravarTexto("capa.jpg", "não é música");

  const teste::ResultadoCli r = Rodar();
  ASSERT_EQ(r.codigo, 0) << r.erros;
  EXPECT_NE(r.saida.find("2 novos, 0 atualizados, 0 sem mudança, 1 ignorados"), std::string::npos);

  const auto mapa = Mapa();
  const int32_t a = mapa["rock/a.wav"]["codigo"], b = mapa["b.WAV"]["codigo"];
  EXPECT_EQ(estacao.Ler("mre/" + NomeArquivoMusica(a)), musicas.Ler("rock/a.wav"));

  const auto slots = Carregar();
  ASSERT_EQ(slots.size(), 2u);
  const long sa = slots.at(a), sb = slots.at(b);
  // Popularimeter 196 is four stars, 0.7 a fraction; 200 samples of 16 bits a second is 3.2 kbit/s.
  for (const auto& [slot, campo, valor] :
       {std::tuple{sa, 0, "Ana Lima"}, {sa, 2, "Canção do Mar"}, {sa, 5, "Rock"}, {sa, 30, "80"}, {sb, 30, "2010"},
        {sa, 8, "8"}, {sb, 8, "7"}, {sa, 17, "3"}, {sb, 17, "5"}, {sa, 15, "200"}, {sa, 14, "3"}, {sa, 18, "Rápida;"}})
    EXPECT_EQ(Tag(slot, campo), valor) << "slot " << slot << ", campo " << campo;
}

// A song the station had before keeps its record, and new codes come after the highest in use.
TEST_F(Importar, ReimportarMantemCodigosAtualizaEAcrescenta) {
  estacao.Musica(5, {{"Artista", "Da Casa"}}).GravarAcervo();
  for (const char* nome : {"1.wav", "2.wav", "3.wav"}) {
    GravarWav(Musica(nome), 2);
    Etiquetar(Musica(nome), {{"ARTIST", std::string("Artista ") + nome}, {"DATE", "2001"}});
  }
  ASSERT_EQ(Rodar().codigo, 0);
  const auto primeiro = Mapa();
  const std::string acervo = estacao.Ler("lxdb.rdb");

  // Nothing changed: the collection file is written again byte for byte.
  Rodar();
  EXPECT_EQ(estacao.Ler("lxdb.rdb"), acervo);

  Etiquetar(Musica("2.wav"), {{"ARTIST", "Outro Nome"}, {"DATE", "1975"}});
  fs::last_write_time(Musica("2.wav"), fs::last_write_time(Musica("2.wav")) + std::chrono::seconds(5));
  fs::remove(Musica("3.wav"));
  GravarWav(Musica("0.wav"), 2);  // sorts first, but gets the next free code
  const teste::ResultadoCli r = Rodar();
  EXPECT_NE(r.saida.find("1 novos, 1 atualizados, 1 sem mudança, 0 ignorados, 1 saíram do acervo"), std::string::npos)
      << r.saida;

  const auto mapa = Mapa();
  for (const char* nome : {"1.wav", "2.wav", "3.wav"}) EXPECT_EQ(mapa[nome]["codigo"], primeiro[nome]["codigo"]);
  EXPECT_FALSE(mapa["3.wav"]["presente"].get<bool>());
  EXPECT_EQ(mapa["0.wav"]["codigo"], 9);

  const auto slots = Carregar();
  EXPECT_EQ(slots.size(), 4u);
  EXPECT_EQ(Tag(slots.at(5), 0), "Da Casa");
  EXPECT_EQ(Tag(slots.at(mapa["2.wav"]["codigo"]), 0), "Outro Nome");

  EXPECT_EQ(RodarCli({"importar", "--from", "/nao/existe", "--dir", estacao.Pasta().string()}).codigo, 2);
}

TEST(NotaDaAvaliacao, EscalasComunsEForaDeEscala) {
  // Stars, a plain grade, percent, a five-star popularimeter, and a value of no scale.
  for (const auto& [valor, nota] : {std::pair{4, std::optional<int>(8)}, {9, 9}, {73, 7}, {255, 10}, {300, std::nullopt}})
    EXPECT_EQ(NotaDaAvaliacao(valor, false), nota) << valor;
}

}  // namespace
}  // namespace lumavox::cli
