#include "cli/tocador.h"

#include <sqlite3.h>

#include "base/arquivos.h"
#include "base/erro.h"
#include "base/numeros.h"
#include "rules/candidatos.h"
#include "state/estado.h"
#include "stores/banco_sqlite.h"
#include "stores/saida.h"

namespace lumavox::cli {

float AmbienteSimulado::Aleatorio() { return SortearFloat(gerador_); }

TocadorSimulado::TocadorSimulado(fs::path pasta, SistemaArquivos& arquivos, bool copiaDescartavel)
    : pasta_(std::move(pasta)), arquivos_(arquivos), descartavel_(copiaDescartavel) {
  std::error_code ec;
  registrar_ = !fs::exists(pasta_ / "lumavox.mdb", ec);
}

TocadorSimulado::~TocadorSimulado() = default;

std::optional<Tocada> TocadorSimulado::TocarProxima(DataHora momento, std::string* aviso) {
  const auto fila = ListarArquivos(arquivos_, pasta_ / "list", ".lre");
  if (fila.empty()) return std::nullopt;
  Tocada t;
  t.nomeFila = fila.front().filename().string();
  t.codigo = static_cast<int32_t>(ValorNumerico(DeUtf8(t.nomeFila.substr(7, t.nomeFila.find('_', 7) - 7))));
  // The player takes the entry: it leaves the queue and its media with it.
  ApagarArquivo(arquivos_, fila.front());
  ApagarArquivo(arquivos_, pasta_ / "temp" / (t.nomeFila.substr(0, 6) + ".mrt"));
  if (registrar_) {
    try {
      if (!banco_) {
        banco_ = std::make_unique<BancoLogs>(pasta_ / "lumavox.db");
        // A throw-away copy need not survive a power cut; skipping the syncs keeps a simulated
        // day of plays from costing seconds of disk waits.
        if (descartavel_) sqlite3_exec(banco_->Conexao(), "PRAGMA synchronous=OFF", nullptr, nullptr, nullptr);
      }
      banco_->Registrar(RegistroLog{t.codigo, momento, 0});
    } catch (const std::exception& erro) {
      if (aviso) *aviso = erro.what();
    }
  }
  return t;
}

void TocadorSimulado::Avancar() { arquivos_.EscreverBytes(pasta_ / "avancar.rer", "1\n"); }

void TocadorSimulado::DefinirNivel(int nivel) { arquivos_.EscreverBytes(pasta_ / "ritmo.rer", std::to_string(nivel) + "\n"); }

int64_t DuracaoDaMusica(Estado& e, int32_t codigo) {
  const int16_t slot = LocalizarMusica(e, codigo);
  const double duracao = ValorNumerico(e.acervo().AcervoTags(slot, kCampoDuracaoSec));
  if (!(duracao > 0) || duracao > 86400) return 180;
  return static_cast<int64_t>(ArredondarPar(duracao));
}

}  // namespace lumavox::cli
