// The documents shipped with the package against the program: every performed rule has its
// section in rules.md, showing the period and filters of its description, every example file
// decodes, and the help points only to documents that exist.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

#include "apoio/linha_comando.h"
#include "base/texto.h"
#include "rules/descricoes.h"

namespace lumavox {
namespace {

namespace fs = std::filesystem;

// From the build, not from __FILE__: a compiler cache may have made the source path relative.
const fs::path kDocs = LUMAVOX_DOCS;

using Achados = std::sregex_iterator;

// Each "## Regra NN — " section of rules.md has a table of variables: the rows whose meaning
// starts with "the period" name the description's period, those that mention a filter its filters.
TEST(Documentacao, CadaRegraRealizadaTemSuaSecaoComPeriodoEFiltrosDaDescricao) {
  std::ifstream in(kDocs / "rules.md", std::ios::binary);
  const std::string texto{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  std::map<std::string, std::string> secoes;
  const std::regex titulo(R"(^## Regra (\d\d) — \S)", std::regex::multiline);
  for (Achados m(texto.begin(), texto.end(), titulo), fim; m != fim; ++m) {
    const size_t inicio = static_cast<size_t>(m->position());
    secoes[(*m)[1]] = texto.substr(inicio, texto.find("\n## ", inicio + 1) - inicio);
    EXPECT_NE(ProcurarDescricao(DeUtf8((*m)[1].str())), nullptr) << "regra " << (*m)[1];
  }

  const std::regex linha(R"(^\| (X[X\d, ]+) \| ([^|]*)\|)", std::regex::multiline), variavel(R"(X(\d+))");
  for (const DescricaoRegra& d : DescricoesRegras()) {
    const std::string numero = ParaUtf8(d.numero);
    const auto secao = secoes.find(numero);
    ASSERT_EQ(secao != secoes.end(), d.procedimento != nullptr) << "regra " << numero;
    if (secao == secoes.end()) continue;
    std::set<int> periodo, filtros, filtrosDaDescricao;
    for (Achados m(secao->second.begin(), secao->second.end(), linha), fim; m != fim; ++m) {
      const std::string celula = (*m)[1], sentido = (*m)[2];
      for (Achados x(celula.begin(), celula.end(), variavel); x != fim; ++x) {
        if (sentido.rfind("the period", 0) == 0) periodo.insert(std::stoi((*x)[1]));
        if (sentido.find("filter") != std::string::npos) filtros.insert(std::stoi((*x)[1]));
      }
    }
    EXPECT_EQ(periodo, (std::set<int>{d.periodo.data, d.periodo.inicio, d.periodo.fim})) << "regra " << numero;
    for (int n = 1; n <= kVariaveisPorRegra; ++n)
      if (d.filtros.Contem(n)) filtrosDaDescricao.insert(n);
    EXPECT_EQ(filtros, filtrosDaDescricao) << "regra " << numero;
  }
}

TEST(Documentacao, ExemplosDecodificamEAAjudaApontaSoParaDocumentosQueExistem) {
  int exemplos = 0;
  for (const auto& entrada : fs::recursive_directory_iterator(kDocs)) {
    if (entrada.path().extension() != ".rdb") continue;
    ++exemplos;
    const teste::ResultadoCli r = teste::RodarCli({"rdb", "decode", entrada.path().string()});
    EXPECT_TRUE(r.codigo == 0 && !r.saida.empty()) << entrada.path() << ": " << r.erros;
  }
  EXPECT_GE(exemplos, 2);

  const teste::ResultadoCli r = teste::RodarCli({"--help"});
  ASSERT_EQ(r.codigo, 0);
  int citados = 0;
  const std::regex documento(R"(\b([a-z-]+\.md)\b)");
  for (Achados it(r.saida.begin(), r.saida.end(), documento), fim; it != fim; ++it, ++citados)
    EXPECT_TRUE(fs::exists(kDocs / (*it)[1].str())) << (*it)[1];
  EXPECT_GE(citados, 2);
  // Each subcommand's help carries the same pointer.
  EXPECT_NE(teste::RodarCli({"select", "--help"}).saida.find("rules.md"), std::string::npos);
}

}  // namespace
}  // namespace lumavox
