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

// What an operation answered (the error's code, -1 for none, and what it gave back), in a form
// both file systems give alike.
using Resposta = std::pair<int, std::string>;

// Runs operation `op` with the paths `a` and `b`.
Resposta Fazer(SistemaArquivos& s, int op, const fs::path& a, const fs::path& b, const std::string& bytes) {
  Resposta r;
  const auto erro = ErroDe([&] {
    switch (op) {
      case 0: s.EscreverBytes(a, bytes); break;
      case 1: r.second = s.LerBytes(a); break;
      case 2: s.Renomear(a, b); break;
      case 3: r.second = s.Apagar(a) ? "apagou" : "nada"; break;
      case 4: r.second = s.ArquivoExiste(a) ? "existe" : "falta"; break;
      case 5: r.second = s.CriarPastas(a) ? "criou" : "falhou"; break;
      case 6: {
        std::vector<std::string> nomes = s.ListarNomes(a, ".lre");
        std::sort(nomes.begin(), nomes.end());
        for (const std::string& nome : nomes) r.second += nome + ";";
        break;
      }
      case 7: s.Sincronizar(a); break;
      default: r.second = s.Marca(a) ? std::to_string(s.Marca(a)->second) : "sem marca";
    }
  });
  r.first = erro ? static_cast<int>(*erro) : -1;
  return r;
}

// Random sequences of writes, reads, renames, deletions and listings over a few names, files
// and folders mixed (a folder where a file is written, a file where a folder is made, a rename
// onto a folder, folders that are not there): every answer matches the disk's.
TEST(ArquivosEmMemoria, RespondemComoODisco) {
  const std::vector<std::string> nomes = {"x.lre", "y.lre",   "p",           "p/x.lre", "p/q",      "p/q/z.lre",
                                          "p/y.rer", "p/q.lre", "falta/x.lre", "x.lre/a", "p/./x.lre", "p//q"};
  for (uint32_t semente = 1; semente <= 4; ++semente) {
    EstacaoTeste disco;
    SistemaArquivosReal real;
    SistemaArquivosMemoria memoria;
    memoria.CriarPastas(disco.Pasta());
    std::mt19937 g(semente);
    for (int passo = 0; passo < 300; ++passo) {
      const int op = static_cast<int>(g() % 9);
      const std::string& a = nomes[g() % nomes.size()];
      const std::string& b = nomes[g() % nomes.size()];
      // A folder moved whole is not among what a run does.
      if (op == 2 && fs::is_directory(disco.Pasta() / a)) continue;
      const std::string bytes(g() % 3, static_cast<char>('a' + passo % 26));
      const fs::path de = disco.Caminho(a), para = disco.Caminho(b);
      ASSERT_EQ(Fazer(memoria, op, de, para, bytes), Fazer(real, op, de, para, bytes))
          << "semente " << semente << " passo " << passo << " op " << op << " " << a << " -> " << b;
    }
  }
}

// Every write moves the mark, even one of the same size, and a rename keeps the new one.
TEST(ArquivosEmMemoria, CadaEscritaMudaAMarca) {
  SistemaArquivosMemoria m;
  ASSERT_TRUE(m.CriarPastas("/r"));
  m.EscreverBytes("/r/ritmo.rer", "50\n");
  const auto primeira = m.Marca("/r/ritmo.rer");
  m.EscreverBytes("/r/ritmo.rer", "60\n");
  m.Renomear("/r/ritmo.rer", "/r/a.lre");
  EXPECT_TRUE(m.Marca("/r/a.lre") && m.Marca("/r/a.lre") != primeira);
}

}  // namespace
}  // namespace lumavox
