#include "apoio/sistema_arquivos_falho.h"

#include <algorithm>
#include <cerrno>

namespace lumavox::teste {

fs::path SistemaArquivosFalho::Normal(const fs::path& caminho) {
  fs::path normal = caminho.lexically_normal();
  // "list/" and "list" are the same folder.
  if (!normal.has_filename() && normal.has_relative_path()) normal = normal.parent_path();
  return normal;
}

bool SistemaArquivosFalho::Abrange(const std::vector<fs::path>& raizes, const fs::path& caminho) {
  const fs::path alvo = Normal(caminho);
  return std::any_of(raizes.begin(), raizes.end(), [&](const fs::path& raiz) {
    return std::mismatch(raiz.begin(), raiz.end(), alvo.begin(), alvo.end()).first == raiz.end();
  });
}

void SistemaArquivosFalho::Permitir() {
  leituraNegada_.clear();
  apagarNegado_.clear();
  renomearNegado_.clear();
}

void SistemaArquivosFalho::SumirSeMarcado(const fs::path& caminho) noexcept {
  const fs::path normal = Normal(caminho);
  const auto it = std::find(sumir_.begin(), sumir_.end(), normal);
  if (it == sumir_.end()) return;
  sumir_.erase(it);
  base_.Apagar(caminho);
}

std::string SistemaArquivosFalho::LerBytes(const fs::path& caminho) {
  if (Abrange(leituraNegada_, caminho)) throw ErroDeArquivo(EACCES, "File not found:", caminho);
  return base_.LerBytes(caminho);
}

void SistemaArquivosFalho::EscreverBytes(const fs::path& caminho, std::string_view bytes) {
  if (!restante_ || bytes.size() <= *restante_) {
    base_.EscreverBytes(caminho, bytes);
    if (restante_) *restante_ -= bytes.size();
    return;
  }
  base_.EscreverBytes(caminho, bytes.substr(0, static_cast<size_t>(*restante_)));
  restante_ = 0;
  throw ErroDeArquivo(ENOSPC, "Erro ao gravar", caminho);
}

void SistemaArquivosFalho::Renomear(const fs::path& de, const fs::path& para) {
  if (Abrange(renomearNegado_, de) || Abrange(renomearNegado_, para))
    throw ErroDeArquivo(EACCES, "Erro ao renomear", de);
  base_.Renomear(de, para);
}

bool SistemaArquivosFalho::Apagar(const fs::path& caminho) noexcept {
  if (Abrange(apagarNegado_, caminho)) return false;
  return base_.Apagar(caminho);
}

bool SistemaArquivosFalho::ArquivoExiste(const fs::path& caminho) noexcept {
  const bool existe = base_.ArquivoExiste(caminho);
  if (existe) SumirSeMarcado(caminho);
  return existe;
}

std::vector<fs::path> SistemaArquivosFalho::Listar(const fs::path& pasta, std::string_view terminacao) {
  std::vector<fs::path> lista = base_.Listar(pasta, terminacao);
  for (const fs::path& arquivo : lista) SumirSeMarcado(arquivo);
  return lista;
}

std::optional<MarcaArquivo> SistemaArquivosFalho::Marca(const fs::path& caminho) noexcept {
  return base_.Marca(caminho);
}

}  // namespace lumavox::teste
