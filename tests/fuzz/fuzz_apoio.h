// What the fuzz targets share: a scratch folder per process, the way an input becomes an
// encoded station file, and the rule that only the engine's own run-time errors may escape.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/erro.h"

namespace lumavox::fuzz {

namespace fs = std::filesystem;

// A folder of this process, made on first use and removed at exit.
const fs::path& PastaDeTrabalho();

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

// Runs `acao`; an ErroExecucao is a normal outcome for bad input, anything else is a defect.
// True when `acao` returned normally.
template <typename F>
bool SoErroExecucao(F&& acao) {
  try {
    acao();
    return true;
  } catch (const ErroExecucao&) {
    return false;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "exceção inesperada: %s\n", e.what());
    std::abort();
  }
}

}  // namespace lumavox::fuzz
