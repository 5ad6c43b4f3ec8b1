#include "base/arquivos.h"

#include "base/erro.h"

namespace lumavox {

std::vector<Texto> LerLinhas(SistemaArquivos& arquivos, const fs::path& caminho) {
  return DividirLinhas(DecodificarBytes(arquivos.LerBytes(caminho)));
}

namespace {

std::string Linha(std::u16string_view linha) {
#ifdef _WIN32
  return ParaUtf8(linha) + "\r\n";
#else
  return ParaUtf8(linha) + "\n";
#endif
}

}  // namespace

void EscreverLinha(SistemaArquivos& arquivos, const fs::path& caminho, std::u16string_view linha) {
  arquivos.EscreverBytes(caminho, Linha(linha));
}

void EscreverInteiro(SistemaArquivos& arquivos, const fs::path& caminho, std::string_view bytes) {
  fs::path parcial = caminho;
  parcial += kTerminacaoParcial;
  try {
    arquivos.EscreverBytes(parcial, bytes);
    arquivos.Sincronizar(parcial);
    arquivos.Renomear(parcial, caminho);
  } catch (...) {
    arquivos.Apagar(parcial);
    throw;
  }
  // The new name itself reaches the disk with its folder. Failing here is no reason to undo
  // what readers can already see: the file is whole either way.
  try {
    arquivos.Sincronizar(caminho.parent_path().empty() ? fs::path(".") : caminho.parent_path());
  } catch (const ErroExecucao&) {
  }
}

void EscreverLinhaInteira(SistemaArquivos& arquivos, const fs::path& caminho, std::u16string_view linha) {
  EscreverInteiro(arquivos, caminho, Linha(linha));
}

std::string LerBytes(const fs::path& caminho) { return ArquivosReais().LerBytes(caminho); }

std::vector<Texto> LerLinhas(const fs::path& caminho) { return LerLinhas(ArquivosReais(), caminho); }

void EscreverBytes(const fs::path& caminho, std::string_view bytes) {
  ArquivosReais().EscreverBytes(caminho, bytes);
}

void EscreverLinha(const fs::path& caminho, std::u16string_view linha) {
  EscreverLinha(ArquivosReais(), caminho, linha);
}

bool ArquivoExiste(const fs::path& caminho) noexcept { return ArquivosReais().ArquivoExiste(caminho); }

fs::path CaminhoDeTexto(std::u16string_view texto) {
  std::string utf8 = ParaUtf8(texto);
#ifndef _WIN32
  for (char& c : utf8)
    if (c == '\\') c = '/';
#endif
  return fs::path(utf8);
}

}  // namespace lumavox
