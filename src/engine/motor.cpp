#include "engine/motor.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "base/arquivos.h"
#include "base/erro.h"
#include "stores/agenda.h"
#include "stores/debug.h"
#include "stores/gravacoes.h"

namespace lumavox {

Motor::Motor(fs::path caminhoApp, Ambiente& ambiente)
    : caminhoApp_(std::move(caminhoApp)), ambiente_(ambiente) {
  estado_.ambiente = &ambiente_;
}

bool Motor::DetectarModoDebug() {
  estado_.ModoDebug = ambiente_.Arquivos().ArquivoExiste(caminhoApp_ / "debug.red");
  return estado_.ModoDebug;
}

void Motor::CarregarInicio() {
  ultimoErro_.reset();
  auto registrar = [this](const char* etapa, const std::exception& e) {
    ultimoErro_ = std::string(etapa) + ": " + e.what();
  };
  estado_.DataInicio = ambiente_.Agora();
  estado_.playlists.PlaylistAtual = -1;
  AbrirPlaylists();
  if (estado_.ModoDebug) {
    try {
      EscreverDebug(u"Abriu Playlists");
    } catch (const std::exception& e) {
      registrar("EscreverDebug", e);
    }
  }
  try {
    VerificarPlaylist(0);
  } catch (const std::exception& e) {
    registrar("VerificarPlaylist", e);
  }
}

void Motor::Iniciar() {
  DetectarModoDebug();
  CarregarInicio();
}

void Motor::EscreverDebug(std::u16string_view texto) {
  lumavox::EscreverDebug(ambiente_.Arquivos(), caminhoApp_, texto);
}

void Motor::AbrirPlaylists() {
  lumavox::AbrirPlaylists(ambiente_.Arquivos(), estado_.playlists, caminhoApp_);
}

void Motor::DefinirAcervo(int32_t CodAcervo, int16_t CarregarLogs) {
  (void)CodAcervo;  // carried along by its callers, never read
  const Acervo& acervo = estado_.acervo();
  const fs::path pasta = estado_.playlists.Playlists[estado_.playlists.PlaylistAtual];
  // Taken before reading, so a file that changes while it is read is read again next time.
  std::optional<CargaAcervo> insumos = InsumosDoAcervo(pasta);
  const bool inalterado = insumos && ultimaCarga_ && insumos->MesmosArquivos(*ultimaCarga_) &&
                          estado_.VersaoAcervo() == ultimaCarga_->versaoAcervo;
  if (inalterado) {
    if (estado_.painel) estado_.painel->MostrarPlaylist(pasta);
  } else {
    ultimaCarga_.reset();
    estado_.CarregarAcervo([&](Acervo& a) {
      a.CaminhoApp = caminhoApp_;
      a.PastaDados = pasta;
      if (estado_.painel) estado_.painel->MostrarPlaylist(a.PastaDados);

      if (estado_.ModoDebug) EscreverDebug(u"Preparando a carregar tags");
      // Only loads of known inputs are recorded, and never in debug mode (no inputs are known
      // then): its trace shows every line read.
      auto gravada = std::find_if(gravadas_.begin(), gravadas_.end(), [&](const CargaGravada& g) {
        return insumos && g.insumos.MesmosArquivos(*insumos);
      });
      if (gravada != gravadas_.end()) {
        RegravarColecao(a, gravada->gravacao);
        return;
      }
      std::optional<GuardaGravacoes> guarda;
      if (insumos && pastaGravacoes_) guarda.emplace(ambiente_.Arquivos(), *pastaGravacoes_);
      const InsumosGravacao chave = insumos ? InsumosGravacao{insumos->lxdb, insumos->mre} : InsumosGravacao{};
      if (guarda) {
        // Not kept in memory as well: the record on disk serves the next load as quickly, and
        // the collection takes its texts without a copy.
        if (std::optional<GravacaoAcervo> g = guarda->Buscar(chave)) {
          RegravarColecao(a, std::move(*g));
          return;
        }
      }
      // One line per line read, on purpose: the trace shows the exact line a load stopped at.
      std::function<void(long)> aposLinha;
      if (estado_.ModoDebug)
        aposLinha = [this](long slot) { EscreverDebug(u"Musica: " + DeUtf8(std::to_string(slot))); };
      // Without a folder of records, a folder is recorded from its second load on: a one-shot
      // run loads once, and a station that came back to a playlist will come back again.
      const bool gravar =
          insumos && (guarda || std::find(carregadas_.begin(), carregadas_.end(), pasta) != carregadas_.end());
      if (insumos && !gravar) carregadas_.push_back(pasta);
      GravacaoAcervo gravacao;
      CarregarColecao(ambiente_.Arquivos(), a, a.PastaDados, aposLinha, gravar ? &gravacao : nullptr);
      if (!gravar) return;
      if (guarda)
        guarda->Guardar(chave, gravacao);
      else
        LembrarCarga(*insumos, std::move(gravacao));
    });
    if (insumos) {
      insumos->versaoAcervo = estado_.VersaoAcervo();
      ultimaCarga_ = std::move(insumos);
    }
  }

  EscreverLinhaInteira(ambiente_.Arquivos(), caminhoApp_ / "nreg.rer", DeUtf8(std::to_string(acervo.TotalMusicas)));

  for (int n = 0; n <= 2; ++n)
    CarregarArquivoRegras(ambiente_.Arquivos(), estado_.catalogo, n,
                          acervo.PastaDados / ("lxie" + std::to_string(n) + ".rdb"));

  estado_.agenda.Limpar();
  // A broken table stops only its own load; the cause goes to the debug trace.
  for (const std::string& falha : CarregarTabelasAgenda(ambiente_.Arquivos(), estado_.agenda, acervo.PastaDados))
    if (estado_.ModoDebug) EscreverDebug(DeUtf8(falha));

  // Zero means "load the history"; the inverted reading is how every caller uses it.
  if (CarregarLogs == 0) CarregarMusicasTocadas();
}

void Motor::LembrarCarga(const CargaAcervo& insumos, GravacaoAcervo gravacao) {
  // A few playlists' worth: each record is a few megabytes.
  constexpr size_t kGravadas = 4;
  std::erase_if(gravadas_, [&](const CargaGravada& g) { return g.insumos.pasta == insumos.pasta; });
  if (gravadas_.size() >= kGravadas) gravadas_.erase(gravadas_.begin());
  gravadas_.push_back({insumos, std::move(gravacao)});
}

std::optional<Motor::CargaAcervo> Motor::InsumosDoAcervo(const fs::path& pasta) {
  // The debug trace shows every line of every load; a skipped load would leave it silent.
  if (estado_.ModoDebug) return std::nullopt;
  SistemaArquivos& arquivos = ambiente_.Arquivos();
  auto lxdb = arquivos.Versao(pasta / "lxdb.rdb");
  // The media folder changes whenever a song's file appears or goes, which is all a load asks.
  auto mre = arquivos.Versao(caminhoApp_ / "mre");
  if (!lxdb || !mre) return std::nullopt;
  return CargaAcervo{pasta, *lxdb, *mre, 0};
}

void Motor::CarregarMusicasTocadas() {
  estado_.SubstituirHistorico([this](Historico& h) {
    if (historico_) historico_->CarregarMusicasTocadas(h, estado_.acervo());
  });
}

void Motor::VerificarPlaylist(int16_t CarregarLogs) {
  TabelaPlaylists& t = estado_.playlists;
  int16_t& contagem = estado_.ContagemRecarga;
  // Held at the bottom instead of overflowing: a station whose files stay broken for hours
  // must still reload them on every check once they are mended.
  if (contagem > INT16_MIN) --contagem;
  if (t.TotalPlaylists >= 2) {
    const int32_t escolhida = PlaylistDoHorario(t, ambiente_.Agora());
    if (escolhida != t.PlaylistAtual) {
      t.PlaylistAtual = escolhida;
      DefinirAcervo(t.PlaylistAtual, CarregarLogs);
      contagem = 5;
    } else if (contagem < 0) {
      DefinirAcervo(t.PlaylistAtual, CarregarLogs);
      contagem = 5;
    }
  } else if (t.PlaylistAtual == -1) {
    t.PlaylistAtual = 0;
    DefinirAcervo(t.PlaylistAtual, CarregarLogs);
    contagem = 5;
  } else if (contagem < 0) {
    DefinirAcervo(t.PlaylistAtual, CarregarLogs);
    contagem = 5;
    t.PlaylistAtual = 0;
  } else {
    t.PlaylistAtual = 0;
  }
}

}  // namespace lumavox
