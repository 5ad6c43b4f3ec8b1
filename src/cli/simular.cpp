// lumavox-cli simular: hours of air time in seconds, on a scratch copy of the station so its
// real queue, media hand-over and log stay untouched. The engine runs as it does on air; the
// stand-in player plays each chosen song to the end of its DuracaoSec (the clock jumps), skips
// only when asked (--avancar) and logs its plays into the copy's log database; the level comes
// from --nivel, a daily curve (--curva) or the station's ritmo.rer. With --regras the same
// period runs a second time on a fresh copy whose rules come from a TOML text, for comparison.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <future>
#include <memory>
#include <random>
#include <unordered_map>
#include <unordered_set>

#include "base/arquivos.h"
#include "base/sistema_arquivos.h"
#include "cli/copia_estacao.h"
#include "cli/curva_nivel.h"
#include "cli/progresso.h"
#include "cli/regras_texto.h"
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

namespace lumavox::cli {

namespace {

constexpr long kCampoArtista = 0, kCampoTitle = 2;

struct OpcoesSimular {
  std::string dir, inicio, curva, relatorio, regras;
  int horas = 24;
  std::optional<int> nivel;
  uint32_t semente = 1;
  int avancar = 0;
  bool json = false;
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

// What a selection looked like, kept until the song it chose goes on air.
struct SelecaoVista {
  int restantes = -1;
  std::vector<ChaveRegra> negadas;
};

// Adds this selection's rule outcomes, read from its subtree of the rule log, and returns the
// songs it left and the rules it refused.
SelecaoVista ContarRegras(const Estado& e, const SelecaoFeita& selecao, Simulacao& sim) {
  SelecaoVista vista;
  const NoLog* pai = ProcurarSelecao(e, selecao.chaveLog);
  if (!pai) return vista;
  const auto hora = static_cast<size_t>(SegundosDoDia(pai->momento) / 3600);
  for (const NoLog& no : pai->filhos) {
    if (no.tipo == TipoLog::Restantes) vista.restantes = static_cast<int>(no.musicas.size());
    if (no.tipo != TipoLog::Aplicada && no.tipo != TipoLog::Negada && no.tipo != TipoLog::NaoRealizada &&
        no.tipo != TipoLog::Erro)
      continue;
    const ChaveRegra chave{selecao.conjunto, no.regraNumero, no.id};
    ContagemRegra& c = sim.regras[chave];
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
      case TipoLog::Negada:
        ++c.negada;
        ++c.negadaPorHora[hora];
        vista.negadas.push_back(chave);
        break;
      case TipoLog::NaoRealizada: ++c.naoRealizada; break;
      default:
        ++c.erro;
        c.ultimoErro = no.erro;
    }
  }
  return vista;
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
  out << "Nunca tocaram: " << f.nuncaTocadas.size()
      << " músicas; escolhidas como a única restante: " << f.unicaRestante << " tocadas\n";
  if (!s.conferencia.empty()) {
    const auto erros =
        std::count_if(s.conferencia.begin(), s.conferencia.end(),
                      [](const Constatacao& c) { return c.nivel == NivelConstatacao::Erro; });
    const size_t avisos = s.conferencia.size() - static_cast<size_t>(erros);
    out << "Conferência da estação: " << erros << (erros == 1 ? " erro, " : " erros, ") << avisos
        << (avisos == 1 ? " aviso" : " avisos") << " (lumavox-cli conferir mostra cada um)\n";
  }
  for (const std::string& aviso : s.avisos) out << "aviso: " << aviso << "\n";
  for (const auto& [chave, r] : s.regras)
    out << "  conjunto " << r.conjunto << " regra " << r.numero << " (" << ParaUtf8(r.id) << "): " << r.aplicada
        << " aplicada, " << r.negada << " negada, " << r.naoRealizada << " não realizada, " << r.erro << " erro\n";
}

// What both runs of a comparison share: the period, the seed, the listener and the level.
struct Periodo {
  DataHora inicio, fim;
  uint32_t semente = 1;
  int avancar = 0;
  std::optional<CurvaNivel> curva;
  int nivelFixo = 50;
  // The station's ritmo.rer, handed to the copy as it is and read by the engine as on air.
  std::optional<std::string> ritmoDaEstacao;
  std::string origemNivel;
};

struct Rodada {
  Simulacao sim;
  Figuras figuras;
};

// One run on a fresh scratch copy of the station, its rules files replaced by `regras` when
// given. Nothing when it could not start or was interrupted; the error is then written.
std::optional<Rodada> RodarSimulacao(Contexto& ctx, const fs::path& estacao, const Periodo& p,
                                     const std::vector<ConjuntoLido>* regras,
                                     const std::string& rotulo) {
  const auto relogio = std::chrono::steady_clock::now();
  auto Falhar = [&](const std::string& mensagem, int codigo) {
    ctx.erros << "lumavox-cli: " << mensagem << "\n";
    ctx.codigoSaida = codigo;
    return std::nullopt;
  };
  Rodada rodada;
  Simulacao& sim = rodada.sim;
  sim.estacao = estacao.string();
  sim.inicio = p.inicio;
  sim.fim = p.fim;
  sim.semente = p.semente;
  sim.origemNivel = p.origemNivel;
  auto NivelEm = [&](DataHora d) { return p.curva ? p.curva->NivelEm(d) : p.nivelFixo; };

  std::unique_ptr<CopiaDaEstacao> copia;
  try {
    copia = std::make_unique<CopiaDaEstacao>(estacao);
    if (regras)
      for (const ConjuntoLido& c : *regras) GravarArquivoRegras(*copia, copia->Pasta(), c);
  } catch (const std::exception& e) {
    return Falhar(std::string("cópia da estação: ") + e.what(), 1);
  }
  const fs::path pasta = copia->Pasta();
  // The check reads the station itself, not the copy, so it runs beside the simulation.
  std::future<std::vector<Constatacao>> conferencia;
  if (!regras)
    conferencia = std::async(std::launch::async, [estacao, inicio = p.inicio] {
      SistemaArquivosReal arquivos;
      return ConferirEstacao(arquivos, estacao, inicio);
    });

  AmbienteSimulado ambiente(p.inicio, p.semente);
  ambiente.UsarArquivos(*copia);
  TocadorSimulado tocador(pasta, *copia, true);
  int nivel = NivelEm(p.inicio);
  if (p.ritmoDaEstacao)
    copia->EscreverBytes(pasta / "ritmo.rer", *p.ritmoDaEstacao);
  else
    tocador.DefinirNivel(nivel);
  auto motor = std::make_unique<Motor>(pasta, ambiente);
  InstalarHistorico(*motor, true);
  motor->Iniciar();
  if (motor->UltimoErro()) sim.avisos.push_back("carga: " + *motor->UltimoErro());
  Estado& e = motor->E();
  // Plays logged after the simulated start sit in the rules' "recent" window all day long.
  DataHora ultimaTocada = p.inicio;
  for (long i = -500; i < 0; ++i)
    if (e.historico().HistoricoCodigos[i] > 0)
      ultimaTocada = std::max(ultimaTocada, e.historico().HistoricoDatas[i]);
  if (ultimaTocada > p.inicio)
    sim.avisos.push_back("o histórico da estação tem tocadas depois do início simulado (até " +
                         FormatarIso(ultimaTocada) + "); as regras as contam como recentes");
  std::mt19937 ouvinte(p.semente + 1);

  // The songs of each collection the run loads (a playlist of the schedule may bring its own),
  // so the report can name those that never played. A collection is known by its size and its
  // first and last codes: rereading the same one every few checks adds nothing.
  std::unordered_set<int32_t> conhecidas;
  std::tuple<int, int32_t, int32_t> ultimoAcervo{-1, 0, 0};
  auto LembrarAcervo = [&] {
    const Acervo& a = e.acervo();
    const int total = a.TotalMusicas;
    const std::tuple<int, int32_t, int32_t> marca{total, total > 0 ? a.AcervoCodigos[0] : 0,
                                                  total > 0 ? a.AcervoCodigos[total - 1] : 0};
    if (marca == ultimoAcervo) return;
    ultimoAcervo = marca;
    for (long slot = 0; slot < total; ++slot) {
      const int32_t codigo = a.AcervoCodigos[slot];
      if (codigo > 0 && conhecidas.insert(codigo).second)
        sim.acervo.push_back(
            {codigo, Texto(a.AcervoTags(slot, kCampoArtista)), Texto(a.AcervoTags(slot, kCampoTitle))});
    }
  };

  // Each selection by its queue entry, until the player takes it (a voided entry never plays).
  std::unordered_map<std::string, SelecaoVista> naFila;
  auto Rodar = [&] {
    const ResultadoExecucao r = motor->TestarRegras();
    // A night playlist may hold fewer songs: the report names the largest collection seen.
    sim.totalMusicas = std::max<int>(sim.totalMusicas, e.acervo().TotalMusicas);
    LembrarAcervo();
    for (const SelecaoFeita& s : r.selecoes) {
      ++sim.escolhidas;
      SelecaoVista vista = ContarRegras(e, s, sim);
      if (s.lre) naFila[fs::path(*s.lre).filename().string()] = std::move(vista);
    }
  };
  auto MudarNivelAte = [&](DataHora ate) {
    if (!p.curva) return;
    for (DataHora d = p.curva->ProximaMudanca(ambiente.Agora()); d <= ate;
         d = p.curva->ProximaMudanca(d)) {
      ambiente.AvancarAte(d);
      const int novo = p.curva->NivelEm(d);
      if (novo == nivel) continue;
      nivel = novo;
      tocador.DefinirNivel(nivel);
      sim.niveis.emplace_back(d, nivel);
      Rodar();  // the engine notices within its one-second tick and refills the queue
    }
  };

  Progresso progresso(ctx.erros, rotulo);
  Rodar();
  if (p.ritmoDaEstacao) {
    nivel = e.execucao.NivelAtual;
    sim.origemNivel = "fixo em " + std::to_string(nivel) + " (ritmo.rer da estação)";
  }
  sim.niveis.emplace_back(p.inicio, nivel);
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
    if (auto it = naFila.find(tocada->nomeFila); it != naFila.end()) {
      t.restantes = it->second.restantes;
      t.negadas = std::move(it->second.negadas);
      naFila.erase(it);
    }
    const int64_t duracao = DuracaoDaMusica(e, tocada->codigo);
    t.avancada = p.avancar > 0 && static_cast<int>(ouvinte() % 100) < p.avancar;
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
  rodada.figuras = CalcularFiguras(
      sim, [&](const Texto& a, const Texto& b) { return CompararArtistasSemExcecao(e, a, b, 0); });
  if (conferencia.valid()) sim.conferencia = conferencia.get();
  return rodada;
}

void ExecutarSimular(Contexto& ctx, const OpcoesSimular& op) {
  auto Falhar = [&](const std::string& mensagem, int codigo) {
    ctx.erros << "lumavox-cli: " << mensagem << "\n";
    ctx.codigoSaida = codigo;
  };
  const fs::path estacao = ResolverPastaApp(op.dir);
  if (!PastaAppValida(ctx, estacao)) return;
  Periodo p;
  p.inicio = SoData(AgoraLocal());
  if (!op.inicio.empty()) {
    auto d = ConverterDataHora(DeUtf8(op.inicio));
    if (!d) return Falhar("--inicio inválido: " + op.inicio + " (use \"YYYY-MM-DD HH:MM\")", 2);
    p.inicio = *d;
  }
  p.fim = SomarSegundos(p.inicio, static_cast<int64_t>(op.horas) * 3600);
  p.semente = op.semente;
  p.avancar = op.avancar;
  if (!op.curva.empty()) {
    try {
      p.curva = LerCurvaNivel(LerBytes(op.curva), op.curva);
    } catch (const std::exception& e) {
      return Falhar(e.what(), 2);
    }
  }
  // The other rules are read whole before anything runs, so a bad text costs no simulated day.
  std::optional<std::vector<ConjuntoLido>> alternativas;
  if (!op.regras.empty()) {
    try {
      alternativas = LerTomlRegras(LerBytes(op.regras), op.regras);
    } catch (const std::exception& e) {
      return Falhar(e.what(), 2);
    }
    if (alternativas->empty())
      return Falhar(
          op.regras + ": nenhum conjunto de regras ([conjunto0], [conjunto1], [conjunto2])", 2);
  }
  if (op.nivel) {
    p.nivelFixo = *op.nivel;
    p.origemNivel = "fixo em " + std::to_string(p.nivelFixo);
  } else if (p.curva) {
    p.origemNivel = "curva " + fs::path(op.curva).filename().string();
  } else {
    try {
      p.ritmoDaEstacao = ArquivosReais().LerBytes(estacao / "ritmo.rer");
    } catch (const std::exception&) {
    }
    if (!p.ritmoDaEstacao) p.origemNivel = "fixo em 50 (a estação não tem ritmo.rer)";
  }

  InterrupcaoLimpa interrupcao;
  const std::optional<Rodada> atual = RodarSimulacao(ctx, estacao, p, nullptr, "simulando");
  if (!atual) return;
  std::optional<Rodada> outra;
  if (alternativas) {
    outra = RodarSimulacao(ctx, estacao, p, &*alternativas,
                           "simulando " + fs::path(op.regras).filename().string());
    if (!outra) return;
  }
  const std::string nomeAlternativa = fs::path(op.regras).filename().string();
  if (!op.relatorio.empty()) {
    try {
      if (outra) {
        const Alternativa comparar{outra->sim, outra->figuras, nomeAlternativa};
        EscreverBytes(op.relatorio, SimulacaoHtml(atual->sim, atual->figuras, &comparar));
      } else {
        EscreverBytes(op.relatorio, SimulacaoHtml(atual->sim, atual->figuras));
      }
    } catch (const std::exception& erro) {
      return Falhar(std::string("relatório: ") + erro.what(), 1);
    }
  }
  if (op.json) {
    nlohmann::ordered_json doc = SimulacaoJson(atual->sim, atual->figuras);
    if (outra) {
      doc["alternativa"] = SimulacaoJson(outra->sim, outra->figuras);
      doc["alternativa"]["regras_de"] = op.regras;
    }
    ctx.saida << doc.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << "\n";
  } else {
    ImprimirResumo(ctx.saida, atual->sim, atual->figuras);
    if (outra) {
      ctx.saida << "\nCom as regras de " << op.regras << ":\n";
      ImprimirResumo(ctx.saida, outra->sim, outra->figuras);
    }
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
  cmd->add_option("--regras", op->regras,
                  "TOML de `regras exportar`: simula o mesmo período de novo com estas regras e "
                  "compara as duas "
                  "rodadas");
  cmd->add_flag("--json", op->json, "os mesmos números em JSON na saída padrão");
  cmd->callback([&ctx, op] { ExecutarSimular(ctx, *op); });
}

}  // namespace lumavox::cli
