#include "base/sistema_arquivos_memoria.h"

#include <cerrno>
#include <chrono>
#include <utility>
#include <vector>

namespace lumavox {

namespace {

}  // namespace

// The paths the engine builds are already normal and are taken as they are, sparing a
// normalisation per call.
std::string CaminhoNormal(const fs::path& p) {
  const std::string& s = p.native();
  bool simples = !s.empty() && s.front() != '.';
  for (size_t i = 0; simples && i < s.size(); ++i) {
    if (s[i] != '/') continue;
    if (i + 1 == s.size()) {
      simples = i == 0;
    } else if (s[i + 1] == '/') {
      simples = false;
    } else if (s[i + 1] == '.') {
      size_t j = i + 2;
      if (j < s.size() && s[j] == '.') ++j;
      simples = j < s.size() && s[j] != '/';
    }
  }
  if (simples) return s;
  std::string n = p.lexically_normal().native();
  while (n.size() > 1 && n.back() == '/') n.pop_back();
  return n;
}

namespace {

std::string Normal(const fs::path& p) { return CaminhoNormal(p); }

// The folder and the name of a normal path; the name is empty for the root.
std::pair<std::string_view, std::string_view> Dividir(std::string_view s) {
  const size_t barra = s.rfind('/');
  if (barra == std::string_view::npos) return {std::string_view(), s};
  return {barra == 0 ? s.substr(0, 1) : s.substr(0, barra), s.substr(barra + 1)};
}

}  // namespace

SistemaArquivosMemoria::Pasta* SistemaArquivosMemoria::PastaDe(std::string_view pasta) {
  auto it = pastas_.find(pasta);
  return it == pastas_.end() ? nullptr : &it->second;
}

SistemaArquivosMemoria::Arquivo* SistemaArquivosMemoria::ArquivoEm(std::string_view caminho) {
  const auto [pasta, nome] = Dividir(caminho);
  Pasta* p = PastaDe(pasta);
  if (!p || nome.empty()) return nullptr;
  auto it = p->find(nome);
  return it == p->end() ? nullptr : &it->second;
}

std::string SistemaArquivosMemoria::LerBytes(const fs::path& caminho) {
  const std::string s = Normal(caminho);
  if (const Arquivo* a = ArquivoEm(s)) return a->bytes;
  if (PastaDe(s)) throw ErroDeArquivo(EISDIR, "Erro ao ler", caminho);
  throw ErroDeArquivo(ENOENT, "File not found:", caminho);
}

void SistemaArquivosMemoria::Guardar(const fs::path& caminho, std::string&& bytes) {
  const std::string s = Normal(caminho);
  const auto [pasta, nome] = Dividir(s);
  Pasta* p = PastaDe(pasta);
  if (!p) throw ErroDeArquivo(ENOENT, "Permission denied:", caminho);
  if (nome.empty() || PastaDe(s)) throw ErroDeArquivo(EISDIR, "Permission denied:", caminho);
  auto it = p->find(nome);
  if (it == p->end()) it = p->emplace(std::string(nome), Arquivo{}).first;
  it->second.bytes = std::move(bytes);
  it->second.escrito = ++relogio_;
}

void SistemaArquivosMemoria::EscreverBytes(const fs::path& caminho, std::string_view bytes) {
  Guardar(caminho, std::string(bytes));
}

void SistemaArquivosMemoria::Sincronizar(const fs::path& caminho) {
  const std::string s = Normal(caminho);
  if (!ArquivoEm(s) && !PastaDe(s)) throw ErroDeArquivo(ENOENT, "Erro ao sincronizar", caminho);
}

void SistemaArquivosMemoria::Renomear(const fs::path& de, const fs::path& para) {
  const std::string origem = Normal(de), destino = Normal(para);
  const auto [pastaDe, nomeDe] = Dividir(origem);
  const auto [pastaPara, nomePara] = Dividir(destino);
  Pasta* pDe = PastaDe(pastaDe);
  if (!pDe || nomeDe.empty() || !pDe->contains(nomeDe)) {
    // Folders are made, never moved, in the runs this serves.
    throw ErroDeArquivo(PastaDe(origem) ? EXDEV : ENOENT, "Erro ao renomear", de);
  }
  Pasta* pPara = PastaDe(pastaPara);
  if (!pPara) throw ErroDeArquivo(ENOENT, "Erro ao renomear", de);
  if (nomePara.empty() || PastaDe(destino)) {
    // Onto a folder that holds the file itself, the system answers that the folder is not empty.
    const bool dentro = origem.size() > destino.size() && origem.starts_with(destino) && origem[destino.size()] == '/';
    throw ErroDeArquivo(dentro ? ENOTEMPTY : EISDIR, "Erro ao renomear", de);
  }
  if (origem == destino) return;
  auto no = pDe->extract(pDe->find(nomeDe));
  no.key() = std::string(nomePara);
  pPara->erase(no.key());
  pPara->insert(std::move(no));
}

bool SistemaArquivosMemoria::Apagar(const fs::path& caminho) noexcept {
  const std::string s = Normal(caminho);
  const auto [pasta, nome] = Dividir(s);
  if (Pasta* p = PastaDe(pasta); p && !nome.empty()) {
    if (auto it = p->find(nome); it != p->end()) {
      p->erase(it);
      return true;
    }
  }
  // An empty folder goes too, as a real one would.
  auto it = pastas_.find(s);
  if (it == pastas_.end() || !it->second.empty()) return false;
  for (const auto& [outra, conteudo] : pastas_)
    if (outra.size() > s.size() && outra.starts_with(s) && (s == "/" || outra[s.size()] == '/')) return false;
  pastas_.erase(it);
  return true;
}

bool SistemaArquivosMemoria::ArquivoExiste(const fs::path& caminho) noexcept {
  return ArquivoEm(Normal(caminho)) != nullptr;
}

std::vector<std::string> SistemaArquivosMemoria::ListarNomes(const fs::path& pasta, std::string_view terminacao) {
  std::vector<std::string> nomes;
  if (const Pasta* p = PastaDe(Normal(pasta)))
    for (const auto& [nome, arquivo] : *p)
      if (nome.ends_with(terminacao)) nomes.push_back(nome);
  return nomes;
}

std::vector<fs::path> SistemaArquivosMemoria::Listar(const fs::path& pasta, std::string_view terminacao) {
  return NaPasta(pasta, ListarNomes(pasta, terminacao));
}

bool SistemaArquivosMemoria::CriarPastas(const fs::path& pasta) noexcept {
  std::string atual = Normal(pasta);
  if (atual.empty()) return false;
  std::vector<std::string> faltam;
  while (!PastaDe(atual)) {
    const auto [pai, nome] = Dividir(atual);
    // A file of that name stands where the folder would go.
    if (const Pasta* p = PastaDe(pai); p && !nome.empty() && p->contains(nome)) return false;
    const bool raiz = nome.empty() || pai.empty();
    std::string proxima(pai);
    faltam.push_back(std::move(atual));
    if (raiz) break;
    atual = std::move(proxima);
  }
  for (std::string& f : faltam) pastas_.try_emplace(std::move(f));
  return true;
}

std::optional<MarcaArquivo> SistemaArquivosMemoria::Marca(const fs::path& caminho) noexcept {
  const Arquivo* a = ArquivoEm(Normal(caminho));
  if (!a) return std::nullopt;
  return MarcaArquivo{fs::file_time_type(std::chrono::nanoseconds(a->escrito)), a->bytes.size()};
}

}  // namespace lumavox
