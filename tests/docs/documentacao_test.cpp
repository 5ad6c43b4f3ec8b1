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
#include <vector>

#include "apoio/linha_comando.h"
#include "base/texto.h"
#include "rules/descricoes.h"

namespace lumavox {
namespace {

namespace fs = std::filesystem;

// From the build, not from __FILE__: a compiler cache may have made the source path relative.
const fs::path kDocs = LUMAVOX_DOCS;

std::string Ler(const fs::path& arquivo) {
  std::ifstream in(arquivo, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Every match of `padrao` in `texto`, which must outlive them.
std::vector<std::smatch> Achados(const std::string& texto, const std::regex& padrao) {
  return {std::sregex_iterator(texto.begin(), texto.end(), padrao), std::sregex_iterator()};
}

// The "## Regra NN — " sections of rules.md by number, each up to the next heading.
std::map<std::string, std::string> SecoesDasRegras() {
  const std::string texto = Ler(kDocs / "rules.md");
  std::map<std::string, std::string> secoes;
  const std::regex titulo(R"(^## Regra (\d\d) — \S)", std::regex::multiline);
  for (const std::smatch& m : Achados(texto, titulo)) {
    const size_t inicio = static_cast<size_t>(m.position());
    secoes[m[1]] = texto.substr(inicio, texto.find("\n## ", inicio + 1) - inicio);
  }
  return secoes;
}

std::string Numero(const DescricaoRegra& d) { return ParaUtf8(d.numero); }

// The variable numbers a table cell names ("X2, X3, X4").
std::set<int> Variaveis(const std::string& celula) {
  std::set<int> numeros;
  for (const std::smatch& m : Achados(celula, std::regex(R"(X(\d+))")))
    numeros.insert(std::stoi(m[1]));
  return numeros;
}

TEST(Documentacao, CadaRegraRealizadaTemSuaSecaoENenhumaOutra) {
  const auto secoes = SecoesDasRegras();
  ASSERT_FALSE(secoes.empty()) << kDocs / "rules.md";
  for (const DescricaoRegra& d : DescricoesRegras())
    EXPECT_EQ(secoes.count(Numero(d)) == 1, d.procedimento != nullptr) << "regra " << Numero(d);
  for (const auto& secao : secoes)
    EXPECT_NE(ProcurarDescricao(DeUtf8(secao.first)), nullptr) << "regra " << secao.first;
}

// Each section's table of variables names the period and the filters its description gives.
TEST(Documentacao, TabelaDeCadaRegraMostraOPeriodoEOsFiltrosDaDescricao) {
  const auto secoes = SecoesDasRegras();
  const std::regex linha(R"(^\| (X[X\d, ]+) \| ([^|]*)\|)", std::regex::multiline);
  for (const DescricaoRegra& d : DescricoesRegras()) {
    const auto secao = secoes.find(Numero(d));
    if (secao == secoes.end()) continue;
    const std::string& texto = secao->second;
    std::set<int> periodo, filtros;
    for (const std::smatch& m : Achados(texto, linha)) {
      const std::string sentido = m[2];
      const std::set<int> variaveis = Variaveis(m[1]);
      if (sentido.rfind("the period", 0) == 0) periodo.insert(variaveis.begin(), variaveis.end());
      if (sentido.find("filter") != std::string::npos)
        filtros.insert(variaveis.begin(), variaveis.end());
    }
    EXPECT_EQ(periodo, (std::set<int>{d.periodo.data, d.periodo.inicio, d.periodo.fim}))
        << "regra " << Numero(d);
    std::set<int> filtrosDaDescricao;
    for (int n = 1; n <= kVariaveisPorRegra; ++n)
      if (d.filtros.Contem(n)) filtrosDaDescricao.insert(n);
    EXPECT_EQ(filtros, filtrosDaDescricao) << "regra " << Numero(d);
  }
}

TEST(Documentacao, CadaArquivoDeExemploDecodifica) {
  int exemplos = 0;
  for (const auto& entrada : fs::recursive_directory_iterator(kDocs)) {
    if (entrada.path().extension() != ".rdb") continue;
    ++exemplos;
    const teste::ResultadoCli r = teste::RodarCli({"rdb", "decode", entrada.path().string()});
    EXPECT_EQ(r.codigo, 0) << entrada.path() << ": " << r.erros;
    EXPECT_FALSE(r.saida.empty()) << entrada.path();
  }
  EXPECT_GE(exemplos, 2);
}

TEST(Documentacao, AjudaApontaSoParaDocumentosQueExistem) {
  const teste::ResultadoCli r = teste::RodarCli({"--help"});
  ASSERT_EQ(r.codigo, 0);
  int citados = 0;
  const std::regex documento(R"(\b([a-z-]+\.md)\b)");
  for (auto it = std::sregex_iterator(r.saida.begin(), r.saida.end(), documento); it != std::sregex_iterator(); ++it) {
    ++citados;
    EXPECT_TRUE(fs::exists(kDocs / (*it)[1].str())) << (*it)[1];
  }
  EXPECT_GE(citados, 2);
  // Each subcommand's help carries the same pointer.
  EXPECT_NE(teste::RodarCli({"select", "--help"}).saida.find("rules.md"), std::string::npos);
}

}  // namespace
}  // namespace lumavox
