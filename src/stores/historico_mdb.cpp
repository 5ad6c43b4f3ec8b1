#include "stores/historico_mdb.h"

// mdbtools.h wraps glib.h and iconv.h in extern "C", which breaks glib's C++ templates; both
// are included first so their guards keep them out of that block.
#include <glib.h>
#include <iconv.h>
#include <mdbtools.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <utility>

#include "base/erro.h"
#include "base/numeros.h"
#include "base/texto.h"

namespace lumavox {

namespace {

constexpr size_t kLinhasTocadas = 500;

[[noreturn]] void ErroMdb(CodigoErro codigo, const std::string& causa) {
  throw ErroExecucao(codigo, causa);
}

// Jet 3 and 4 files start with this signature, Access 2007 files with "Standard ACE DB".
bool TemAssinaturaJet(const fs::path& arquivo) {
  std::ifstream in(arquivo, std::ios::binary);
  char cabecalho[19] = {};
  if (!in.read(cabecalho, sizeof cabecalho)) return false;
  static constexpr char kInicio[4] = {0, 1, 0, 0};
  return std::memcmp(cabecalho, kInicio, 4) == 0 &&
         (std::memcmp(cabecalho + 4, "Standard Jet DB", 15) == 0 ||
          std::memcmp(cabecalho + 4, "Standard ACE DB", 15) == 0);
}

struct LiberarTabela {
  void operator()(MdbTableDef* t) const { mdb_free_tabledef(t); }
};

}  // namespace

class FonteLogsMdb::Banco {
 public:
  explicit Banco(const fs::path& arquivo) {
    if (!TemAssinaturaJet(arquivo))
      ErroMdb(CodigoErro::ArquivoNaoEncontrado, arquivo.string() + " is not a Jet database");
    const std::string caminho = arquivo.string();
    mdb_ = mdb_open(caminho.c_str(), MDB_NOFLAGS);
    if (!mdb_) ErroMdb(CodigoErro::ErroDeEntradaSaida, "cannot open " + caminho);
    if (!mdb_read_catalog(mdb_, MDB_TABLE)) {
      mdb_close(mdb_);
      ErroMdb(CodigoErro::ErroDeEntradaSaida, "cannot read the catalogue of " + caminho);
    }
  }
  ~Banco() { mdb_close(mdb_); }
  Banco(const Banco&) = delete;
  Banco& operator=(const Banco&) = delete;

  std::vector<LinhaBanco> Ler(std::string_view nomeTabela, const std::vector<std::string>& nomes) {
    std::string nome(nomeTabela);
    // Declared before the table so they outlive it: libmdb writes into them on every fetch.
    std::vector<std::string> buffers(nomes.size());
    std::vector<int> tamanhos(nomes.size());
    std::unique_ptr<MdbTableDef, LiberarTabela> tabela(
        mdb_read_table_by_name(mdb_, nome.data(), MDB_TABLE));
    if (!tabela || !mdb_read_columns(tabela.get()))
      ErroMdb(CodigoErro::ErroDeEntradaSaida, "table " + nome + " not found");

    std::vector<MdbColumn*> colunas;
    for (const std::string& procurada : nomes) {
      MdbColumn* achada = nullptr;
      for (unsigned i = 0; i < tabela->num_cols && !achada; ++i) {
        auto* c = static_cast<MdbColumn*>(g_ptr_array_index(tabela->columns, i));
        if (IguaisSemCaixa(DeUtf8(c->name), DeUtf8(procurada))) {
          achada = c;
          // Bound columns get their value as text too; the numbers are read from the page.
          const size_t k = colunas.size();
          buffers[k].assign(mdb_->bind_size + 1, '\0');
          mdb_bind_column(tabela.get(), static_cast<int>(i) + 1, buffers[k].data(), &tamanhos[k]);
        }
      }
      if (!achada)
        ErroMdb(CodigoErro::ErroDeEntradaSaida, "column " + procurada + " not found in " + nome);
      colunas.push_back(achada);
    }

    std::vector<LinhaBanco> linhas;
    linhas.reserve(tabela->num_rows);
    mdb_rewind_table(tabela.get());
    while (mdb_fetch_row(tabela.get())) {
      LinhaBanco linha;
      linha.reserve(colunas.size());
      for (MdbColumn* c : colunas) linha.push_back(Valor(*c));
      linhas.push_back(std::move(linha));
    }
    return linhas;
  }

 private:
  // The value of a column of the row just fetched. Fixed-size values are read straight from
  // the page buffer libmdb cracked the row in, so dates keep their full range and precision
  // (libmdb's text form of a date only covers 1899 onwards).
  ValorBanco Valor(const MdbColumn& c) {
    const char* texto = static_cast<const char*>(c.bind_ptr);
    if (c.col_type == MDB_BOOL)  // kept in the null mask; True reads -1 as in the station's code
      return std::strcmp(texto, mdb_->boolean_true_value) == 0 ? -1.0 : 0.0;
    const int inicio = c.cur_value_start, tamanho = c.cur_value_len;
    if (tamanho == 0) return std::monostate{};
    auto cabe = [&](int bytes) {
      return tamanho >= bytes && inicio >= 0 && inicio + bytes <= MDB_PGSIZE;
    };
    void* pagina = mdb_->pg_buf;
    switch (c.col_type) {
      case MDB_BYTE:
        if (cabe(1)) return static_cast<double>(mdb_get_byte(pagina, inicio));
        break;
      case MDB_INT:
        if (cabe(2))
          return static_cast<double>(static_cast<int16_t>(mdb_get_int16(pagina, inicio)));
        break;
      case MDB_LONGINT:
        if (cabe(4))
          return static_cast<double>(static_cast<int32_t>(mdb_get_int32(pagina, inicio)));
        break;
      case MDB_FLOAT:
        if (cabe(4)) return static_cast<double>(mdb_get_single(pagina, inicio));
        break;
      case MDB_DOUBLE:
        if (cabe(8)) return mdb_get_double(pagina, inicio);
        break;
      case MDB_DATETIME:
        if (cabe(8)) {
          try {
            return DataHoraDeOle(mdb_get_double(pagina, inicio));
          } catch (const ErroExecucao&) {
          }
        }
        break;
      case MDB_MONEY:
      case MDB_NUMERIC:
        if (auto n = ConverterNumero(DeUtf8(texto))) return *n;
        break;
      case MDB_TEXT:
      case MDB_MEMO: return DeUtf8(texto);
      default: break;
    }
    return std::monostate{};
  }

  MdbHandle* mdb_ = nullptr;
};

namespace {

// Position of a value in Jet's ordering: Null first, then numbers and dates, then texts.
int Classe(const ValorBanco& v) {
  if (std::holds_alternative<std::monostate>(v)) return 0;
  if (std::holds_alternative<Texto>(v)) return 2;
  return 1;
}

double Numero(const ValorBanco& v) {
  if (const DataHora* d = std::get_if<DataHora>(&v))
    return static_cast<double>(d->segundos) / kSegundosPorDia;
  return std::get<double>(v);
}

int Comparar(const ValorBanco& a, const ValorBanco& b) {
  const int ca = Classe(a), cb = Classe(b);
  if (ca != cb) return ca < cb ? -1 : 1;
  if (ca == 0) return 0;
  if (ca == 2) {
    const Texto ta = Maiusculas(std::get<Texto>(a)), tb = Maiusculas(std::get<Texto>(b));
    return ta < tb ? -1 : (tb < ta ? 1 : 0);
  }
  const double na = Numero(a), nb = Numero(b);
  return na < nb ? -1 : (nb < na ? 1 : 0);
}

bool DoTipo(const LinhaBanco& linha, double tipo) {
  const double* t = std::get_if<double>(&linha[3]);
  return t && *t == tipo;
}

}  // namespace

std::vector<LinhaBanco> LerTabelaMdb(const fs::path& arquivo, std::string_view tabela,
                                     const std::vector<std::string>& colunas) {
  FonteLogsMdb::Banco banco(arquivo);
  return banco.Ler(tabela, colunas);
}

std::vector<LinhaLogs> AvaliarConsultaLogs(const std::vector<LinhaBanco>& logs,
                                           ConsultaLogs consulta) {
  enum { Codigo, Musica, Data, Tipo };
  const double tipo = consulta == ConsultaLogs::Tocadas ? 0
                      : consulta == ConsultaLogs::Tipo4 ? 4
                                                        : 5;
  std::vector<const LinhaBanco*> filtradas;
  for (const LinhaBanco& l : logs)
    if (DoTipo(l, tipo)) filtradas.push_back(&l);

  std::vector<LinhaLogs> resultado;
  switch (consulta) {
    case ConsultaLogs::Tocadas:
      std::stable_sort(filtradas.begin(), filtradas.end(),
                       [](auto* a, auto* b) { return Comparar((*a)[Codigo], (*b)[Codigo]) > 0; });
      if (filtradas.size() > kLinhasTocadas) filtradas.resize(kLinhasTocadas);
      for (auto* l : filtradas) resultado.push_back({(*l)[Codigo], (*l)[Musica], (*l)[Data]});
      break;
    case ConsultaLogs::Tipo4:
      // VIEWLogs: Tipo, Musica, COUNT(*) AS NReg grouped by Tipo and Musica.
      std::stable_sort(filtradas.begin(), filtradas.end(),
                       [](auto* a, auto* b) { return Comparar((*a)[Musica], (*b)[Musica]) < 0; });
      for (size_t i = 0; i < filtradas.size();) {
        size_t j = i + 1;
        while (j < filtradas.size() &&
               Comparar((*filtradas[i])[Musica], (*filtradas[j])[Musica]) == 0)
          ++j;
        resultado.push_back(
            {(*filtradas[i])[Tipo], (*filtradas[i])[Musica], static_cast<double>(j - i)});
        i = j;
      }
      break;
    case ConsultaLogs::Tipo5:
      std::stable_sort(filtradas.begin(), filtradas.end(), [](auto* a, auto* b) {
        const int m = Comparar((*a)[Musica], (*b)[Musica]);
        return m != 0 ? m < 0 : Comparar((*a)[Data], (*b)[Data]) > 0;
      });
      for (auto* l : filtradas) resultado.push_back({(*l)[Tipo], (*l)[Musica], (*l)[Data]});
      break;
  }
  return resultado;
}

namespace {

class CursorVetor : public CursorLogs {
 public:
  explicit CursorVetor(std::vector<LinhaLogs> linhas) : linhas_(std::move(linhas)) {}
  bool Proxima(LinhaLogs& linha) override {
    if (i_ == linhas_.size()) return false;
    linha = linhas_[i_++];
    return true;
  }

 private:
  std::vector<LinhaLogs> linhas_;
  size_t i_ = 0;
};

}  // namespace

FonteLogsMdb::FonteLogsMdb(fs::path arquivo) : arquivo_(std::move(arquivo)) {}

FonteLogsMdb::~FonteLogsMdb() = default;

void FonteLogsMdb::Abrir() {
  banco_.reset();
  logs_.reset();
  banco_ = std::make_unique<Banco>(arquivo_);
}

std::unique_ptr<CursorLogs> FonteLogsMdb::Consultar(ConsultaLogs consulta) {
  if (!banco_) throw ErroExecucao(CodigoErro::ChamadaInvalida, "log database not open");
  if (!logs_) logs_ = banco_->Ler("Logs", {"Codigo", "Musica", "Data", "Tipo"});
  return std::make_unique<CursorVetor>(AvaliarConsultaLogs(*logs_, consulta));
}

}  // namespace lumavox
