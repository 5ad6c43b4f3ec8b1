#include "stores/fila.h"

#include <algorithm>
#include <charconv>

namespace lumavox {

namespace {

template <typename Inteiro>
bool LerInteiro(std::string_view texto, Inteiro& valor) {
  if (texto.empty() || !std::all_of(texto.begin(), texto.end(), [](char c) { return c >= '0' && c <= '9'; }))
    return false;
  const auto [fim, erro] = std::from_chars(texto.data(), texto.data() + texto.size(), valor);
  return erro == std::errc() && fim == texto.data() + texto.size();
}

}  // namespace

std::optional<EntradaFila> LerNomeFila(const std::string& nome) {
  constexpr std::string_view kExtensao = ".lre";
  if (nome.size() <= kExtensao.size() || !nome.ends_with(kExtensao)) return std::nullopt;
  const std::string_view corpo(nome.data(), nome.size() - kExtensao.size());
  const size_t a = corpo.find('_');
  const size_t b = a == std::string_view::npos ? a : corpo.find('_', a + 1);
  if (b == std::string_view::npos || corpo.find('_', b + 1) != std::string_view::npos) return std::nullopt;
  EntradaFila e;
  if (!LerInteiro(corpo.substr(0, a), e.contador) || !LerInteiro(corpo.substr(a + 1, b - a - 1), e.codigo) ||
      !LerInteiro(corpo.substr(b + 1), e.nivel))
    return std::nullopt;
  e.radical = std::string(corpo.substr(0, a));
  return e;
}

std::vector<EntradaFila> ListarFila(SistemaArquivos& arquivos, const fs::path& pastaApp) {
  std::vector<EntradaFila> fila;
  for (const fs::path& arquivo : arquivos.Listar(pastaApp / "list", ".lre")) {
    if (auto e = LerNomeFila(arquivo.filename().string())) {
      e->arquivo = arquivo;
      fila.push_back(std::move(*e));
    }
  }
  std::sort(fila.begin(), fila.end(), [](const EntradaFila& x, const EntradaFila& y) {
    return x.contador != y.contador ? x.contador < y.contador : x.arquivo < y.arquivo;
  });
  return fila;
}

fs::path MidiaDaEntrada(const fs::path& pastaApp, const EntradaFila& entrada) {
  return pastaApp / "temp" / (entrada.radical + ".mrt");
}

void ComplementarBytes(std::string& bytes) {
  for (char& b : bytes) b = static_cast<char>(255 - static_cast<unsigned char>(b));
}

std::string ExtensaoDoAudio(std::string_view b) {
  auto comeca = [&](size_t em, std::string_view marca) { return b.substr(std::min(em, b.size()), marca.size()) == marca; };
  if (comeca(0, "OggS")) return ".ogg";
  if (comeca(0, "fLaC")) return ".flac";
  if (comeca(0, "RIFF") && comeca(8, "WAVE")) return ".wav";
  if (comeca(4, "ftyp")) return ".m4a";
  if (comeca(0, "ID3")) return ".mp3";
  // An MPEG audio frame starts with eleven set bits.
  if (b.size() >= 2 && static_cast<unsigned char>(b[0]) == 0xFF && (static_cast<unsigned char>(b[1]) & 0xE0) == 0xE0)
    return ".mp3";
  return ".bin";
}

}  // namespace lumavox
