// The station's log database as a Jet 4 file, "lumavox.mdb" in the application folder, read
// with libmdb. Table Logs (Codigo, Musica, Data, Tipo) is read whole once per load and the
// three queries, the VIEWLogs grouping among them, are evaluated here.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "stores/historico_fonte.h"

namespace lumavox {

namespace fs = std::filesystem;

inline constexpr const char* kArquivoLogsMdb = "lumavox.mdb";

// The station's Windows programs open the same file with the connection string
//   Provider=Microsoft.Jet.OLEDB.4.0;Data Source= <folder>\lumavox.mdb;Jet OLEDB:Database Password=qmv73140862;
// and an empty user name. libmdb reads the pages without the password.

// Every row of `tabela`, with the named columns in the order asked (names compare ignoring
// case). Null values read as Null; Long, Integer, Byte, Single, Double, Currency and Decimal as
// numbers; DateTime as a date-time; Text and Memo as text; anything else as Null. Raises
// ErroExecucao when the file is not a Jet database or the table or a column is missing.
std::vector<LinhaBanco> LerTabelaMdb(const fs::path& arquivo, std::string_view tabela,
                                     const std::vector<std::string>& colunas);

// One of the three queries over rows of Logs given as (Codigo, Musica, Data, Tipo), with Jet's
// ordering: Null before any value, numbers and dates by value, texts ignoring case.
std::vector<LinhaLogs> AvaliarConsultaLogs(const std::vector<LinhaBanco>& logs,
                                           ConsultaLogs consulta);

class FonteLogsMdb : public FonteLogs {
 public:
  explicit FonteLogsMdb(fs::path arquivo);
  ~FonteLogsMdb() override;
  FonteLogsMdb(const FonteLogsMdb&) = delete;
  FonteLogsMdb& operator=(const FonteLogsMdb&) = delete;

  void Abrir() override;
  std::unique_ptr<CursorLogs> Consultar(ConsultaLogs consulta) override;

  class Banco;  // the open libmdb handle

 private:
  fs::path arquivo_;
  std::unique_ptr<Banco> banco_;
  std::optional<std::vector<LinhaBanco>> logs_;  // read on the first query of a load
};

}  // namespace lumavox
