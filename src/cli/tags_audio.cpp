#include "cli/tags_audio.h"

#include <aifffile.h>
#include <fileref.h>
#include <id3v2tag.h>
#include <mpegfile.h>
#include <popularimeterframe.h>
#include <tpropertymap.h>
#include <wavfile.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "base/numeros.h"
#include "stores/acervo.h"

namespace lumavox::cli {

namespace {

enum Campo : size_t {
  kArtista = 0, kAlbum = 1, kTitle = 2, kFaixa = 4, kGenero = 5, kCompositor = 6, kBpm = 7,
  kNota = 8, kBitrate = 14, kFrequency = 15, kDuracaoSec = 17, kLingua = 29, kDecada = 30,
};

Texto DeTaglib(const TagLib::String& s) { return DeUtf8(s.to8Bit(true)); }

// Several values of one tag become one multi-valued field: artists joined as the engine
// splits them, every other field by ";".
Texto Juntar(const TagLib::StringList& valores, size_t campo) {
  Texto t;
  for (const TagLib::String& v : valores) {
    if (v.isEmpty()) continue;
    if (!t.empty()) t += campo == kArtista ? u" & " : u";";
    t += DeTaglib(v);
  }
  return t;
}

// A field's name as a tag key: capitals without accents, so it fits every tag format.
std::string ChaveDoCampo(std::u16string_view nome) {
  std::string chave;
  for (char16_t c : Maiusculas(nome)) {
    switch (c) {
      case u'Á': case u'À': case u'Â': case u'Ã': c = u'A'; break;
      case u'É': case u'Ê': c = u'E'; break;
      case u'Í': c = u'I'; break;
      case u'Ó': case u'Ô': case u'Õ': c = u'O'; break;
      case u'Ú': case u'Ü': c = u'U'; break;
      case u'Ç': c = u'C'; break;
      default: break;
    }
    chave += static_cast<char>(c < 0x80 ? c : u'_');
  }
  return chave;
}

int EstrelasDoPopularimetro(int valor) {
  if (valor <= 0) return 0;
  if (valor < 64) return 1;
  if (valor < 128) return 2;
  if (valor < 196) return 3;
  if (valor < 255) return 4;
  return 5;
}

// The first popularimeter of an ID3v2 tag (MP3, WAV, AIFF), 0 when there is none.
int Popularimetro(TagLib::File* arquivo) {
  TagLib::ID3v2::Tag* tag = nullptr;
  if (auto* mp3 = dynamic_cast<TagLib::MPEG::File*>(arquivo)) tag = mp3->ID3v2Tag();
  else if (auto* wav = dynamic_cast<TagLib::RIFF::WAV::File*>(arquivo)) tag = wav->ID3v2Tag();
  else if (auto* aiff = dynamic_cast<TagLib::RIFF::AIFF::File*>(arquivo)) tag = aiff->tag();
  if (!tag) return 0;
  for (TagLib::ID3v2::Frame* frame : tag->frameList("POPM"))
    if (auto* popm = dynamic_cast<TagLib::ID3v2::PopularimeterFrame*>(frame)) return popm->rating();
  return 0;
}

Texto Numero(long long n) { return DeUtf8(std::to_string(n)); }

}  // namespace

bool ExtensaoDeAudio(const fs::path& arquivo) {
  std::string ext = arquivo.extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return ext == ".mp3" || ext == ".ogg" || ext == ".flac" || ext == ".m4a" || ext == ".wav";
}

std::optional<int> NotaDaAvaliacao(double valor, bool fracao) {
  if (!(valor >= 0)) return std::nullopt;
  if (fracao && valor <= 1) return static_cast<int>(ArredondarPar(valor * 10));
  if (valor <= 5) return static_cast<int>(ArredondarPar(valor * 2));
  if (valor <= 10) return static_cast<int>(ArredondarPar(valor));
  if (valor <= 100) return static_cast<int>(ArredondarPar(valor / 10));
  if (valor <= 255) return EstrelasDoPopularimetro(static_cast<int>(valor)) * 2;
  return std::nullopt;
}

Texto DecadaDoAno(int ano) {
  const int decada = ano / 10 * 10;
  if (ano >= 1900 && ano < 2000) {
    char dois[4];
    std::snprintf(dois, sizeof dois, "%02d", decada % 100);
    return DeUtf8(dois);
  }
  return Numero(decada);
}

std::optional<CamposMusica> LerTagsAudio(const fs::path& arquivo, std::string& motivo) {
  TagLib::FileRef ref(arquivo.c_str(), true, TagLib::AudioProperties::Average);
  if (ref.isNull() || !ref.file()->isValid()) {
    motivo = "não é um arquivo de áudio que o TagLib leia";
    return std::nullopt;
  }
  const TagLib::AudioProperties* audio = ref.audioProperties();
  // TagLib opens some non-audio files as empty streams; a real one always has a sample rate.
  if (!audio || audio->sampleRate() <= 0) {
    motivo = "nenhum áudio encontrado no arquivo";
    return std::nullopt;
  }

  CamposMusica c{};
  const TagLib::PropertyMap p = ref.file()->properties();
  auto De = [&](const char* chave, size_t campo) {
    auto it = p.find(chave);
    if (it != p.end()) c[campo] = Juntar(it->second, campo);
  };
  De("ARTIST", kArtista);
  De("ALBUM", kAlbum);
  De("TITLE", kTitle);
  De("GENRE", kGenero);
  De("COMPOSER", kCompositor);
  De("BPM", kBpm);
  De("LANGUAGE", kLingua);
  if (const unsigned faixa = ref.tag() ? ref.tag()->track() : 0; faixa > 0) c[kFaixa] = Numero(faixa);
  if (const unsigned ano = ref.tag() ? ref.tag()->year() : 0; ano > 0) c[kDecada] = DecadaDoAno(static_cast<int>(ano));

  std::optional<int> nota;
  for (const char* chave : {"FMPS_RATING", "RATING"}) {
    auto it = p.find(chave);
    if (nota || it == p.end() || it->second.isEmpty()) continue;
    const Texto texto = DeTaglib(it->second.front());
    if (auto v = ConverterNumero(texto))
      nota = NotaDaAvaliacao(*v, texto.find_first_of(u".,") != Texto::npos);
  }
  if (!nota) {
    if (const int popm = Popularimetro(ref.file()); popm > 0) nota = NotaDaAvaliacao(popm, false);
  }
  if (nota) c[kNota] = Numero(*nota);

  const int ms = audio->lengthInMilliseconds();
  // A clip shorter than a second still lasts one: the collection counts whole seconds.
  if (ms > 0) c[kDuracaoSec] = Numero(std::max(1, (ms + 500) / 1000));
  if (audio->bitrate() > 0) c[kBitrate] = Numero(audio->bitrate());
  if (audio->sampleRate() > 0) c[kFrequency] = Numero(audio->sampleRate());

  // The station's own fields, named in the tag itself.
  for (size_t campo = 0; campo < c.size(); ++campo) {
    if (kNomesCampos[campo].empty()) continue;
    auto it = p.find(ChaveDoCampo(kNomesCampos[campo]));
    if (it != p.end()) c[campo] = Juntar(it->second, campo);
  }
  return c;
}

}  // namespace lumavox::cli
