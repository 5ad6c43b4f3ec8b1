// The documents shipped with the package against the program: every performed rule has its
// section in rules.md, every example file decodes, and the help points only to documents that
// exist.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
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

// Each performed rule has its "## Regra NN — " section in rules.md, and each section is a rule's.
TEST(Documentacao, CadaRegraRealizadaTemSuaSecao) {
  std::ifstream in(kDocs / "rules.md", std::ios::binary);
  const std::string texto{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  std::set<std::string> secoes;
  const std::regex titulo(R"(^## Regra (\d\d) — \S)", std::regex::multiline);
  for (Achados m(texto.begin(), texto.end(), titulo), fim; m != fim; ++m) {
    secoes.insert((*m)[1]);
    EXPECT_NE(ProcurarDescricao(DeUtf8((*m)[1].str())), nullptr) << "regra " << (*m)[1];
  }
  for (const DescricaoRegra& d : DescricoesRegras())
    EXPECT_EQ(secoes.count(ParaUtf8(d.numero)), d.procedimento ? 1u : 0u) << ParaUtf8(d.numero);
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
