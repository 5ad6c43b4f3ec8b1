// lumavox-cli tocar: the engine and a stand-in player on a simulated clock. The player takes
// the queue in order, "plays" each song for its DuracaoSec (time jumps ahead instead of
// waiting), logs the play as type 0 in lumavox.db, moves the rhythm level now and then and
// sometimes skips a song through avancar.rer, so a station can be watched at work in seconds.
#include <iomanip>
#include <memory>
#include <optional>
#include <random>

#include "cli/relatorio.h"
#include "cli/subcomandos.h"
#include "cli/tocador.h"
#include "engine/instalacao.h"
#include "engine/motor.h"

namespace lumavox::cli {

namespace {

struct OpcoesTocar {
  std::string dir, inicio;
  int musicas = 12;
  uint32_t semente = 1;
};

std::string Tag(const Estado& e, long slot, long campo) { return ParaUtf8(e.acervo().AcervoTags(slot, campo)); }

// The rules that removed songs for this choice, as "12 -40".
std::string RegrasQueAgiram(const Estado& e, const SelecaoFeita& s) {
  std::string texto;
  if (const NoLog* pai = ProcurarSelecao(e, s.chaveLog))
    for (const NoLog& no : pai->filhos) {
      if (no.tipo == TipoLog::Erro) texto += " " + ParaUtf8(no.id) + " erro";
      if (no.tipo == TipoLog::Aplicada && !no.musicas.empty())
        texto += " " + ParaUtf8(no.id) + " -" + std::to_string(no.musicas.size());
    }
  return texto.empty() ? " nenhuma removeu músicas" : texto;
}

void ExecutarTocar(Contexto& ctx, const OpcoesTocar& op) {
  const fs::path pasta = ResolverPastaApp(op.dir);
  if (!PastaAppValida(ctx, pasta)) return;
  DataHora inicio = AgoraLocal();
  if (!op.inicio.empty()) {
    auto d = ConverterDataHora(DeUtf8(op.inicio));
    if (!d) {
      ctx.erros << "lumavox-cli: --inicio inválido: " << op.inicio << "\n";
      ctx.codigoSaida = 2;
      return;
    }
    inicio = *d;
  }
  AmbienteSimulado ambiente(inicio, op.semente);
  std::mt19937 jogador(op.semente + 1);
  auto Chance = [&](int porcento) { return static_cast<int>(jogador() % 100) < porcento; };

  TocadorSimulado tocador(pasta);
  Motor motor(pasta, ambiente);
  InstalarHistorico(motor);
  motor.Iniciar();
  if (motor.UltimoErro()) ctx.erros << "aviso: " << *motor.UltimoErro() << "\n";
  const Estado& e = motor.E();
  ctx.saida << "Estação " << pasta.string() << ": " << e.acervo().TotalMusicas << " músicas, "
            << e.catalogo.QuantidadeRegras[0] << "/" << e.catalogo.QuantidadeRegras[1] << "/"
            << e.catalogo.QuantidadeRegras[2] << " regras (conjuntos 0/1/2)\n";

  int tocadas = 0, ociosas = 0;
  while (tocadas < op.musicas && ociosas < 5) {
    const ResultadoExecucao r = motor.TestarRegras();
    for (const SelecaoFeita& s : r.selecoes) {
      ctx.saida << FormatarIso(ambiente.Agora()).substr(11) << "  escolhida " << std::setw(7) << s.escolhida
                << "  nível " << std::setw(3) << s.nivel << " (conjunto " << s.conjunto << ")  "
                << Tag(e, s.slot, 0) << " – " << Tag(e, s.slot, 2) << "  [regras:" << RegrasQueAgiram(e, s) << "]\n";
    }
    std::string aviso;
    const std::optional<Tocada> tocada = tocador.TocarProxima(ambiente.Agora(), &aviso);
    if (!aviso.empty()) ctx.erros << "aviso: " << aviso << "\n";
    if (!tocada) {
      ++ociosas;  // nothing to play: a collection too small, or files that cannot be written
      ambiente.Avancar(1);
      continue;
    }
    ociosas = 0;
    ++tocadas;
    const int64_t duracao = DuracaoDaMusica(motor.E(), tocada->codigo);
    ctx.saida << FormatarIso(ambiente.Agora()).substr(11) << "  tocando  " << std::setw(7) << tocada->codigo
              << "  (" << duracao << " s)\n";

    if (Chance(25)) {
      static const int kNiveis[] = {20, 50, 50, 80};
      tocador.DefinirNivel(kNiveis[jogador() % 4]);
    }
    if (Chance(10)) {
      // The listener skips this song halfway through.
      ambiente.Avancar(duracao / 2);
      tocador.Avancar();
      ctx.saida << FormatarIso(ambiente.Agora()).substr(11) << "  avançou\n";
    } else {
      ambiente.Avancar(duracao);
    }
  }
  if (tocadas < op.musicas) ctx.saida << "A fila ficou vazia: nenhuma música a tocar.\n";
}

}  // namespace

void RegistrarTocar(CLI::App& app, Contexto& ctx) {
  auto op = std::make_shared<OpcoesTocar>();
  CLI::App* cmd = app.add_subcommand(
      "tocar", "O motor com um tocador simulado: relógio simulado, fila consumida, tocadas no lumavox.db");
  cmd->add_option("--dir", op->dir, "pasta da estação (senão LUMAVOX_DIR, senão a do executável)");
  cmd->add_option("--musicas", op->musicas, "quantas músicas tocar")->check(CLI::Range(1, 100000));
  cmd->add_option("--semente", op->semente, "semente do sorteio e do tocador");
  cmd->add_option("--inicio", op->inicio, "início do relógio simulado, \"YYYY-MM-DD HH:MM:SS\"");
  cmd->callback([&ctx, op] { ExecutarTocar(ctx, *op); });
}

}  // namespace lumavox::cli
