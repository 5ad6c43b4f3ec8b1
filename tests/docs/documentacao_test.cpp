// The documents shipped with the package against the program: every performed rule has its
// section in rules.md, every example file decodes, and the help points only to documents that
// exist.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "cli/comandos.h"
#include "rules/regras.h"

namespace lumavox {
namespace {

namespace fs = std::filesystem;

// From the build, not from __FILE__: a compiler cache may have made the source path relative.
const fs::path kDocs = LUMAVOX_DOCS;

struct Saida {
  int codigo;
  std::string texto, erros;
};

Saida Rodar(std::vector<std::string> args) {
  std::ostringstream saida, erros;
  const int codigo = cli::Executar(std::move(args), saida, erros);
  return {codigo, saida.str(), erros.str()};
}

std::string Ler(const fs::path& arquivo) {
  std::ifstream in(arquivo, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

TEST(Documentacao, CadaRegraRealizadaTemSuaSecaoENenhumaOutra) {
  const std::string texto = Ler(kDocs / "rules.md");
  ASSERT_FALSE(texto.empty()) << kDocs / "rules.md";
  std::set<std::string> secoes;
  const std::regex titulo(R"(^## Regra (\d\d) — \S)", std::regex::multiline);
  for (auto it = std::sregex_iterator(texto.begin(), texto.end(), titulo); it != std::sregex_iterator(); ++it)
    secoes.insert((*it)[1]);

  int realizadas = 0;
  for (int n = 0; n <= 99; ++n) {
    const std::string id = (n < 10 ? "0" : "") + std::to_string(n);
    const std::u16string id16(id.begin(), id.end());
    const bool realizada = ProcurarRegra(id16).procedimento != nullptr;
    realizadas += realizada;
    EXPECT_EQ(secoes.count(id) == 1, realizada) << "regra " << id;
  }
  EXPECT_GT(realizadas, 0);
}

TEST(Documentacao, CadaArquivoDeExemploDecodifica) {
  int exemplos = 0;
  for (const auto& entrada : fs::recursive_directory_iterator(kDocs)) {
    if (entrada.path().extension() != ".rdb") continue;
    ++exemplos;
    const Saida r = Rodar({"rdb", "decode", entrada.path().string()});
    EXPECT_EQ(r.codigo, 0) << entrada.path() << ": " << r.erros;
    EXPECT_FALSE(r.texto.empty()) << entrada.path();
  }
  EXPECT_GE(exemplos, 2);
}

TEST(Documentacao, AjudaApontaSoParaDocumentosQueExistem) {
  const Saida r = Rodar({"--help"});
  ASSERT_EQ(r.codigo, 0);
  int citados = 0;
  const std::regex documento(R"(\b([a-z-]+\.md)\b)");
  for (auto it = std::sregex_iterator(r.texto.begin(), r.texto.end(), documento); it != std::sregex_iterator(); ++it) {
    ++citados;
    EXPECT_TRUE(fs::exists(kDocs / (*it)[1].str())) << (*it)[1];
  }
  EXPECT_GE(citados, 2);
  // Each subcommand's help carries the same pointer.
  EXPECT_NE(Rodar({"select", "--help"}).texto.find("rules.md"), std::string::npos);
}

}  // namespace
}  // namespace lumavox
