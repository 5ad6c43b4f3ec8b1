#include "base/arquivos.h"

namespace lumavox {

std::vector<Texto> LerLinhas(SistemaArquivos& arquivos, const fs::path& caminho) {
  return DividirLinhas(DecodificarBytes(arquivos.LerBytes(caminho)));
}

void EscreverLinha(SistemaArquivos& arquivos, const fs::path& caminho, std::u16string_view linha) {
#ifdef _WIN32
  arquivos.EscreverBytes(caminho, ParaUtf8(linha) + "\r\n");
#else
  arquivos.EscreverBytes(caminho, ParaUtf8(linha) + "\n");
#endif
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
