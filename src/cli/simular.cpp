// lumavox-cli simular: hours of air time in seconds, on a scratch copy of the station so its
// real queue, media hand-over and log stay untouched. The engine runs as it does on air; the
// stand-in player plays each chosen song to the end of its DuracaoSec (the clock jumps), skips
// only when asked (--avancar) and logs its plays into the copy's log database; the level comes
// from --nivel, a daily curve (--curva) or the station's ritmo.rer.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>

#include <unistd.h>

#include "base/arquivos.h"
#include "base/numeros.h"
#include "cli/curva_nivel.h"
#include "cli/progresso.h"
#include "cli/relatorio.h"
#include "cli/simulacao.h"
#include "cli/simulacao_html.h"
#include "cli/simulacao_json.h"
#include "cli/subcomandos.h"
#include "cli/tocador.h"
#include "engine/instalacao.h"
#include "engine/motor.h"
#include "rules/candidatos.h"
#include "rules/tags.h"
#include "stores/saida.h"

namespace lumavox::cli {

namespace {

constexpr long kCampoArtista = 0, kCampoTitle = 2;

struct OpcoesSimular {
  std::string dir, inicio, curva, relatorio;
  int horas = 24;
  std::optional<int> nivel;
  uint32_t semente = 1;
  int avancar = 0;
  bool json = false;
};

// A scratch copy of the station: the text files the engine reads (collection, rules, playlist
// and schedule tables, log database), in their folders, and an empty stand-in for each media
// file, enough for the load to keep every song without copying gigabytes of audio. It goes
// away with the object.
class CopiaDaEstacao {
 public:
  explicit CopiaDaEstacao(const fs::path& estacao) {
    std::string modelo = (PastaTemporaria() / "lumavox-simular-XXXXXX").string();
    if (!mkdtemp(modelo.data())) throw std::runtime_error("não foi possível criar a pasta temporária");
    pasta_ = modelo;
    Copiar(estacao, pasta_, true);
    fs::create_directories(pasta_ / "mre");
    std::error_code ec;
    for (fs::directory_iterator it(estacao / "mre", ec), fim; !ec && it != fim; it.increment(ec))
      if (it->path().extension() == ".mre") EscreverBytes(pasta_ / "mre" / it->path().filename(), "");
    // The copies keep the station's write times, so the engine can tell at once that they have
    // not changed since and need not be read again at every reload.
    fs::last_write_time(pasta_ / "mre", fs::last_write_time(estacao / "mre", ec), ec);
  }
  ~CopiaDaEstacao() {
    std::error_code ec;
    fs::remove_all(pasta_, ec);
  }
  CopiaDaEstacao(const CopiaDaEstacao&) = delete;
  CopiaDaEstacao& operator=(const CopiaDaEstacao&) = delete;
  const fs::path& Pasta() const { return pasta_; }

 private:
  // $TMPDIR when set, else memory-backed /dev/shm where there is one: the run creates and
  // deletes two files per song and stats every media file at each reload, which a disk-backed
  // folder makes several times slower.
  static fs::path PastaTemporaria() {
    const char* tmpdir = std::getenv("TMPDIR");
    std::error_code ec;
    if ((!tmpdir || !*tmpdir) && fs::is_directory("/dev/shm", ec) && access("/dev/shm", W_OK) == 0) return "/dev/shm";
    return fs::temp_directory_path();
  }

  static bool Copiavel(const fs::path& arquivo) {
    const std::string nome = arquivo.filename().string();
    // The player's exchange files and the debug trace belong to the live station.
    if (nome == "ritmo.rer" || nome == "avancar.rer" || nome == "debuglog.rer" || nome == "nreg.rer") return false;
    const std::string ext = arquivo.extension().string();
    return ext == ".rdb" || ext == ".rer" || ext == ".mdb" || nome.rfind("lumavox.db", 0) == 0;
  }

  void Copiar(const fs::path& de, const fs::path& para, bool raiz) {
    std::error_code ec;
    for (fs::directory_iterator it(de, ec), fim; !ec && it != fim; it.increment(ec)) {
      const fs::path& p = it->path();
      const std::string nome = p.filename().string();
      if (it->is_directory(ec)) {
        // A linked folder could lead back into the station; playlists are real subfolders.
        if (it->is_symlink(ec) || (raiz && (nome == "mre" || nome == "temp" || nome == "list"))) continue;
        fs::create_directories(para / nome);
        Copiar(p, para / nome, false);
      } else if (it->is_regular_file(ec) && Copiavel(p)) {
        fs::copy_file(p, para / nome, fs::copy_options::overwrite_existing);
        fs::last_write_time(para / nome, fs::last_write_time(p, ec), ec);
      }
    }
  }

  fs::path pasta_;
};

std::atomic<bool> g_interromper{false};

extern "C" void PedirInterrupcao(int) { g_interromper = true; }

// Ctrl-C or SIGTERM end the run at the next song, so the scratch copy is still removed.
class InterrupcaoLimpa {
 public:
  InterrupcaoLimpa() {
    g_interromper = false;
    std::signal(SIGINT, PedirInterrupcao);
    std::signal(SIGTERM, PedirInterrupcao);
  }
  ~InterrupcaoLimpa() {
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
  }
};

// Adds this selection's rule outcomes, read from its subtree of the rule log.
void ContarRegras(const Estado& e, const SelecaoFeita& selecao, Simulacao& sim) {
  const NoLog* pai = ProcurarSelecao(e, selecao.chaveLog);
  if (!pai) return;
  for (const NoLog& no : pai->filhos) {
    if (no.tipo != TipoLog::Aplicada && no.tipo != TipoLog::Negada && no.tipo != TipoLog::NaoRealizada &&
        no.tipo != TipoLog::Erro)
      continue;
    ContagemRegra& c = sim.regras[{selecao.conjunto, no.regraNumero, no.id}];
    if (c.numero == 0) {
      c.conjunto = selecao.conjunto;
      c.numero = no.regraNumero;
      c.id = no.id;
      const long indice = no.regraNumero - 1;
      if (indice >= 0 && indice < kRegrasPorConjunto) c.descricao = e.catalogo.CatalogoRegras(selecao.conjunto, indice).Descricao;
    }
    switch (no.tipo) {
      case TipoLog::Aplicada:
        ++c.aplicada;
        if (!no.musicas.empty()) ++c.removeu;
        break;
      case TipoLog::Negada: ++c.negada; break;
      case TipoLog::NaoRealizada: ++c.naoRealizada; break;
      default:
        ++c.erro;
        c.ultimoErro = no.erro;
    }
  }
}

std::string Decimal(double v, int casas) {
  char texto[32];
  std::snprintf(texto, sizeof texto, "%.*f", casas, v);
  return texto;
}

void ImprimirResumo(std::ostream& out, const Simulacao& s, const Figuras& f) {
  out << "Simulação de " << FormatarIso(s.inicio).substr(0, 16) << " a " << FormatarIso(s.fim).substr(0, 16) << ": "
      << s.tocadas.size() << " músicas tocadas (" << f.avancadas << " avançadas), " << s.escolhidas
      << " escolhas, acervo de " << s.totalMusicas << " músicas, em " << Decimal(s.segundosDeExecucao, 2) << " s\n";
  auto Caso = [&](const char* rotulo, const Intervalo& i) {
    out << "Menor intervalo, mesmo " << rotulo << ": ";
    if (!i.musicas) {
      out << "nenhuma repetição\n";
      return;
    }
    out << i.musicas->valor << (i.musicas->valor == 1 ? " música, " : " músicas, ") << Decimal(i.minutos->valor, 1) << " minutos\n";
  };
  Caso("artista", f.artista);
  Caso("título", f.titulo);
  for (const std::string& aviso : s.avisos) out << "aviso: " << aviso << "\n";
  for (const auto& [chave, r] : s.regras)
    out << "  conjunto " << r.conjunto << " regra " << r.numero << " (" << ParaUtf8(r.id) << "): " << r.aplicada
        << " aplicada, " << r.negada << " negada, " << r.naoRealizada << " não realizada, " << r.erro << " erro\n";
}

void ExecutarSimular(Contexto& ctx, const OpcoesSimular& op) {
  const auto relogio = std::chrono::steady_clock::now();
  auto Falhar = [&](const std::string& mensagem, int codigo) {
    ctx.erros << "lumavox-cli: " << mensagem << "\n";
    ctx.codigoSaida = codigo;
  };
  const fs::path estacao = ResolverPastaApp(op.dir);
  if (!PastaAppValida(ctx, estacao)) return;
  DataHora inicio = SoData(AgoraLocal());
  if (!op.inicio.empty()) {
    auto d = ConverterDataHora(DeUtf8(op.inicio));
    if (!d) return Falhar("--inicio inválido: " + op.inicio + " (use \"YYYY-MM-DD HH:MM\")", 2);
    inicio = *d;
  }
  std::optional<CurvaNivel> curva;
  if (!op.curva.empty()) {
    try {
      curva = LerCurvaNivel(LerBytes(op.curva), op.curva);
    } catch (const std::exception& e) {
      return Falhar(e.what(), 2);
    }
  }

  Simulacao sim;
  sim.estacao = estacao.string();
  sim.inicio = inicio;
  sim.fim = SomarSegundos(inicio, static_cast<int64_t>(op.horas) * 3600);
  sim.semente = op.semente;
  int nivelFixo = 50;
  if (op.nivel) {
    nivelFixo = *op.nivel;
    sim.origemNivel = "fixo em " + std::to_string(nivelFixo);
  } else if (curva) {
    sim.origemNivel = "curva " + fs::path(op.curva).filename().string();
  } else if (auto linha = LerPrimeiraLinha(ArquivosReais(), estacao / "ritmo.rer")) {
    nivelFixo = std::clamp(static_cast<int>(ArredondarPar(ValorNumerico(*linha))), 0, 100);
    sim.origemNivel = "fixo em " + std::to_string(nivelFixo) + " (ritmo.rer da estação)";
  } else {
    sim.origemNivel = "fixo em 50 (a estação não tem ritmo.rer)";
  }
  auto NivelEm = [&](DataHora d) { return curva ? curva->NivelEm(d) : nivelFixo; };

  InterrupcaoLimpa interrupcao;
  std::unique_ptr<CopiaDaEstacao> copia;
  try {
    copia = std::make_unique<CopiaDaEstacao>(estacao);
  } catch (const std::exception& e) {
    return Falhar(std::string("cópia da estação: ") + e.what(), 1);
  }
  const fs::path pasta = copia->Pasta();

  AmbienteSimulado ambiente(inicio, op.semente);
  TocadorSimulado tocador(pasta, true);
  int nivel = NivelEm(inicio);
  tocador.DefinirNivel(nivel);
  sim.niveis.emplace_back(inicio, nivel);
  auto motor = std::make_unique<Motor>(pasta, ambiente);
  InstalarHistorico(*motor);
  motor->Iniciar();
  if (motor->UltimoErro()) sim.avisos.push_back("carga: " + *motor->UltimoErro());
  Estado& e = motor->E();
  // Plays logged after the simulated start sit in the rules' "recent" window all day long.
  DataHora ultimaTocada = inicio;
  for (long p = -500; p < 0; ++p)
    if (e.historico().HistoricoCodigos[p] > 0) ultimaTocada = std::max(ultimaTocada, e.historico().HistoricoDatas[p]);
  if (ultimaTocada > inicio)
    sim.avisos.push_back("o histórico da estação tem tocadas depois do início simulado (até " +
                         FormatarIso(ultimaTocada) + "); as regras as contam como recentes");
  std::mt19937 ouvinte(op.semente + 1);

  auto Rodar = [&] {
    const ResultadoExecucao r = motor->TestarRegras();
    // A night playlist may hold fewer songs: the report names the largest collection seen.
    sim.totalMusicas = std::max<int>(sim.totalMusicas, e.acervo().TotalMusicas);
    for (const SelecaoFeita& s : r.selecoes) {
      ++sim.escolhidas;
      ContarRegras(e, s, sim);
    }
  };
  auto MudarNivelAte = [&](DataHora ate) {
    if (!curva) return;
    for (DataHora d = curva->ProximaMudanca(ambiente.Agora()); d <= ate; d = curva->ProximaMudanca(d)) {
      ambiente.AvancarAte(d);
      const int novo = curva->NivelEm(d);
      if (novo == nivel) continue;
      nivel = novo;
      tocador.DefinirNivel(nivel);
      sim.niveis.emplace_back(d, nivel);
      Rodar();  // the engine notices within its one-second tick and refills the queue
    }
  };

  Progresso progresso(ctx.erros, "simulando");
  Rodar();
  int ociosas = 0;
  while (ambiente.Agora() < sim.fim) {
    if (g_interromper) return Falhar("simulação interrompida", 130);
    progresso.Mostrar(FormatarIso(ambiente.Agora()).substr(0, 16));
    std::string aviso;
    const DataHora comeco = ambiente.Agora();
    const std::optional<Tocada> tocada = tocador.TocarProxima(comeco, &aviso);
    if (!aviso.empty() && sim.avisos.size() < 20) sim.avisos.push_back("log das tocadas: " + aviso);
    if (!tocada) {
      // Nothing queued (a collection under 51 songs, or a load that failed): the engine looks
      // again a minute later, as it does on air.
      if (++ociosas == 1) sim.avisos.push_back(FormatarIso(comeco) + ": a fila ficou vazia");
      MudarNivelAte(SomarSegundos(comeco, 60));
      ambiente.AvancarAte(SomarSegundos(comeco, 60));
      Rodar();
      continue;
    }
    ociosas = 0;
    TocadaSimulada t;
    t.momento = comeco;
    t.codigo = tocada->codigo;
    t.nivel = nivel;
    const int16_t slot = LocalizarMusica(e, tocada->codigo);
    t.vibe = e.acervo().AcervoVibe[slot];
    t.artista = e.acervo().AcervoTags(slot, kCampoArtista);
    t.titulo = e.acervo().AcervoTags(slot, kCampoTitle);
    const int64_t duracao = DuracaoDaMusica(e, tocada->codigo);
    t.avancada = op.avancar > 0 && static_cast<int>(ouvinte() % 100) < op.avancar;
    sim.tocadas.push_back(std::move(t));

    Rodar();  // the queue just lost its head: the engine chooses the next song now
    const DataHora fimDaMusica = SomarSegundos(comeco, sim.tocadas.back().avancada ? duracao / 2 : duracao);
    MudarNivelAte(fimDaMusica);
    ambiente.AvancarAte(fimDaMusica);
    if (sim.tocadas.back().avancada) {
      tocador.Avancar();
      Rodar();
    }
  }
  sim.segundosDeExecucao =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - relogio).count();

  const Figuras figuras = CalcularFiguras(
      sim, [&](const Texto& a, const Texto& b) { return CompararArtistasSemExcecao(e, a, b, 0); });
  if (!op.relatorio.empty()) {
    try {
      EscreverBytes(op.relatorio, SimulacaoHtml(sim, figuras));
    } catch (const std::exception& erro) {
      return Falhar(std::string("relatório: ") + erro.what(), 1);
    }
  }
  if (op.json) {
    ctx.saida << SimulacaoJson(sim, figuras).dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
              << "\n";
  } else {
    ImprimirResumo(ctx.saida, sim, figuras);
    if (!op.relatorio.empty()) ctx.saida << "Relatório: " << op.relatorio << "\n";
  }
}

}  // namespace

void RegistrarSimular(CLI::App& app, Contexto& ctx) {
  auto op = std::make_shared<OpcoesSimular>();
  CLI::App* cmd = app.add_subcommand(
      "simular", "Simula horas de programação numa cópia da estação (a fila real não é tocada) e faz um relatório");
  cmd->add_option("--dir", op->dir, "pasta da estação (senão LUMAVOX_DIR, senão a do executável)");
  cmd->add_option("--inicio", op->inicio, "início do relógio simulado, \"YYYY-MM-DD HH:MM\" (senão hoje 00:00)");
  cmd->add_option("--horas", op->horas, "quantas horas simular")->check(CLI::Range(1, 24 * 31));
  auto* nivel = cmd->add_option("--nivel", op->nivel, "nível de ritmo fixo, 0 a 100")->check(CLI::Range(0, 100));
  cmd->add_option("--curva", op->curva, "arquivo com o nível ao longo do dia, linhas \"HH:MM nível\"")->excludes(nivel);
  cmd->add_option("--seed", op->semente, "semente do sorteio do motor e do ouvinte");
  cmd->add_option("--avancar", op->avancar, "chance, em %, de o ouvinte avançar cada música na metade (0: nunca)")
      ->check(CLI::Range(0, 100));
  cmd->add_option("--relatorio", op->relatorio, "arquivo HTML do relatório (um arquivo só, gráficos em SVG)");
  cmd->add_flag("--json", op->json, "os mesmos números em JSON na saída padrão");
  cmd->callback([&ctx, op] { ExecutarSimular(ctx, *op); });
}

}  // namespace lumavox::cli
