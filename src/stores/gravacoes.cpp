#include "stores/gravacoes.h"

#include <elf.h>
#include <link.h>
#include <unistd.h>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <vector>

namespace lumavox {

namespace {

constexpr char kAssinatura[8] = {'L', 'X', 'G', 'R', 'A', 'V', '1', '\n'};
constexpr std::string_view kPrefixo = "acervo-";
constexpr std::string_view kTerminacao = ".lxg";
constexpr std::string_view kTerminacaoTemporaria = ".lxg-tmp";
// A temporary file this old was left by a run that stopped while writing it.
constexpr auto kTemporarioAbandonado = std::chrono::hours(1);

int CallbackIdentidade(dl_phdr_info* info, size_t, void* dados) {
  // The first object listed is the program itself.
  auto* saida = static_cast<std::string*>(dados);
  for (int i = 0; i < info->dlpi_phnum; ++i) {
    const ElfW(Phdr)& ph = info->dlpi_phdr[i];
    if (ph.p_type != PT_NOTE) continue;
    const auto* p = reinterpret_cast<const unsigned char*>(info->dlpi_addr + ph.p_vaddr);
    const unsigned char* fim = p + ph.p_memsz;
    while (p + sizeof(ElfW(Nhdr)) <= fim) {
      ElfW(Nhdr) nota;
      std::memcpy(&nota, p, sizeof nota);
      const unsigned char* nome = p + sizeof nota;
      const unsigned char* desc = nome + ((nota.n_namesz + 3) & ~3u);
      const unsigned char* proxima = desc + ((nota.n_descsz + 3) & ~3u);
      if (proxima > fim) break;
      if (nota.n_type == NT_GNU_BUILD_ID && nota.n_namesz == 4 && std::memcmp(nome, "GNU", 4) == 0) {
        saida->assign(reinterpret_cast<const char*>(desc), nota.n_descsz);
        return 1;
      }
      p = proxima;
    }
  }
  return 1;
}

// Checksum of the record: a multiply-and-shift mix over 8-byte words in four independent lanes
// (so the multiplications overlap), enough to tell a torn or damaged file from the one written.
uint64_t Soma(std::string_view bytes) {
  constexpr uint64_t kMistura = 0x9E3779B97F4A7C15ULL;
  uint64_t h[4] = {0x84222325cbf29ce4ULL ^ bytes.size(), 1, 2, 3};
  size_t i = 0;
  for (; i + 32 <= bytes.size(); i += 32) {
    for (int l = 0; l < 4; ++l) {
      uint64_t w;
      std::memcpy(&w, bytes.data() + i + 8 * l, 8);
      h[l] = (h[l] ^ w) * kMistura;
      h[l] ^= h[l] >> 29;
    }
  }
  uint64_t resto[4] = {0, 0, 0, 0};
  std::memcpy(resto, bytes.data() + i, bytes.size() - i);
  uint64_t total = 0;
  for (int l = 0; l < 4; ++l) {
    h[l] = (h[l] ^ resto[l]) * kMistura;
    total = (total ^ h[l] ^ (h[l] >> 32)) * kMistura;
  }
  return total ^ (total >> 32);
}

class Escrita {
 public:
  template <typename T>
  void Valor(T v) {
    bytes_.append(reinterpret_cast<const char*>(&v), sizeof v);
  }
  template <typename T>
  void Vetor(const T* dados, size_t n) {
    bytes_.append(reinterpret_cast<const char*>(dados), n * sizeof(T));
  }
  void Versao(const VersaoArquivo& v) {
    Valor(v.dispositivo);
    Valor(v.inode);
    Valor(v.tamanho);
    Valor(v.modificadoNs);
    Valor(v.mudadoNs);
  }
  std::string& Bytes() { return bytes_; }

 private:
  std::string bytes_;
};

class Leitura {
 public:
  explicit Leitura(std::string_view bytes) : bytes_(bytes) {}
  template <typename T>
  bool Valor(T& v) {
    if (bytes_.size() - pos_ < sizeof v) return false;
    std::memcpy(&v, bytes_.data() + pos_, sizeof v);
    pos_ += sizeof v;
    return true;
  }
  template <typename V>
  bool Vetor(V& v, uint64_t n) {
    using T = typename V::value_type;
    if (n > (bytes_.size() - pos_) / sizeof(T)) return false;
    v.resize(n);
    std::memcpy(v.data(), bytes_.data() + pos_, n * sizeof(T));
    pos_ += n * sizeof(T);
    return true;
  }
  bool Latin1(std::u16string& v, uint64_t n) {
    if (n > bytes_.size() - pos_) return false;
    const auto* b = reinterpret_cast<const unsigned char*>(bytes_.data() + pos_);
    v.resize(n);
    char16_t* d = v.data();
    size_t i = 0;
#ifdef __SSE2__
    // Sixteen characters at a time: a megabyte of tags, widened as fast as it is read.
    const __m128i zero = _mm_setzero_si128();
    for (; i + 16 <= n; i += 16) {
      const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i), _mm_unpacklo_epi8(x, zero));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d + i + 8), _mm_unpackhi_epi8(x, zero));
    }
#endif
    for (; i < n; ++i) d[i] = b[i];
    pos_ += n;
    return true;
  }
  bool Versao(VersaoArquivo& v) {
    return Valor(v.dispositivo) && Valor(v.inode) && Valor(v.tamanho) && Valor(v.modificadoNs) &&
           Valor(v.mudadoNs);
  }
  bool Fim() const { return pos_ == bytes_.size(); }

 private:
  std::string_view bytes_;
  size_t pos_ = 0;
};

std::string Hex(uint64_t v) {
  static const char* kHex = "0123456789abcdef";
  std::string s(16, '0');
  for (int i = 15; i >= 0; --i, v >>= 4) s[static_cast<size_t>(i)] = kHex[v & 15];
  return s;
}

}  // namespace

const std::string& IdentidadeDoPrograma() {
  static const std::string identidade = [] {
    std::string id;
    dl_iterate_phdr(CallbackIdentidade, &id);
    return id;
  }();
  return identidade;
}

std::string SerializarGravacao(const GravacaoAcervo& g, const InsumosGravacao& insumos,
                               std::string_view identidade) {
  Escrita e;
  e.Vetor(kAssinatura, sizeof kAssinatura);
  e.Valor(static_cast<uint32_t>(identidade.size()));
  e.Vetor(identidade.data(), identidade.size());
  e.Versao(insumos.lxdb);
  e.Versao(insumos.mre);
  e.Valor(static_cast<int32_t>(g.total));
  e.Valor(static_cast<int32_t>(g.camposNaSobra));
  e.Valor(static_cast<uint8_t>(g.codigoNaSobra));
  e.Valor(static_cast<uint64_t>(g.codigos.size()));
  e.Valor(static_cast<uint64_t>(g.vibes.size()));
  e.Valor(static_cast<uint64_t>(g.tamanhos.size()));
  e.Valor(static_cast<uint64_t>(g.textos.size()));
  // Tags are mostly Latin-1: one byte a character then, half the file to read and check.
  const bool latin1 = std::all_of(g.textos.begin(), g.textos.end(), [](char16_t c) { return c < 0x100; });
  e.Valor(static_cast<uint8_t>(latin1));
  e.Valor(static_cast<uint64_t>(g.arquivoNaSobra.size()));
  e.Vetor(g.codigos.data(), g.codigos.size());
  e.Vetor(g.vibes.data(), g.vibes.size());
  e.Vetor(g.tamanhos.data(), g.tamanhos.size());
  if (latin1) {
    std::string bytes(g.textos.size(), '\0');
    std::transform(g.textos.begin(), g.textos.end(), bytes.begin(), [](char16_t c) { return static_cast<char>(c); });
    e.Vetor(bytes.data(), bytes.size());
  } else {
    e.Vetor(g.textos.data(), g.textos.size());
  }
  e.Vetor(g.arquivoNaSobra.data(), g.arquivoNaSobra.size());
  e.Valor(Soma(e.Bytes()));
  return std::move(e.Bytes());
}

std::optional<GravacaoAcervo> LerGravacao(std::string_view bytes, const InsumosGravacao& insumos,
                                          std::string_view identidade) {
  if (bytes.size() < sizeof kAssinatura + sizeof(uint64_t)) return std::nullopt;
  const std::string_view corpo = bytes.substr(0, bytes.size() - sizeof(uint64_t));
  uint64_t soma;
  std::memcpy(&soma, bytes.data() + corpo.size(), sizeof soma);
  if (corpo.substr(0, sizeof kAssinatura) != std::string_view(kAssinatura, sizeof kAssinatura) || Soma(corpo) != soma)
    return std::nullopt;

  Leitura l(corpo.substr(sizeof kAssinatura));
  uint32_t tamanhoIdentidade;
  std::string id;
  InsumosGravacao lidos;
  int32_t total, camposNaSobra;
  uint8_t codigoNaSobra, latin1;
  uint64_t nCodigos, nVibes, nTamanhos, nTextos, nArquivo;
  if (!l.Valor(tamanhoIdentidade) || !l.Vetor(id, tamanhoIdentidade) || id != identidade ||
      !l.Versao(lidos.lxdb) || !l.Versao(lidos.mre) || !(lidos == insumos) || !l.Valor(total) ||
      !l.Valor(camposNaSobra) || !l.Valor(codigoNaSobra) || !l.Valor(nCodigos) || !l.Valor(nVibes) ||
      !l.Valor(nTamanhos) || !l.Valor(nTextos) || !l.Valor(latin1) || latin1 > 1 || !l.Valor(nArquivo))
    return std::nullopt;
  // The shape RegravarColecao walks: a record that breaks it was not written by Serializar.
  if (total < 0 || total > kTotalSlots || camposNaSobra < 0 || camposNaSobra > kCampos || codigoNaSobra > 1)
    return std::nullopt;
  if (total == kTotalSlots && (camposNaSobra > 0 || codigoNaSobra)) return std::nullopt;
  const bool descartada = camposNaSobra == kCampos;
  if (nCodigos != static_cast<uint64_t>(total) + codigoNaSobra ||
      nVibes != static_cast<uint64_t>(total) + (descartada ? 1 : 0) ||
      nTamanhos != static_cast<uint64_t>(total) * kCampos + static_cast<uint64_t>(camposNaSobra) ||
      (nArquivo > 0) != descartada)
    return std::nullopt;

  GravacaoAcervo g;
  g.total = static_cast<int16_t>(total);
  g.camposNaSobra = camposNaSobra;
  g.codigoNaSobra = codigoNaSobra != 0;
  if (!l.Vetor(g.codigos, nCodigos) || !l.Vetor(g.vibes, nVibes) || !l.Vetor(g.tamanhos, nTamanhos) ||
      !(latin1 ? l.Latin1(g.textos, nTextos) : l.Vetor(g.textos, nTextos)) || !l.Vetor(g.arquivoNaSobra, nArquivo) ||
      !l.Fim())
    return std::nullopt;
  uint64_t somaTamanhos = 0;
  for (uint32_t t : g.tamanhos) somaTamanhos += t;
  if (somaTamanhos != nTextos) return std::nullopt;
  return g;
}

GuardaGravacoes::GuardaGravacoes(SistemaArquivos& arquivos, fs::path pasta, std::string identidade)
    : arquivos_(arquivos), pasta_(std::move(pasta)), identidade_(std::move(identidade)) {}

fs::path GuardaGravacoes::Arquivo(const InsumosGravacao& insumos) const {
  // Named by where the files live, not by their times: a collection file rewritten in place
  // replaces its record instead of adding one.
  uint64_t h = 0x9E3779B97F4A7C15ULL;
  for (uint64_t v : {insumos.lxdb.dispositivo, insumos.lxdb.inode, insumos.mre.dispositivo, insumos.mre.inode})
    h = (h ^ v) * 0xff51afd7ed558ccdULL, h ^= h >> 33;
  return pasta_ / (std::string(kPrefixo) + Hex(h) + std::string(kTerminacao));
}

std::optional<GravacaoAcervo> GuardaGravacoes::Buscar(const InsumosGravacao& insumos) noexcept {
  // Without a build identity no record can be told apart from another build's.
  if (identidade_.empty()) return std::nullopt;
  try {
    const fs::path arquivo = Arquivo(insumos);
    if (!arquivos_.ArquivoExiste(arquivo)) return std::nullopt;
    return LerGravacao(arquivos_.LerBytes(arquivo), insumos, identidade_);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

void GuardaGravacoes::Guardar(const InsumosGravacao& insumos, const GravacaoAcervo& gravacao) noexcept {
  if (identidade_.empty()) return;
  static std::atomic<unsigned> sequencia{0};
  fs::path temporario;
  try {
    if (!arquivos_.CriarPastas(pasta_)) return;
    const fs::path arquivo = Arquivo(insumos);
    temporario = arquivo;
    temporario += "." + std::to_string(::getpid()) + "-" + std::to_string(++sequencia) + std::string(kTerminacaoTemporaria);
    arquivos_.EscreverBytes(temporario, SerializarGravacao(gravacao, insumos, identidade_));
    arquivos_.Renomear(temporario, arquivo);
  } catch (const std::exception&) {
    if (!temporario.empty()) arquivos_.Apagar(temporario);
    return;
  }
  Podar();
}

void GuardaGravacoes::Podar() noexcept {
  try {
    struct Item {
      fs::file_time_type momento;
      fs::path arquivo;
    };
    std::vector<Item> registros;
    for (const fs::path& p : arquivos_.Listar(pasta_, kTerminacao)) {
      if (!p.filename().string().starts_with(kPrefixo)) continue;
      if (auto m = arquivos_.Marca(p)) registros.push_back({m->first, p});
    }
    if (registros.size() > kMaximoArquivos) {
      std::sort(registros.begin(), registros.end(),
                [](const Item& a, const Item& b) { return a.momento < b.momento; });
      for (size_t i = 0; i < registros.size() - kMaximoArquivos; ++i) arquivos_.Apagar(registros[i].arquivo);
    }
    const auto limite = fs::file_time_type::clock::now() - kTemporarioAbandonado;
    for (const fs::path& p : arquivos_.Listar(pasta_, kTerminacaoTemporaria)) {
      if (!p.filename().string().starts_with(kPrefixo)) continue;
      if (auto m = arquivos_.Marca(p); m && m->first < limite) arquivos_.Apagar(p);
    }
  } catch (const std::exception&) {
  }
}

std::optional<fs::path> PastaGravacoesDoUsuario() {
  auto Variavel = [](const char* nome) -> const char* { return std::getenv(nome); };
  if (const char* v = Variavel("LUMAVOX_CACHE")) {
    if (!*v) return std::nullopt;
    return fs::path(v);
  }
  // systemd's CacheDirectory= may list several folders, separated by colons: the first is ours.
  if (const char* v = Variavel("CACHE_DIRECTORY"); v && *v) {
    std::string_view s(v);
    return fs::path(std::string(s.substr(0, s.find(':'))));
  }
  if (const char* v = Variavel("XDG_CACHE_HOME"); v && *v && fs::path(v).is_absolute()) return fs::path(v) / "lumavox";
  if (const char* v = Variavel("HOME"); v && *v) return fs::path(v) / ".cache" / "lumavox";
  return std::nullopt;
}

}  // namespace lumavox
