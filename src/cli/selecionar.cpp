// lumavox-cli select (one call of the selection run after the start-up load) and
// lumavox-cli run (the timer loop without a window).
#include <atomic>
#include <csignal>
#include <memory>
#include <sstream>

#include "base/numeros.h"
#include "cli/ambiente_cli.h"
#include "cli/relatorio.h"
#include "cli/subcomandos.h"
#include "engine/instalacao.h"
#include "engine/motor.h"

namespace lumavox::cli {

namespace {

struct OpcoesSelecao {
  std::string dir, agora, tocadas;
  std::optional<uint32_t> semente;
  int32_t forcada = 0;
  bool semEspera = false;
  bool json = false;
};

// "--played 12,34@2026-11-22T10:00:00": positions 0..n-1, oldest first; a code without a date
// was played (n - i) minutes before now.
bool PreencherTocadas(Estado& e, const std::string& lista, DataHora agora, std::string& erro) {
  std::vector<std::pair<int32_t, std::optional<DataHora>>> tocadas;
  std::stringstream entrada(lista);
  for (std::string item; std::getline(entrada, item, ',');) {
    const size_t arroba = item.find('@');
    auto codigo = ConverterNumero(DeUtf8(item.substr(0, arroba)));
    if (!codigo || *codigo != std::floor(*codigo) || std::fabs(*codigo) > 2147483647.0) {
      erro = "código inválido em --played: " + item;
      return false;
    }
    std::optional<DataHora> data;
    if (arroba != std::string::npos) {
      data = ConverterDataHora(DeUtf8(item.substr(arroba + 1)));
      if (!data) {
        erro = "data inválida em --played: " + item;
        return false;
      }
    }
    tocadas.emplace_back(static_cast<int32_t>(*codigo), data);
  }
  if (tocadas.size() > static_cast<size_t>(kUltimaPosicao)) {
    erro = "--played com mais de 4000 músicas";
    return false;
  }
  e.SubstituirHistorico([&](Historico& h) {
    const long n = static_cast<long>(tocadas.size());
    for (long i = 0; i < n; ++i) {
      h.HistoricoCodigos[i] = tocadas[static_cast<size_t>(i)].first;
      h.HistoricoDatas[i] = tocadas[static_cast<size_t>(i)].second.value_or(SomarSegundos(agora, -60 * (n - i)));
    }
    h.TotalTocadas = static_cast<int16_t>(n);
  });
  return true;
}

// A choice that could not be handed over, on stderr (the journal, under the service).
void AvisarEntrega(Contexto& ctx, const SelecaoFeita& s) {
  if (s.erroEntrega)
    ctx.erros << "erro: a música " << s.escolhida << " não foi entregue ao tocador: " << *s.erroEntrega << std::endl;
}

std::unique_ptr<AmbienteCli> CriarAmbiente(Contexto& ctx, const OpcoesSelecao& op) {
  std::optional<DataHora> agora;
  if (!op.agora.empty()) {
    agora = ConverterDataHora(DeUtf8(op.agora));
    if (!agora) {
      ctx.erros << "lumavox-cli: --now inválido: " << op.agora << "\n";
      ctx.codigoSaida = 2;
      return nullptr;
    }
  }
  return std::make_unique<AmbienteCli>(agora, op.semente, op.semEspera);
}

void ExecutarSelecao(Contexto& ctx, const OpcoesSelecao& op) {
  const fs::path pasta = ResolverPastaApp(op.dir);
  if (!PastaAppValida(ctx, pasta)) return;
  auto ambiente = CriarAmbiente(ctx, op);
  if (!ambiente) return;
  auto motor = std::make_unique<Motor>(pasta, *ambiente);
  InstalarHistorico(*motor);
  motor->Iniciar();
  if (motor->UltimoErro()) ctx.erros << "aviso: " << *motor->UltimoErro() << "\n";
  std::string erro;
  if (!op.tocadas.empty() && !PreencherTocadas(motor->E(), op.tocadas, ambiente->Agora(), erro)) {
    ctx.erros << "lumavox-cli: " << erro << "\n";
    ctx.codigoSaida = 2;
    return;
  }
  motor->E().execucao.MusicaForcada = op.forcada;

  const ResultadoExecucao r = motor->TestarRegras();
  const Estado& e = motor->E();
  for (const SelecaoFeita& s : r.selecoes) AvisarEntrega(ctx, s);
  if (op.json) {
    nlohmann::ordered_json selecoes = nlohmann::ordered_json::array();
    for (const SelecaoFeita& s : r.selecoes) selecoes.push_back(SelecaoJson(e, s));
    nlohmann::ordered_json doc = {{"total_musicas", e.acervo().TotalMusicas}, {"selecoes", std::move(selecoes)}};
    ctx.saida << doc.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << "\n";
  } else {
    ctx.saida << "TotalMusicas: " << e.acervo().TotalMusicas << "\n";
    if (r.selecoes.empty()) ctx.saida << "Nenhuma seleção feita.\n";
    for (const SelecaoFeita& s : r.selecoes)
      if (const NoLog* no = ProcurarSelecao(e, s.chaveLog)) ImprimirArvore(ctx.saida, *no);
  }
  // The history source holds the log database open; the rest of the engine is only memory.
  motor->DefinirOrigemHistorico(nullptr);
  ctx.DeixarParaOFim(std::move(motor));
  ctx.DeixarParaOFim(std::move(ambiente));
}

std::atomic<bool> g_parar{false};

extern "C" void PedirParada(int) { g_parar = true; }

void ExecutarLaco(Contexto& ctx, const std::string& dir, int limite) {
  const fs::path pasta = ResolverPastaApp(dir);
  if (!PastaAppValida(ctx, pasta)) return;
  g_parar = false;
  std::signal(SIGINT, PedirParada);
  std::signal(SIGTERM, PedirParada);

  AmbienteReal ambiente;
  Motor motor(pasta, ambiente);
  InstalarHistorico(motor);
  motor.Iniciar();
  if (motor.UltimoErro()) ctx.erros << "aviso: " << *motor.UltimoErro() << "\n";
  int feitas = 0;
  while (!g_parar && (limite <= 0 || feitas < limite)) {
    const ResultadoExecucao r = motor.TestarRegras();
    for (const SelecaoFeita& s : r.selecoes) {
      ctx.saida << FormatarIso(ambiente.Agora()) << "  nível " << s.nivel << "  conjunto " << s.conjunto
                << "  escolhida " << s.escolhida << "  " << s.lre.value_or("(fila não gravada)") << std::endl;
      AvisarEntrega(ctx, s);
      ++feitas;
    }
    // The timer's wait, in short steps so a stop request is answered at once.
    for (int esperado = 0; esperado < r.proximoIntervaloMs && !g_parar; esperado += 100) ambiente.Esperar(100);
  }
  std::signal(SIGINT, SIG_DFL);
  std::signal(SIGTERM, SIG_DFL);
}

}  // namespace

void RegistrarSelecao(CLI::App& app, Contexto& ctx) {
  auto op = std::make_shared<OpcoesSelecao>();
  CLI::App* cmd = app.add_subcommand("select", "Uma chamada da seleção, após a carga de partida");
  cmd->add_option("--dir", op->dir, "pasta da aplicação (senão LUMAVOX_DIR, senão a do executável)");
  cmd->add_option("--now", op->agora, "presente fixo, \"YYYY-MM-DD HH:MM:SS\"");
  cmd->add_option("--seed", op->semente, "semente do sorteio");
  cmd->add_option("--played", op->tocadas, "histórico em memória: CODE[@YYYY-MM-DDTHH:MM:SS],...");
  cmd->add_option("--force", op->forcada, "código da música a escolher em lugar do sorteio");
  cmd->add_flag("--no-wait", op->semEspera, "sem as esperas de 800 ms e 60 s");
  cmd->add_flag("--json", op->json, "saída em JSON");
  cmd->callback([&ctx, op] { ExecutarSelecao(ctx, *op); });

  auto dir = std::make_shared<std::string>();
  auto limite = std::make_shared<int>(0);
  CLI::App* laco = app.add_subcommand("run", "O motor sem janela: uma execução por segundo até SIGINT/SIGTERM");
  laco->add_option("--dir", *dir, "pasta da aplicação (senão LUMAVOX_DIR, senão a do executável)");
  laco->add_option("--selections", *limite, "parar após N seleções")->check(CLI::NonNegativeNumber);
  laco->callback([&ctx, dir, limite] { ExecutarLaco(ctx, *dir, *limite); });
}

}  // namespace lumavox::cli
