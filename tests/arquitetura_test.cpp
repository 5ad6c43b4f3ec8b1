// The folders of src/ include each other as docs/architecture.md's table says, and only
// downwards: the table is read from the document, the includes from the sources.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Grafo = std::map<std::string, std::set<std::string>>;

// The rows "| `pasta/` | `outra/` ... |" in the order the document gives them.
std::vector<std::pair<std::string, std::set<std::string>>> TabelaDoDocumento() {
  std::ifstream doc(fs::path(LUMAVOX_DOCS) / "architecture.md");
  std::vector<std::pair<std::string, std::set<std::string>>> linhas;
  const std::regex linha(R"(^\|\s*`([a-z]+)/`\s*\|(.*)\|\s*$)");
  const std::regex pasta("`([a-z]+)/`");
  for (std::string texto; std::getline(doc, texto);) {
    std::smatch m;
    if (!std::regex_match(texto, m, linha)) continue;
    std::set<std::string> inclui;
    const std::string resto = m[2];
    for (std::sregex_iterator it(resto.begin(), resto.end(), pasta), fim; it != fim; ++it) inclui.insert((*it)[1]);
    linhas.emplace_back(m[1], inclui);
  }
  return linhas;
}

// For each folder of src/, the other folders its files include.
Grafo GrafoDasFontes() {
  Grafo grafo;
  const std::regex inclusao(R"re(^\s*#\s*include\s+"([a-z]+)/)re");
  for (const auto& pasta : fs::directory_iterator(LUMAVOX_SRC)) {
    if (!pasta.is_directory()) continue;
    const std::string nome = pasta.path().filename().string();
    std::set<std::string>& inclui = grafo[nome];
    for (const auto& arquivo : fs::recursive_directory_iterator(pasta.path())) {
      const std::string ext = arquivo.path().extension().string();
      if (ext != ".h" && ext != ".cpp") continue;
      std::ifstream fonte(arquivo.path());
      for (std::string texto; std::getline(fonte, texto);) {
        std::smatch m;
        if (std::regex_search(texto, m, inclusao) && m[1] != nome && fs::is_directory(fs::path(LUMAVOX_SRC) / m[1].str()))
          inclui.insert(m[1]);
      }
    }
  }
  return grafo;
}

std::string Listar(const std::set<std::string>& pastas) {
  std::string texto;
  for (const std::string& p : pastas) texto += p + "/ ";
  return texto.empty() ? "(nada)" : texto;
}

TEST(Arquitetura, InclusoesSeguemATabelaSoParaBaixo) {
  const auto tabela = TabelaDoDocumento();
  const Grafo fontes = GrafoDasFontes();
  ASSERT_GE(tabela.size(), 7u) << "tabela de pastas não encontrada em docs/architecture.md";

  std::set<std::string> acima;  // folders the table has listed so far
  std::set<std::string> documentadas;
  for (const auto& [pasta, inclui] : tabela) {
    documentadas.insert(pasta);
    for (const std::string& alvo : inclui)
      EXPECT_TRUE(acima.count(alvo)) << pasta << "/ inclui " << alvo << "/, que a tabela não põe abaixo dela";
    const auto it = fontes.find(pasta);
    ASSERT_NE(it, fontes.end()) << pasta << "/ está na tabela mas não em src/";
    EXPECT_EQ(Listar(it->second), Listar(inclui)) << "inclusões de src/" << pasta << "/";
    acima.insert(pasta);
  }
  for (const auto& [pasta, inclui] : fontes) EXPECT_TRUE(documentadas.count(pasta)) << "src/" << pasta << "/ falta na tabela";

  // The two front ends stand side by side.
  EXPECT_FALSE(fontes.at("app").count("cli"));
}

}  // namespace
