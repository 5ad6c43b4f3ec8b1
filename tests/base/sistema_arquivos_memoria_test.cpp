// The file system in memory answers every operation as the real disk does, errors included.
#include "base/sistema_arquivos_memoria.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "apoio/estacao.h"

namespace lumavox {
namespace {

using teste::ErroDe;
using teste::EstacaoTeste;

// What an operation answered, in a form both file systems give alike.
struct Resposta {
  std::optional<CodigoErro> erro;
  std::string valor;
  bool operator==(const Resposta&) const = default;
};

std::ostream& operator<<(std::ostream& o, const Resposta& r) {
  return o << (r.erro ? static_cast<int>(*r.erro) : -1) << " [" << r.valor << "]";
}

class Par {
 public:
  explicit Par(const fs::path& raiz) : raiz_(raiz) { memoria_.CriarPastas(raiz); }

  // Runs operation `op` on both file systems with the paths `a` and `b` under the root.
  std::pair<Resposta, Resposta> Fazer(int op, const std::string& a, const std::string& b, const std::string& bytes) {
    return {Um(real_, op, raiz_ / a, raiz_ / b, bytes), Um(memoria_, op, raiz_ / a, raiz_ / b, bytes)};
  }

  SistemaArquivosMemoria& Memoria() { return memoria_; }

 private:
  static Resposta Um(SistemaArquivos& s, int op, const fs::path& a, const fs::path& b, const std::string& bytes) {
    Resposta r;
    r.erro = ErroDe([&] {
      switch (op) {
        case 0: s.EscreverBytes(a, bytes); break;
        case 1: r.valor = s.LerBytes(a); break;
        case 2: s.Renomear(a, b); break;
        case 3: r.valor = s.Apagar(a) ? "apagou" : "nada"; break;
        case 4: r.valor = s.ArquivoExiste(a) ? "existe" : "falta"; break;
        case 5: r.valor = s.CriarPastas(a) ? "criou" : "falhou"; break;
        case 6: {
          std::vector<std::string> nomes = s.ListarNomes(a, ".lre");
          std::vector<fs::path> caminhos = s.Listar(a, ".lre");
          std::sort(nomes.begin(), nomes.end());
          std::sort(caminhos.begin(), caminhos.end());
          for (size_t i = 0; i < nomes.size(); ++i) {
            r.valor += nomes[i] + ";";
            if (i >= caminhos.size() || caminhos[i] != a / nomes[i]) r.valor += "!";
          }
          break;
        }
        case 7: s.Sincronizar(a); break;
        default: {
          const auto m = s.Marca(a);
          r.valor = m ? std::to_string(m->second) : "sem marca";
        }
      }
    });
    return r;
  }

  fs::path raiz_;
  SistemaArquivosReal real_;
  SistemaArquivosMemoria memoria_;
};

// Random sequences of writes, reads, renames, deletions and listings over a few names, files
// and folders mixed (a folder where a file is written, a file where a folder is made, a rename
// onto a folder, folders that are not there): every answer matches the disk's.
TEST(ArquivosEmMemoria, RespondemComoODisco) {
  const std::vector<std::string> nomes = {"x.lre", "y.lre",   "p",           "p/x.lre", "p/q",      "p/q/z.lre",
                                          "p/y.rer", "p/q.lre", "falta/x.lre", "x.lre/a", "p/./x.lre", "p//q"};
  for (uint32_t semente = 1; semente <= 4; ++semente) {
    EstacaoTeste disco;
    Par par(disco.Pasta());
    std::mt19937 g(semente);
    for (int passo = 0; passo < 300; ++passo) {
      const int op = static_cast<int>(g() % 9);
      const std::string& a = nomes[g() % nomes.size()];
      std::string b = nomes[g() % nomes.size()];
      // A folder moved whole is not among what a run does.
      if (op == 2 && fs::is_directory(disco.Pasta() / a)) continue;
      const std::string bytes(g() % 3, static_cast<char>('a' + passo % 26));
      const auto [real, memoria] = par.Fazer(op, a, b, bytes);
      ASSERT_EQ(memoria, real) << "semente " << semente << " passo " << passo << " op " << op << " " << a << " -> " << b;
    }
  }
}

// Every write moves the mark, even one of the same size; a rename carries it along.
TEST(ArquivosEmMemoria, CadaEscritaMudaAMarca) {
  SistemaArquivosMemoria m;
  ASSERT_TRUE(m.CriarPastas("/r/list"));
  m.EscreverBytes("/r/ritmo.rer", "50\n");
  const auto primeira = m.Marca("/r/ritmo.rer");
  m.EscreverBytes("/r/ritmo.rer", "60\n");
  const auto segunda = m.Marca("/r/ritmo.rer");
  ASSERT_TRUE(primeira && segunda);
  EXPECT_NE(primeira, segunda);
  m.Renomear("/r/ritmo.rer", "/r/list/a.lre");
  EXPECT_EQ(m.Marca("/r/list/a.lre"), segunda);
  EXPECT_EQ(m.LerBytes("/r//list/./a.lre"), "60\n");
  EXPECT_FALSE(m.Versao("/r/list/a.lre").has_value());
}

}  // namespace
}  // namespace lumavox
