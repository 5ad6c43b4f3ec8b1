// Motor::TestarRegras: watch the player's files, decide whether a song is needed, run the
// active rules of the level's set, draw a survivor and hand it over.
#include "engine/execucao.h"

#include <cmath>

#include "base/arquivos.h"
#include "base/numeros.h"
#include "base/sistema_arquivos.h"
#include "engine/despacho.h"
#include "engine/motor.h"
#include "engine/registro.h"
#include "rules/candidatos.h"
#include "stores/saida.h"

namespace lumavox {

namespace {

// A call stops choosing after this many songs even if the queue still looks short, so an
// unwritable list/ folder cannot keep one call choosing forever.
constexpr int kMaximoSelecoesPorChamada = 8;
constexpr int kEsperaEntregaMs = 800;
constexpr int kEsperaAcervoPequenoMs = 60000;
constexpr int64_t kMaiorContador = 999999;
// After a hand-over fails the next call waits this long: a full disk is not asked again every
// second with a whole selection each time, and the queue fills again soon after space returns.
constexpr int kEsperaAposFalhaMs = 3000;

}  // namespace

void Motor::LerNivel() {
  Execucao& x = estado_.execucao;
  while (x.Tentativas < 100) {
    std::optional<Texto> linha = LerPrimeiraLinha(ambiente_.Arquivos(), caminhoApp_ / "ritmo.rer");
    if (!linha) {
      ++x.Tentativas;
      continue;
    }
    // The level is compared once rounded, and one too large for the counter keeps the old one
    // without a change: either way the file's value would otherwise count as a new level at
    // every read, and void the queue every second for as long as the player leaves it there.
    try {
      const int16_t nivel = ParaInteiro16(ValorNumerico(*linha));
      if (nivel != x.NivelAtual) {
        x.NivelAtual = nivel;
        if (x.Iniciado) x.NivelMudou = 1;
      }
    } catch (const ErroExecucao&) {
    }
    return;
  }
}

void Motor::LerAvanco() {
  Execucao& x = estado_.execucao;
  SistemaArquivos& arquivos = ambiente_.Arquivos();
  const fs::path arquivo = caminhoApp_ / "avancar.rer";
  // A click whose file could not be deleted is read once: the same file is the same click
  // until the player writes it again.
  const std::optional<MarcaArquivo> marca = arquivos.Marca(arquivo);
  std::optional<Texto> linha;
  if (!avancoNaoApagado_ || marca != avancoNaoApagado_) linha = LerPrimeiraLinha(arquivos, arquivo);
  if (!linha) {
    x.CliqueAvancar = 0;
    return;
  }
  ++x.ContagemAvancos;
  try {
    x.CliqueAvancar = ParaInteiro16(ValorNumerico(*linha));
  } catch (const ErroExecucao&) {
  }
  avancoNaoApagado_.reset();
  if (!ApagarArquivo(arquivos, arquivo)) avancoNaoApagado_ = marca;
}

long Motor::EscolherMusica() {
  Execucao& x = estado_.execucao;
  Selecao& sel = estado_.selecao;
  RegistrarLog(estado_, TipoLog::Inicio);
  sel.RegraNumero = 1;
  if (estado_.painel) {
    estado_.painel->MostrarContagemAvancos(x.ContagemAvancos);
    estado_.painel->Ceder();
  }

  const long total = estado_.acervo().TotalMusicas;
  sel.MusicasExcluidas = 0;
  for (long i = 0; i < total; ++i) sel.MusicaCandidata[i] = true;
  const int conjunto = ConjuntoDoNivel(x.NivelAtual);
  sel.CliqueAtual = x.CliqueAvancar;
  for (long r = 0; r < estado_.catalogo.QuantidadeRegras[static_cast<size_t>(conjunto)]; ++r) {
    if (estado_.painel) estado_.painel->Ceder();
    if (estado_.catalogo.CatalogoRegras(conjunto, r).Ativo) AplicarRegra(estado_, true, r, x.NivelAtual);
    ++sel.RegraNumero;
  }
  RegistrarLog(estado_, TipoLog::Restantes);
  return Sortear();
}

ResultadoExecucao Motor::TestarRegras() {
  Execucao& x = estado_.execucao;
  Selecao& sel = estado_.selecao;
  SistemaArquivos& arquivos = ambiente_.Arquivos();
  const fs::path pastaFila = caminhoApp_ / "list";
  const fs::path pastaTemp = caminhoApp_ / "temp";
  ResultadoExecucao resultado;

  x.Tentativas = 0;
  if (x.Iniciado == 0) {
    ApagarArquivos(arquivos, ListarArquivos(arquivos, pastaFila, ".lre"));
    ApagarArquivos(arquivos, ListarArquivos(arquivos, pastaTemp, ".mrt"));
    // What a write cut short by a crash or a power cut left behind.
    ApagarArquivos(arquivos, ListarArquivos(arquivos, pastaFila, std::string(kTerminacaoParcial)));
    ApagarArquivos(arquivos, ListarArquivos(arquivos, pastaTemp, std::string(kTerminacaoParcial)));
  }
  ambiente_.SemearPeloRelogio();
  sel.DataHoraReferencia = ambiente_.Agora();
  x.CliqueAvancar = 0;
  LerNivel();

  auto Fila = [&] { return ListarArquivos(arquivos, pastaFila, ".lre"); };
  // A voided queue entry takes its media along: nothing would ever play or delete it.
  auto Anular = [&](const fs::path& entrada) {
    ApagarArquivo(arquivos, entrada);
    ApagarArquivo(arquivos, pastaTemp / (entrada.filename().string().substr(0, 6) + ".mrt"));
  };
  if (x.Iniciado && Fila().size() >= 2 && x.NivelMudou == 0 && x.CliqueAvancar == 0) {
    return resultado;
  }

  while (resultado.selecoes.size() < kMaximoSelecoesPorChamada &&
         (Fila().size() < 2 || x.NivelMudou == 1 || x.CliqueAvancar >= 1)) {
    try {
      VerificarPlaylist(0);
    } catch (const std::exception& e) {
      ultimoErro_ = std::string("VerificarPlaylist: ") + e.what();
    }
    if (estado_.acervo().TotalMusicas < kMinimoMusicas) {
      // Too small a collection never gets a song; the next call looks again.
      ambiente_.Esperar(kEsperaAcervoPequenoMs);
      break;
    }
    if (x.NivelMudou != 1) LerNivel();
    if (x.CliqueAvancar < 1) LerAvanco();
    if (x.CliqueAvancar >= 1) {
      // The queued choices are void after an advance; last to first, as the player lists them.
      const std::vector<fs::path> fila = Fila();
      for (auto it = fila.rbegin(); it != fila.rend(); ++it) Anular(*it);
      x.NivelMudou = 0;
    }

    const int conjunto = ConjuntoDoNivel(x.NivelAtual);
    const long escolhido = EscolherMusica();
    const Acervo& a = estado_.acervo();
    const int32_t codigo = a.AcervoCodigos[escolhido];
    const DataHora momento = sel.DataHoraReferencia;

    SelecaoFeita feita;
    feita.numero = static_cast<int>(resultado.selecoes.size()) + 1;
    feita.nivel = x.NivelAtual;
    feita.conjunto = conjunto;
    feita.escolhida = codigo;
    feita.slot = escolhido;
    feita.chaveLog = "P" + std::to_string(sel.MusicasEscolhidas);

    x.ContadorSaida = x.ContadorSaida >= kMaiorContador ? 1 : x.ContadorSaida + 1;
    // The hand-over folders are made again if something removed them.
    arquivos.CriarPastas(pastaTemp);
    arquivos.CriarPastas(pastaFila);
    const std::string nomeTemp = NomeArquivoTemp(x.ContadorSaida);
    std::string erro;
    if (GerarArquivoSaida(arquivos, caminhoApp_ / "mre" / NomeArquivoMusica(codigo), x.ContadorSaida, caminhoApp_,
                          &erro))
      feita.mrt = "temp/" + nomeTemp;
    const std::string nomeFila = NomeArquivoFila(x.ContadorSaida, codigo, x.NivelAtual);
    if (erro.empty()) {
      ambiente_.Esperar(kEsperaEntregaMs);
      if (EscreverFila(arquivos, caminhoApp_, nomeFila, codigo, &erro)) {
        feita.lre = "list/" + nomeFila;
      } else if (feita.mrt) {
        // Media without a queue entry would never be played nor deleted: it goes at once.
        ApagarArquivo(arquivos, pastaTemp / nomeTemp);
        feita.mrt.reset();
      }
    }
    if (!erro.empty()) feita.erroEntrega = erro;

    if (sel.MusicasEscolhidas > 1) {
      const double duracao = ValorNumerico(a.AcervoTags(escolhido, kCampoDuracaoSec));
      if (std::isfinite(duracao) && std::fabs(duracao) < 1e9)
        sel.DataHoraReferencia = SomarSegundos(sel.DataHoraReferencia, static_cast<int64_t>(ArredondarPar(duracao)));
    }
    RegistrarLog(estado_, TipoLog::Escolhida, codigo);
    if (feita.erroEntrega) RegistrarLog(estado_, TipoLog::EntregaFalhou, codigo, 0, *feita.erroEntrega);
    ++sel.MusicasEscolhidas;

    if (x.NivelMudou == 1) {
      // The level changed while these songs were queued: the older queue entries and their
      // media go, the song just chosen for the new level stays, and the loop fills the queue
      // again at the new level.
      for (const fs::path& antigo : Fila()) {
        if (antigo.filename() != nomeFila) Anular(antigo);
      }
      x.NivelMudou = 0;
    }

    if (feita.erroEntrega) {
      // Nothing reached the player, so the song never aired: it stays out of the history, and
      // the call ends here rather than choose again into the same failure.
      x.CliqueAvancar = 0;
      resultado.selecoes.push_back(std::move(feita));
      resultado.proximoIntervaloMs = kEsperaAposFalhaMs;
      break;
    }
    // The chosen song joins the history at the moment the rules took as now for it.
    try {
      estado_.AdicionarTocada(codigo, momento);
    } catch (const ErroExecucao& e) {
      ultimoErro_ = std::string("Histórico: ") + e.what();
    }
    estado_.ChecarMusicasTocadas();
    x.CliqueAvancar = 0;
    resultado.selecoes.push_back(std::move(feita));
  }
  x.Iniciado = 1;
  return resultado;
}

long Motor::Sortear() {
  const Selecao& sel = estado_.selecao;
  Execucao& x = estado_.execucao;
  const long total = estado_.acervo().TotalMusicas;
  const float k = static_cast<float>(total - sel.MusicasExcluidas);
  const float sorteado = ambiente_.Aleatorio();
  const long n = static_cast<long>(std::floor(k * sorteado + 1.0f));
  const long ultimo = UltimoSlotDosLacos(estado_);
  long escolhido = 0;
  long c = 1;
  for (long i = 0; i <= ultimo; ++i) {
    if (!sel.MusicaCandidata[i]) continue;
    if (c == n) escolhido = i;
    ++c;
  }
  if (x.MusicaForcada > 0) {
    for (long i = 0; i <= ultimo; ++i)
      if (estado_.acervo().AcervoCodigos[i] == x.MusicaForcada) escolhido = i;
    x.MusicaForcada = 0;
  }
  return escolhido;
}

}  // namespace lumavox
