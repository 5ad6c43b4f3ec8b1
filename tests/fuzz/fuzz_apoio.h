// What the fuzz targets share: a scratch folder per process, the way an input becomes an
// encoded station file, and the rule that only the engine's own run-time errors may escape.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "base/erro.h"

namespace lumavox::fuzz {

namespace fs = std::filesystem;

// A folder of this process, removed at exit, or the folder `nome` in it; made when missing.
fs::path PastaDeTrabalho(std::string_view nome = "");

void Gravar(const fs::path& arquivo, std::string_view bytes);

// The first byte chooses the form of the file: even, the rest is written as it is; odd, each
// line of the rest is plain UTF-8 that is written encoded, except lines that start with "!",
// which go in raw. The fuzzer can then reach the records' structure without having to learn
// the five-digit encoding, and still feed the decoder broken lines.
std::string ArquivoCodificado(const uint8_t* dados, size_t tamanho);

[[noreturn]] inline void Falha(const char* descricao) {
  std::fprintf(stderr, "FALHA: %s\n", descricao);
  std::abort();
}

// Runs `acao`: the code of the ErroExecucao it raises, a normal outcome for bad input, or
// nothing when it returns normally. Any other exception is a defect.
template <typename F>
std::optional<CodigoErro> ErroDe(F&& acao) {
  try {
    acao();
    return std::nullopt;
  } catch (const ErroExecucao& e) {
    return e.Codigo();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "exceção inesperada: %s\n", e.what());
    std::abort();
  }
}

}  // namespace lumavox::fuzz
