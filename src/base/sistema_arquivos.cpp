#include "base/sistema_arquivos.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>

namespace lumavox {

ErroExecucao ErroDeArquivo(int numeroErro, const char* acao, const fs::path& caminho) {
  CodigoErro codigo = CodigoErro::ErroDeEntradaSaida;
  if (numeroErro == ENOENT || numeroErro == ENOTDIR) codigo = CodigoErro::ArquivoNaoEncontrado;
  if (numeroErro == EACCES || numeroErro == EPERM || numeroErro == EROFS || numeroErro == EISDIR)
    codigo = CodigoErro::PermissaoNegada;
  return ErroExecucao(codigo, std::string(acao) + " " + caminho.string() + ": " + std::strerror(numeroErro));
}

std::string SistemaArquivosReal::LerBytes(const fs::path& caminho) {
  const int fd = ::open(caminho.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) throw ErroDeArquivo(errno, "File not found:", caminho);
  struct stat st {};
  std::string bytes;
  // Sized once from the file's length: a collection of megabytes read in growing pieces is
  // copied over and over into fresh memory.
  if (::fstat(fd, &st) == 0 && st.st_size > 0) bytes.reserve(static_cast<size_t>(st.st_size) + 1);
  char bloco[65536];
  for (;;) {
    const ssize_t n = ::read(fd, bloco, sizeof bloco);
    if (n > 0) {
      bytes.append(bloco, static_cast<size_t>(n));
    } else if (n == 0) {
      break;
    } else if (errno != EINTR) {
      const int erro = errno;
      ::close(fd);
      throw ErroDeArquivo(erro, "Erro ao ler", caminho);
    }
  }
  ::close(fd);
  return bytes;
}

namespace {

// Closes the descriptor when the operation leaves, whichever way.
class Descritor {
 public:
  explicit Descritor(int fd) : fd_(fd) {}
  ~Descritor() {
    if (fd_ >= 0) ::close(fd_);
  }
  Descritor(const Descritor&) = delete;
  Descritor& operator=(const Descritor&) = delete;
  int Fd() const { return fd_; }
  // The close's own answer: a full disk on a network or delayed-allocation file system may be
  // told only here.
  int Fechar() {
    const int r = ::close(fd_);
    fd_ = -1;
    return r;
  }

 private:
  int fd_;
};

}  // namespace

void SistemaArquivosReal::EscreverBytes(const fs::path& caminho, std::string_view bytes) {
  Descritor arquivo(::open(caminho.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (arquivo.Fd() < 0) throw ErroDeArquivo(errno, "Permission denied:", caminho);
  // write() may take fewer bytes than asked (a signal, a nearly full disk): go on from there.
  while (!bytes.empty()) {
    const ssize_t escritos = ::write(arquivo.Fd(), bytes.data(), bytes.size());
    if (escritos < 0 && errno == EINTR) continue;
    if (escritos <= 0) throw ErroDeArquivo(escritos < 0 ? errno : ENOSPC, "Erro ao gravar", caminho);
    bytes.remove_prefix(static_cast<size_t>(escritos));
  }
  if (arquivo.Fechar() != 0 && errno != EINTR) throw ErroDeArquivo(errno, "Erro ao gravar", caminho);
}

void SistemaArquivosReal::Sincronizar(const fs::path& caminho) {
  Descritor arquivo(::open(caminho.c_str(), O_RDONLY | O_CLOEXEC));
  if (arquivo.Fd() < 0) throw ErroDeArquivo(errno, "Erro ao sincronizar", caminho);
  if (::fsync(arquivo.Fd()) != 0) throw ErroDeArquivo(errno, "Erro ao sincronizar", caminho);
}

void SistemaArquivosReal::Renomear(const fs::path& de, const fs::path& para) {
  std::error_code ec;
  fs::rename(de, para, ec);
  if (ec) throw ErroDeArquivo(ec.value(), "Erro ao renomear", de);
}

bool SistemaArquivosReal::Apagar(const fs::path& caminho) noexcept {
  std::error_code ec;
  return fs::remove(caminho, ec) && !ec;
}

bool SistemaArquivosReal::ArquivoExiste(const fs::path& caminho) noexcept {
  std::error_code ec;
  return fs::is_regular_file(caminho, ec);
}

std::vector<std::string> SistemaArquivos::ListarNomes(const fs::path& pasta, std::string_view terminacao) {
  std::vector<std::string> nomes;
  for (const fs::path& p : Listar(pasta, terminacao)) nomes.push_back(p.filename().string());
  return nomes;
}

std::vector<std::string> SistemaArquivosReal::ListarNomes(const fs::path& pasta, std::string_view terminacao) {
  std::vector<std::string> nomes;
  DIR* d = ::opendir(pasta.c_str());
  if (!d) return nomes;
  errno = 0;
  while (const dirent* e = ::readdir(d)) {
    const std::string_view nome(e->d_name);
    // The name is looked at first: only a matching entry costs a look at its type, and only
    // when the folder's entry does not tell it (or names a link, which counts as its target).
    if (!nome.ends_with(terminacao)) continue;
    bool regular = e->d_type == DT_REG;
    if (e->d_type == DT_UNKNOWN || e->d_type == DT_LNK) {
      struct stat st {};
      regular = ::fstatat(::dirfd(d), e->d_name, &st, 0) == 0 && S_ISREG(st.st_mode);
    }
    if (regular) nomes.emplace_back(nome);
  }
  ::closedir(d);
  return nomes;
}

std::vector<fs::path> SistemaArquivos::NaPasta(const fs::path& pasta, const std::vector<std::string>& nomes) {
  std::vector<fs::path> arquivos;
  arquivos.reserve(nomes.size());
  for (const std::string& nome : nomes) arquivos.push_back(pasta / nome);
  return arquivos;
}

std::vector<fs::path> SistemaArquivosReal::Listar(const fs::path& pasta, std::string_view terminacao) {
  return NaPasta(pasta, ListarNomes(pasta, terminacao));
}

bool SistemaArquivosReal::CriarPastas(const fs::path& pasta) noexcept {
  std::error_code ec;
  fs::create_directories(pasta, ec);
  return !ec;
}

std::optional<MarcaArquivo> SistemaArquivosReal::Marca(const fs::path& caminho) noexcept {
  std::error_code ec;
  const auto momento = fs::last_write_time(caminho, ec);
  if (ec) return std::nullopt;
  const auto tamanho = fs::file_size(caminho, ec);
  if (ec) return std::nullopt;
  return MarcaArquivo{momento, tamanho};
}

std::optional<VersaoArquivo> SistemaArquivosReal::Versao(const fs::path& caminho) noexcept {
  // File times come from a coarse clock (a few milliseconds a tick): a file written in the last
  // two seconds may be written again with the very same times, so it has no version yet.
  constexpr int64_t kRecenteNs = 2'000'000'000;
  struct stat st {};
  if (::stat(caminho.c_str(), &st) != 0) return std::nullopt;
  timespec agora{};
  ::clock_gettime(CLOCK_REALTIME, &agora);
  auto ns = [](const timespec& t) { return static_cast<int64_t>(t.tv_sec) * 1'000'000'000 + t.tv_nsec; };
  const int64_t limite = ns(agora) - kRecenteNs;
  // Only the write time needs to be old: a change of metadata alone (a rename into place, new
  // permissions) shows in the inode or the change time, and never changes the content.
  if (ns(st.st_mtim) > limite) return std::nullopt;
  return VersaoArquivo{static_cast<uint64_t>(st.st_dev), static_cast<uint64_t>(st.st_ino),
                       static_cast<uint64_t>(st.st_size), ns(st.st_mtim), ns(st.st_ctim)};
}

SistemaArquivos& ArquivosReais() {
  static SistemaArquivosReal real;
  return real;
}

}  // namespace lumavox
