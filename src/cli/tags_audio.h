// The tags of one audio file (mp3, ogg, flac, m4a, wav) as the 32 text fields of a song of
// the collection, read with TagLib.
#pragma once

#include <array>
#include <filesystem>
#include <optional>
#include <string>

#include "base/texto.h"

namespace lumavox::cli {

namespace fs = std::filesystem;

using CamposMusica = std::array<Texto, 32>;

// Whether the file's extension is one the importer reads (case ignored).
bool ExtensaoDeAudio(const fs::path& arquivo);

// The fields a standard tag carries (Artista, Album, Title, Faixa, Genero, Compositor, Bpm,
// Lingua, Decada from the year, Nota from a rating) and the audio's DuracaoSec, Bitrate and
// Frequency; a tag named like a field, in capitals and without accents ("VELOCIDADE",
// "FAIXA ETARIA"), fills that field and wins over the standard one. Nothing, with the cause in
// `motivo`, when TagLib cannot read the file as audio.
std::optional<CamposMusica> LerTagsAudio(const fs::path& arquivo, std::string& motivo);

// A rating tag as a Nota from 0 to 10: "0.0".."1.0" as a fraction, up to 5 as stars, up to 10
// as it is, up to 100 as a percentage, up to 255 as the stars of an ID3 popularimeter.
std::optional<int> NotaDaAvaliacao(double valor, bool fracao);

// "80" for 1987, "2010" for 2015: two digits in the 1900s, four otherwise.
Texto DecadaDoAno(int ano);

}  // namespace lumavox::cli
