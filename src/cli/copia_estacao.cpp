#include "cli/copia_estacao.h"

#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

namespace lumavox::cli {

namespace {

// $TMPDIR when set, else memory-backed /dev/shm where there is one: the player logs every play
// into the copy's database, which a disk-backed folder makes slower.
fs::path PastaTemporaria() {
  const char* tmpdir = std::getenv("TMPDIR");
  std::error_code ec;
  if ((!tmpdir || !*tmpdir) && fs::is_directory("/dev/shm", ec) && access("/dev/shm", W_OK) == 0) return "/dev/shm";
  return fs::temp_directory_path();
}

// The log databases, which their libraries open by name.
bool Banco(std::string_view nome) { return nome.starts_with("lumavox.db") || nome.ends_with(".mdb"); }

bool Copiavel(const std::string& nome) {
  // The player's exchange files and the debug trace belong to the live station.
  if (nome == "ritmo.rer" || nome == "avancar.rer" || nome == "debuglog.rer" || nome == "nreg.rer") return false;
  const std::string ext = fs::path(nome).extension().string();
  return ext == ".rdb" || ext == ".rer" || Banco(nome);
}

}  // namespace

CopiaDaEstacao::CopiaDaEstacao(const fs::path& estacao) {
  std::string modelo = (PastaTemporaria() / "lumavox-simular-XXXXXX").string();
  if (!mkdtemp(modelo.data())) throw std::runtime_error("não foi possível criar a pasta temporária");
  pasta_ = modelo;
  prefixo_ = pasta_.native() + '/';
  mre_ = pasta_ / "mre";
  try {
    memoria_.CriarPastas(mre_);
    Copiar(estacao, pasta_, true);
    const fs::path mreEstacao = estacao / "mre";
    for (std::string& nome : real_.ListarNomes(mreEstacao, ".mre")) midias_.insert(std::move(nome));
    // Taken with the listing: the copy's songs stay what they were, so the engine need not
    // look at them again at every reload.
    versaoMre_ = real_.Versao(mreEstacao);
  } catch (...) {
    std::error_code ec;
    fs::remove_all(pasta_, ec);
    throw;
  }
}

CopiaDaEstacao::~CopiaDaEstacao() {
  std::error_code ec;
  fs::remove_all(pasta_, ec);
}

void CopiaDaEstacao::Copiar(const fs::path& de, const fs::path& para, bool raiz) {
  std::error_code ec;
  for (fs::directory_iterator it(de, ec), fim; !ec && it != fim; it.increment(ec)) {
    const fs::path& p = it->path();
    const std::string nome = p.filename().string();
    if (it->is_directory(ec)) {
      // A linked folder could lead back into the station; playlists are real subfolders.
      if (it->is_symlink(ec) || (raiz && (nome == "mre" || nome == "temp" || nome == "list"))) continue;
      memoria_.CriarPastas(para / nome);
      Copiar(p, para / nome, false);
    } else if (it->is_regular_file(ec) && Copiavel(nome)) {
      if (Banco(nome)) {
        fs::create_directories(para);
        fs::copy_file(p, para / nome, fs::copy_options::overwrite_existing);
        continue;
      }
      const auto versao = nome == "lxdb.rdb" ? real_.Versao(p) : std::nullopt;
      if (versao) {
        // A collection with a version is usually loaded from its record, never read: its
        // megabytes are brought from the station only if the engine asks for them.
        memoria_.Guardar(para / nome, std::string());
        versoes_[CaminhoNormal(para / nome)] = *versao;
        adiados_.emplace(CaminhoNormal(para / nome), p);
      } else {
        memoria_.Guardar(para / nome, real_.LerBytes(p));
      }
    }
  }
}

// Paths are told apart by their text, as the engine builds them from the copy's folder: the
// run asks tens of thousands of times, and splitting each path into parts would cost more.
SistemaArquivos& CopiaDaEstacao::Onde(const fs::path& caminho) noexcept {
  const std::string& s = caminho.native();
  if (!s.starts_with(prefixo_) && s != pasta_.native()) return real_;
  // A path that climbs out of the copy is wherever it ends.
  if (s.find("/..") != std::string::npos) {
    const fs::path normal = caminho.lexically_normal();
    if (normal != pasta_ && !normal.native().starts_with(prefixo_)) return real_;
  }
  const size_t barra = s.rfind('/');
  return Banco(std::string_view(s).substr(barra + 1)) ? static_cast<SistemaArquivos&>(real_) : memoria_;
}

bool CopiaDaEstacao::PastaMre(std::string_view pasta) const {
  return pasta == mre_.native() || (pasta.starts_with(mre_.native()) && fs::path(pasta).lexically_normal() == mre_);
}

bool CopiaDaEstacao::Midia(const fs::path& caminho) const {
  const std::string& s = caminho.native();
  const size_t barra = s.rfind('/');
  if (barra == std::string::npos || !PastaMre(std::string_view(s).substr(0, barra))) return false;
  return midias_.contains(s.substr(barra + 1));
}

void CopiaDaEstacao::Trazer(const fs::path& c) {
  if (adiados_.empty()) return;
  auto it = adiados_.find(CaminhoNormal(c));
  if (it == adiados_.end()) return;
  const fs::path estacao = std::move(it->second);
  adiados_.erase(it);
  std::string bytes;
  try {
    bytes = real_.LerBytes(estacao);
  } catch (const ErroExecucao&) {
  }
  // Changed since the copy began: the copy holds it as it is now, and no record answers for it.
  if (auto v = versoes_.find(CaminhoNormal(c)); v != versoes_.end() && real_.Versao(estacao) != v->second)
    versoes_.erase(v);
  memoria_.Guardar(c, std::move(bytes));
}

void CopiaDaEstacao::Esquecer(const fs::path& c) noexcept {
  if (versoes_.empty()) return;
  const std::string chave = CaminhoNormal(c);
  adiados_.erase(chave);
  versoes_.erase(chave);
}

std::string CopiaDaEstacao::LerBytes(const fs::path& c) {
  if (Midia(c)) return std::string();
  Trazer(c);
  return Onde(c).LerBytes(c);
}
void CopiaDaEstacao::EscreverBytes(const fs::path& c, std::string_view b) {
  Esquecer(c);
  Onde(c).EscreverBytes(c, b);
}
void CopiaDaEstacao::Sincronizar(const fs::path& c) { Onde(c).Sincronizar(c); }
void CopiaDaEstacao::Renomear(const fs::path& de, const fs::path& para) {
  Trazer(de);
  Esquecer(para);
  SistemaArquivos& origem = Onde(de);
  // Between memory and disk there is no rename, as between two disks.
  if (&origem != &Onde(para)) throw ErroDeArquivo(EXDEV, "Erro ao renomear", de);
  origem.Renomear(de, para);
  Esquecer(de);
}
bool CopiaDaEstacao::Apagar(const fs::path& c) noexcept {
  Esquecer(c);
  return Onde(c).Apagar(c);
}
bool CopiaDaEstacao::ArquivoExiste(const fs::path& c) noexcept { return Midia(c) || Onde(c).ArquivoExiste(c); }
bool CopiaDaEstacao::CriarPastas(const fs::path& pasta) noexcept { return Onde(pasta).CriarPastas(pasta); }
std::optional<MarcaArquivo> CopiaDaEstacao::Marca(const fs::path& c) noexcept {
  try {
    Trazer(c);
  } catch (const std::exception&) {
    return std::nullopt;
  }
  return Onde(c).Marca(c);
}

std::vector<fs::path> CopiaDaEstacao::Listar(const fs::path& pasta, std::string_view terminacao) {
  if (!PastaMre(pasta.native())) return Onde(pasta).Listar(pasta, terminacao);
  return NaPasta(mre_, ListarNomes(pasta, terminacao));
}

std::vector<std::string> CopiaDaEstacao::ListarNomes(const fs::path& pasta, std::string_view terminacao) {
  if (!PastaMre(pasta.native())) return Onde(pasta).ListarNomes(pasta, terminacao);
  std::vector<std::string> nomes;
  for (const std::string& nome : midias_)
    if (nome.ends_with(terminacao)) nomes.push_back(nome);
  return nomes;
}

std::optional<VersaoArquivo> CopiaDaEstacao::Versao(const fs::path& c) noexcept {
  if (PastaMre(c.native())) return versaoMre_;
  if (!versoes_.empty())
    if (auto it = versoes_.find(CaminhoNormal(c)); it != versoes_.end()) return it->second;
  return Onde(c).Versao(c);
}

}  // namespace lumavox::cli
