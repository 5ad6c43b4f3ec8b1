// lumavox-cli banco converter: moves a station's log from lumavox.mdb into lumavox.db, once,
// for the player that writes its plays only there. The .mdb is then kept under another name:
// the engine reads it first whenever it is present.
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "base/erro.h"
#include "base/sistema_arquivos.h"
#include "cli/subcomandos.h"
#include "engine/instalacao.h"
#include "stores/banco_sqlite.h"
#include "stores/conversao_logs.h"
#include "stores/historico_mdb.h"
#include "stores/historico_sqlite.h"

namespace lumavox::cli {

namespace {

void Recusar(Contexto& ctx, const std::string& mensagem) {
  ctx.erros << "erro: " << mensagem << "\n";
  ctx.codigoSaida = 1;
}

// lumavox.mdb.convertido, or .convertido.2, .3... when an earlier conversion took the name.
fs::path NomeDoOriginal(const fs::path& mdb) {
  fs::path nome = mdb;
  nome += ".convertido";
  std::error_code ec;
  for (int n = 2; fs::exists(fs::symlink_status(nome, ec)); ++n) {
    nome = mdb;
    nome += ".convertido." + std::to_string(n);
  }
  return nome;
}

void Converter(Contexto& ctx, const std::string& dir) {
  const fs::path pasta = ResolverPastaApp(dir);
  if (!PastaAppValida(ctx, pasta)) return;
  const fs::path mdb = pasta / kArquivoLogsMdb, db = pasta / kArquivoLogsSqlite;
  std::error_code ec;
  if (!fs::is_regular_file(mdb, ec))
    return Recusar(ctx, "não há lumavox.mdb em " + pasta.string() + ": nada a converter");
  if (fs::exists(fs::symlink_status(db, ec))) {
    int64_t registros = 0;
    try {
      registros = ContarRegistrosLogs(db);
    } catch (const std::exception& e) {
      return Recusar(ctx, std::string("lumavox.db já existe e não pôde ser lido: ") + e.what());
    }
    // Two histories merged would interleave their entry numbers; which one wins is the
    // station's call, not the tool's.
    if (registros > 0)
      return Recusar(ctx, "lumavox.db já tem " + std::to_string(registros) +
                              (registros == 1 ? " registro" : " registros") +
                              " e a conversão não junta dois históricos: tire-o da pasta "
                              "se o de lumavox.mdb deve ficar no lugar dele");
  }

  std::vector<LinhaBanco> logs;
  try {
    logs = LerTabelaMdb(mdb, "Logs", {"Codigo", "Musica", "Data", "Tipo"});
  } catch (const std::exception& e) {
    return Recusar(ctx, std::string("lumavox.mdb não pôde ser lido: ") + e.what());
  }
  try {
    GravarLogsConvertidos(logs, db);
  } catch (const std::exception& e) {
    return Recusar(ctx, std::string("lumavox.db não foi gravado: ") + e.what());
  }

  const fs::path original = NomeDoOriginal(mdb);
  try {
    ArquivosReais().Renomear(mdb, original);
  } catch (const std::exception& e) {
    return Recusar(ctx, "lumavox.db recebeu os " + std::to_string(logs.size()) +
                            " registros, mas o motor lê lumavox.mdb enquanto ele tiver esse nome "
                            "e renomeá-lo falhou: " +
                            e.what());
  }
  try {
    ArquivosReais().Sincronizar(pasta);
  } catch (const ErroExecucao&) {
  }
  ctx.saida << "convertido: " << logs.size() << " registros de lumavox.mdb para lumavox.db; "
            << "o original ficou em " << original.filename().string() << "\n";
}

}  // namespace

void RegistrarBanco(CLI::App& app, Contexto& ctx) {
  CLI::App* banco =
      app.add_subcommand("banco", "O banco de log da estação (lumavox.mdb, lumavox.db)");
  banco->require_subcommand(1);
  auto dir = std::make_shared<std::string>();
  CLI::App* conv = banco->add_subcommand(
      "converter", "Passa o log de lumavox.mdb para lumavox.db, de uma vez, e põe o .mdb de lado");
  conv->add_option("--dir", *dir, "pasta da aplicação (senão LUMAVOX_DIR, senão a do executável)");
  conv->callback([&ctx, dir] { Converter(ctx, *dir); });
}

}  // namespace lumavox::cli
