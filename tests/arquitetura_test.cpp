// The folders of src/ include each other as docs/architecture.md's table says, and only
// downwards: the table is read from the document, the includes from the sources.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace {

namespace fs = std::filesystem;

using Pastas = std::set<std::string>;

// The rows "| `pasta/` | `outra/` ... |", in the document's order: each folder of src/ includes
// just the ones its row names, all in rows above it, and every folder has its row.
TEST(Arquitetura, InclusoesSeguemATabelaSoParaBaixo) {
  std::map<std::string, Pastas> fontes;
  Pastas emSrc, acima;
  const std::regex inclusao(R"re(^\s*#\s*include\s+"([a-z]+)/)re");
  for (const auto& pasta : fs::directory_iterator(LUMAVOX_SRC)) {
    if (!pasta.is_directory()) continue;
    const std::string nome = pasta.path().filename().string();
    emSrc.insert(nome);
    for (const auto& arquivo : fs::recursive_directory_iterator(pasta.path())) {
      if (arquivo.path().extension() != ".h" && arquivo.path().extension() != ".cpp") continue;
      std::ifstream fonte(arquivo.path());
      for (std::string texto; std::getline(fonte, texto);) {
        std::smatch m;
        if (std::regex_search(texto, m, inclusao) && m[1] != nome && fs::is_directory(fs::path(LUMAVOX_SRC) / m[1].str()))
          fontes[nome].insert(m[1]);
      }
    }
  }

  std::ifstream doc(fs::path(LUMAVOX_DOCS) / "architecture.md");
  const std::regex linha(R"(^\|\s*`([a-z]+)/`\s*\|(.*)\|\s*$)"), pasta("`([a-z]+)/`");
  for (std::string texto; std::getline(doc, texto);) {
    std::smatch m;
    if (!std::regex_match(texto, m, linha)) continue;
    Pastas inclui;
    for (std::sregex_iterator it(m[2].first, m[2].second, pasta), fim; it != fim; ++it)
      inclui.insert((*it)[1]);
    EXPECT_TRUE(std::includes(acima.begin(), acima.end(), inclui.begin(), inclui.end()))
        << m[1] << "/ inclui pastas que a tabela não põe abaixo dela";
    EXPECT_EQ(fontes[m[1]], inclui) << "inclusões de src/" << m[1] << "/";
    acima.insert(m[1]);
  }
  EXPECT_EQ(emSrc, acima) << "pastas de src/ e as da tabela de docs/architecture.md";
}

}  // namespace
