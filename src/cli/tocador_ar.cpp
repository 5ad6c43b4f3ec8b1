#include "cli/tocador_ar.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <system_error>

#include "base/arquivos.h"
#include "base/erro.h"
#include "stores/acervo.h"
#include "stores/banco_sqlite.h"
#include "stores/cliques.h"
#include "stores/historico_sqlite.h"
#include "stores/playlists.h"
#include "stores/saida.h"

namespace lumavox::cli {

namespace {

constexpr long kCampoArtista = 0;
constexpr long kCampoTitle = 2;
// The engine reads a click within a second or two; one older than this was left by a player
// that ran without an engine and must not hold the queue for ever.
constexpr auto kValidadeDoClique = std::chrono::seconds(10);

// The click count is read, changed and written by the on-air hook and by the operator's
// command, which may run at the same moment; a lock on a file beside it keeps them in turn.
class TravaCliques {
 public:
  explicit TravaCliques(const fs::path& pastaApp) {
    fd_ = ::open((PastaDoTocador(pastaApp) / "cliques.trava").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0660);
    if (fd_ >= 0) ::flock(fd_, LOCK_EX);
  }
  ~TravaCliques() {
    if (fd_ >= 0) ::close(fd_);
  }
  TravaCliques(const TravaCliques&) = delete;
  TravaCliques& operator=(const TravaCliques&) = delete;

 private:
  int fd_ = -1;
};

bool CliqueAindaNaoLido(const fs::path& pastaApp) {
  std::error_code ec;
  const auto quando = fs::last_write_time(pastaApp / "avancar.rer", ec);
  return !ec && fs::file_time_type::clock::now() - quando < kValidadeDoClique;
}

// The artist and title of `codigo`, looked up in the collection of the playlist in force and,
// for a song queued before a playlist change, in the other playlists' collections.
std::pair<Texto, Texto> ArtistaETitulo(const fs::path& pastaApp, int32_t codigo, DataHora agora) {
  SistemaArquivos& arquivos = ArquivosReais();
  TabelaPlaylists tabela;
  AbrirPlaylists(arquivos, tabela, pastaApp);
  std::vector<fs::path> pastas{tabela.Playlists[PlaylistDoHorario(tabela, agora)]};
  for (int i = 0; i < tabela.TotalPlaylists; ++i) pastas.push_back(tabela.Playlists[i]);
  auto acervo = std::make_unique<Acervo>();
  for (size_t p = 0; p < pastas.size(); ++p) {
    if (p > 0 && pastas[p] == pastas[0]) continue;
    acervo->TotalMusicas = 0;
    acervo->CaminhoApp = pastaApp;
    acervo->PastaDados = pastas[p];
    try {
      CarregarColecao(arquivos, *acervo, pastas[p], [](long) {});
    } catch (const ErroExecucao&) {
      continue;  // a collection that does not load names no song; the queue still plays
    }
    for (long s = 0; s < acervo->TotalMusicas; ++s)
      if (acervo->AcervoCodigos[s] == codigo) return {Texto(acervo->AcervoTags(s, kCampoArtista)), Texto(acervo->AcervoTags(s, kCampoTitle))};
  }
  return {};
}

// Liquidsoap's annotation values are double-quoted strings.
std::string Aspas(std::string_view texto) {
  std::string s = "\"";
  for (char c : texto) {
    if (c == '"' || c == '\\') s += '\\';
    s += c;
  }
  return s + '"';
}

}  // namespace

fs::path PastaDoTocador(const fs::path& pastaApp) { return pastaApp / "temp" / "tocador"; }
fs::path PedidoDePular(const fs::path& pastaApp) { return PastaDoTocador(pastaApp) / "pular"; }

std::optional<Tomada> TomarProxima(const fs::path& pastaApp, DataHora agora) {
  if (CliqueAindaNaoLido(pastaApp)) return std::nullopt;
  SistemaArquivos& arquivos = ArquivosReais();
  for (const EntradaFila& entrada : ListarFila(arquivos, pastaApp)) {
    const fs::path midia = MidiaDaEntrada(pastaApp, entrada);
    std::string bytes;
    bool lida = true;
    try {
      bytes = arquivos.LerBytes(midia);
    } catch (const ErroExecucao&) {
      lida = false;
    }
    if (lida) {
      ComplementarBytes(bytes);
      Tomada t{entrada, PastaDoTocador(pastaApp) / (entrada.radical + "_" + std::to_string(entrada.codigo) + ExtensaoDoAudio(bytes)), {}, {}};
      arquivos.CriarPastas(PastaDoTocador(pastaApp));
      EscreverInteiro(arquivos, t.audio, bytes);
      ApagarArquivo(arquivos, entrada.arquivo);
      ApagarArquivo(arquivos, midia);
      std::tie(t.artista, t.titulo) = ArtistaETitulo(pastaApp, entrada.codigo, agora);
      // A song no collection names still gets a title a listener can report.
      if (t.artista.empty() && t.titulo.empty()) t.titulo = DeUtf8(std::to_string(entrada.codigo));
      return t;
    }
    // An entry whose media is gone cannot be played: it leaves the queue so the engine refills it.
    ApagarArquivo(arquivos, entrada.arquivo);
  }
  return std::nullopt;
}

std::string AnotacaoLiquidsoap(const Tomada& t) {
  return "annotate:lumavox_entrada=" + Aspas(t.entrada.radical) + ",lumavox_codigo=" + Aspas(std::to_string(t.entrada.codigo)) +
         ",lumavox_nivel=" + Aspas(std::to_string(t.entrada.nivel)) + ",lumavox_artista=" + Aspas(ParaUtf8(t.artista)) +
         ",lumavox_titulo=" + Aspas(ParaUtf8(t.titulo)) + ":" + t.audio.string();
}

void RegistrarNoAr(const fs::path& pastaApp, int32_t codigo, const fs::path& audio, DataHora momento) {
  SistemaArquivos& arquivos = ArquivosReais();
  arquivos.CriarPastas(PastaDoTocador(pastaApp));
  {
    TravaCliques trava(pastaApp);
    const Cliques antes = LerCliques(arquivos, pastaApp);
    const Cliques depois = ContarInicio(antes);
    if (depois.contagem != antes.contagem || depois.pulando != antes.pulando) GravarCliques(arquivos, pastaApp, depois);
  }
  // Songs decoded before this one have left the air (or never reached it, after a skip).
  std::error_code ec;
  const auto esta = fs::last_write_time(audio, ec);
  if (!ec) {
    for (const fs::directory_entry& d : fs::directory_iterator(PastaDoTocador(pastaApp), ec)) {
      std::error_code ec2;
      if (d.path() != audio && d.is_regular_file(ec2) && d.path().filename().string().find('_') != std::string::npos &&
          d.last_write_time(ec2) < esta && !ec2)
        arquivos.Apagar(d.path());
    }
  }
  BancoLogs(pastaApp / kArquivoLogsSqlite).Registrar(RegistroLog{codigo, momento, 0});
}

void DefinirNivel(const fs::path& pastaApp, int nivel) {
  EscreverLinhaInteira(ArquivosReais(), pastaApp / "ritmo.rer", DeUtf8(std::to_string(nivel)));
}

int Avancar(const fs::path& pastaApp) {
  SistemaArquivos& arquivos = ArquivosReais();
  arquivos.CriarPastas(PastaDoTocador(pastaApp));
  Cliques c;
  {
    TravaCliques trava(pastaApp);
    c = ContarAvanco(LerCliques(arquivos, pastaApp));
    GravarCliques(arquivos, pastaApp, c);
  }
  EscreverLinhaInteira(arquivos, pastaApp / "avancar.rer", DeUtf8(std::to_string(c.contagem)));
  // The queued songs were chosen before the click and the engine voids them when it reads it;
  // taking them out now is also what makes it read the click, since it only looks for one when
  // the queue runs short.
  for (const EntradaFila& e : ListarFila(arquivos, pastaApp)) {
    ApagarArquivo(arquivos, e.arquivo);
    ApagarArquivo(arquivos, MidiaDaEntrada(pastaApp, e));
  }
  EscreverInteiro(arquivos, PedidoDePular(pastaApp), "1\n");
  return c.contagem;
}

}  // namespace lumavox::cli
