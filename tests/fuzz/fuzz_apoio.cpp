#include "fuzz_apoio.h"

#include <unistd.h>

#include <fstream>

#include "base/texto.h"
#include "stores/codec.h"

namespace lumavox::fuzz {

namespace {

struct Pasta {
  // Memory-backed when the machine has it: targets write a file per input.
  const fs::path caminho = (fs::is_directory("/dev/shm") ? fs::path("/dev/shm") : fs::temp_directory_path()) /
                           ("lumavox-fuzz-" + std::to_string(::getpid()));
  ~Pasta() {
    std::error_code ec;
    fs::remove_all(caminho, ec);
  }
};

}  // namespace

fs::path PastaDeTrabalho(std::string_view nome) {
  static const Pasta pasta;
  fs::create_directories(pasta.caminho / nome);
  return pasta.caminho / nome;
}

void Gravar(const fs::path& arquivo, std::string_view bytes) {
  std::ofstream saida(arquivo, std::ios::binary | std::ios::trunc);
  saida.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!saida) Falha("não consegui gravar o arquivo de trabalho");
}

std::string ArquivoCodificado(const uint8_t* dados, size_t tamanho) {
  if (tamanho == 0) return {};
  std::string_view resto(reinterpret_cast<const char*>(dados) + 1, tamanho - 1);
  if ((dados[0] & 1) == 0) return std::string(resto);
  const char* fimDeLinha = (dados[0] & 2) ? "\r\n" : "\n";
  std::string arquivo;
  while (!resto.empty()) {
    const size_t fim = resto.find('\n');
    std::string_view linha = resto.substr(0, fim);
    arquivo += linha.starts_with('!') ? std::string(linha.substr(1)) : ParaUtf8(CodificarLinha(DeUtf8(linha)));
    arquivo += fimDeLinha;
    if (fim == std::string_view::npos) break;
    resto.remove_prefix(fim + 1);
  }
  return arquivo;
}

}  // namespace lumavox::fuzz
