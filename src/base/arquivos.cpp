#include "base/arquivos.h"

#include <cerrno>
#include <cstring>
#include <fstream>

#include "base/erro.h"

namespace lumavox {

namespace {

[[noreturn]] void ErroArquivo(const fs::path& caminho, const char* acao) {
  int e = errno;
  CodigoErro codigo = CodigoErro::ErroDeEntradaSaida;
  if (e == ENOENT || e == ENOTDIR) codigo = CodigoErro::ArquivoNaoEncontrado;
  if (e == EACCES || e == EPERM || e == EROFS || e == EISDIR) codigo = CodigoErro::PermissaoNegada;
  throw ErroExecucao(codigo, std::string(acao) + " " + caminho.string() + ": " + std::strerror(e));
}

}  // namespace

std::string LerBytes(const fs::path& caminho) {
  errno = 0;
  std::ifstream entrada(caminho, std::ios::binary);
  if (!entrada) ErroArquivo(caminho, "File not found:");
  std::string bytes;
  char bloco[65536];
  while (entrada.read(bloco, sizeof bloco) || entrada.gcount() > 0)
    bytes.append(bloco, static_cast<size_t>(entrada.gcount()));
  if (entrada.bad()) ErroArquivo(caminho, "Erro ao ler");
  return bytes;
}

std::vector<Texto> LerLinhas(const fs::path& caminho) {
  return DividirLinhas(DecodificarBytes(LerBytes(caminho)));
}

void EscreverBytes(const fs::path& caminho, std::string_view bytes) {
  errno = 0;
  std::ofstream saida(caminho, std::ios::binary | std::ios::trunc);
  if (!saida) ErroArquivo(caminho, "Permission denied:");
  saida.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  saida.close();
  if (!saida) ErroArquivo(caminho, "Erro ao gravar");
}

void EscreverLinha(const fs::path& caminho, std::u16string_view linha) {
#ifdef _WIN32
  EscreverBytes(caminho, ParaUtf8(linha) + "\r\n");
#else
  EscreverBytes(caminho, ParaUtf8(linha) + "\n");
#endif
}

bool ArquivoExiste(const fs::path& caminho) noexcept {
  std::error_code ec;
  return fs::is_regular_file(caminho, ec);
}

fs::path CaminhoDeTexto(std::u16string_view texto) {
  std::string utf8 = ParaUtf8(texto);
#ifndef _WIN32
  for (char& c : utf8)
    if (c == '\\') c = '/';
#endif
  return fs::path(utf8);
}

}  // namespace lumavox
