#include "stores/conversao_logs.h"

#include <algorithm>
#include <string>

#include "base/arquivos.h"
#include "base/erro.h"
#include "base/sistema_arquivos.h"
#include "stores/banco_sqlite.h"
#include "stores/historico_mdb.h"
#include "stores/historico_sqlite.h"

namespace lumavox {

namespace {

// Equal as the load takes them: a date the Jet file holds as a date is text in SQLite.
bool Equivalentes(const ValorBanco& jet, const ValorBanco& sqlite) {
  if (jet == sqlite) return true;
  const DataHora* data = std::get_if<DataHora>(&jet);
  const Texto* texto = std::get_if<Texto>(&sqlite);
  return data && texto && ConverterDataHora(*texto) == *data;
}

// SQLite orders, groups and types values its own way (texts by case, a text that looks like a
// number in an INTEGER column made a number); whatever of that touches these rows shows here,
// before anything is kept.
void ConferirConsultas(sqlite3* db, const std::vector<LinhaBanco>& logs) {
  const std::pair<ConsultaLogs, const char*> consultas[] = {
      {ConsultaLogs::Tocadas, "the newest plays"},
      {ConsultaLogs::Tipo4, "the type-4 marks"},
      {ConsultaLogs::Tipo5, "the type-5 marks"}};
  for (const auto& [consulta, nome] : consultas) {
    const std::vector<LinhaLogs> esperadas = AvaliarConsultaLogs(logs, consulta);
    auto cursor = ConsultarLogsSqlite(db, consulta);
    LinhaLogs linha;
    size_t i = 0;
    bool iguais = true;
    for (; iguais && cursor->Proxima(linha); ++i)
      iguais = i < esperadas.size() &&
               std::equal(esperadas[i].begin(), esperadas[i].end(), linha.begin(), Equivalentes);
    if (!iguais || i != esperadas.size())
      throw ErroExecucao(
          CodigoErro::TiposIncompativeis,
          std::string("the SQLite log would not load ") + nome + " as the Jet file does");
  }
}

// The database file and what SQLite keeps beside it.
void ApagarBanco(SistemaArquivos& arquivos, const fs::path& arquivo) {
  for (const char* fim : {"", "-wal", "-shm", "-journal"}) {
    fs::path caminho = arquivo;
    caminho += fim;
    arquivos.Apagar(caminho);
  }
}

}  // namespace

void GravarLogsConvertidos(const std::vector<LinhaBanco>& logs, const fs::path& destino) {
  SistemaArquivos& arquivos = ArquivosReais();
  if (arquivos.ArquivoExiste(destino)) {
    BancoLogs banco(destino);
    banco.Preencher(logs, [&] { ConferirConsultas(banco.Conexao(), logs); });
    return;
  }
  fs::path parcial = destino;
  parcial += kTerminacaoParcial;
  // What an interrupted conversion left is no start for this one: SQLite would replay its -wal
  // into the new file.
  ApagarBanco(arquivos, parcial);
  try {
    {
      BancoLogs banco(parcial);
      banco.Preencher(logs, [&] { ConferirConsultas(banco.Conexao(), logs); });
    }
    arquivos.Sincronizar(parcial);
    arquivos.Renomear(parcial, destino);
  } catch (...) {
    ApagarBanco(arquivos, parcial);
    throw;
  }
  // As in EscreverInteiro: the new name reaches the disk with its folder, and failing here
  // undoes nothing, since the file is whole either way.
  try {
    arquivos.Sincronizar(destino.parent_path().empty() ? fs::path(".") : destino.parent_path());
  } catch (const ErroExecucao&) {
  }
}

}  // namespace lumavox
