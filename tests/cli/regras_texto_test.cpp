#include <gtest/gtest.h>

#include <algorithm>

#include "apoio/estacao.h"
#include "apoio/linha_comando.h"

namespace lumavox::cli {
namespace {

using teste::EstacaoTeste;
using teste::RodarCli;

std::string Linha(std::string_view texto, char prefixo = '0') {
  std::string l = EstacaoTeste::Codificada(texto);
  l[0] = prefixo;
  return l;
}

// A rules file with everything a station's writer may leave behind: LF ends, leading
// characters other than "0", a lower-case flag, a group with blanks, an extra trailing digit,
// an empty line, a CRLF line among LF ones, a partial record and no final line end.
std::string ArquivoEstranho() {
  std::vector<std::string> l{Linha("a", '7'), Linha("28"), Linha("(X1)% \"de\" chance\\"), "",
                             Linha("80") + "1", "x00065  66", Linha("Ritmo:Calmo", 'Z'), Linha("")};
  for (int i = 0; i < 6; ++i) l.push_back(Linha(""));
  std::string bytes;
  for (const std::string& s : l) bytes += s + "\n";
  bytes += Linha("A") + "\r\n";
  return bytes + Linha("01") + "\n" + Linha("sobra");
}

// Writes `toml` into the station's regras.toml and imports it there.
teste::ResultadoCli ImportarTexto(EstacaoTeste& estacao, const std::string& toml) {
  estacao.GravarTexto("regras.toml", toml);
  return RodarCli({"regras", "importar", estacao.Caminho("regras.toml").string(), "--dir", estacao.Pasta().string()});
}

// Exported and imported again, the rules come back byte for byte; an edited text changes only
// what was edited.
TEST(RegrasTexto, ExportarEImportarDevolvemOsMesmosBytesESoOEditadoMuda) {
  EstacaoTeste origem, destino;
  const std::string dir = origem.Pasta().string();
  ASSERT_EQ(RodarCli({"demo", "--dir", dir, "--musicas", "60"}).codigo, 0);  // CRLF, canonical lines
  origem.GravarTexto("lxie1.rdb", ArquivoEstranho());
  origem.GravarTexto("lxie2.rdb", "");

  const teste::ResultadoCli exportado = RodarCli({"regras", "exportar", "--dir", dir});
  // Not even a "does not come back identical" notice.
  EXPECT_EQ(exportado.erros, "");
  ASSERT_EQ(ImportarTexto(destino, exportado.saida).codigo, 0);
  for (const char* arquivo : {"lxie0.rdb", "lxie1.rdb", "lxie2.rdb"})
    EXPECT_EQ(destino.Ler(arquivo), origem.Ler(arquivo)) << arquivo;

  std::string toml = RodarCli({"regras", "exportar", "--dir", dir, "--set", "1"}).saida;
  toml.replace(toml.find("var3 = \"Ritmo:Calmo\""), 20, "var3 = \"Ritmo:Animado\"");
  toml.replace(toml.find("ativo = true"), 12, "ativo = false");
  ASSERT_EQ(ImportarTexto(origem, toml).codigo, 0);

  const std::string depois = origem.Ler("lxie1.rdb"), original = ArquivoEstranho();
  // Edited lines keep their leading characters; the flag's own spelling ("a") no longer
  // matches, so it is written as the plain "I".
  EXPECT_NE(depois.find(Linha("Ritmo:Animado", 'Z') + "\n"), std::string::npos);
  EXPECT_EQ(depois.substr(0, depois.find('\n')), Linha("I", '7'));
  EXPECT_NE(depois.find("x00065  66\n"), std::string::npos);
  EXPECT_EQ(std::count(depois.begin(), depois.end(), '\n'), std::count(original.begin(), original.end(), '\n'));
  EXPECT_EQ(origem.Ler("lxie0.rdb"), destino.Ler("lxie0.rdb"));  // the sets not in the text stay
}

TEST(RegrasConferir, ApontaCadaProblemaComConjuntoERegraETextoRuimNaoMudaNada) {
  EstacaoTeste estacao;
  estacao.Regra(0, true, "01", "", {"Ritmo:Calmo", "", "08:00", "18:00"})   // fine
      .Regra(0, true, "35")                                                 // unknown number
      .Regra(0, false, "34", "", {"3", "Cor:Azul", "31/02/2026"})           // unknown field, bad date
      .Regra(2, true, "12", "", {"*2-x", "Genero:Rock", "", "08:00", "25:61"})  // bad range, bad time
      .Regra(2, true, "02", "", {"Não", "Artista:Geral*", "*1-3", "", "", ""})   // fine
      .Regra(2, true, "15")                                                 // notice only
      .GravarRegras();
  const teste::ResultadoCli r = RodarCli({"regras", "conferir", "--dir", estacao.Pasta().string()});
  EXPECT_EQ(r.codigo, 1);
  for (const char* esperado : {
           "erro: conjunto 0, regra 2 (id \"35\"): número de regra desconhecido",
           "erro: conjunto 0, regra 3 (id \"34\"): var2 \"Cor:Azul\": filtro sem campo conhecido",
           "erro: conjunto 2, regra 1 (id \"12\"): var5 \"25:61\": hora do período inválida",
           "aviso: conjunto 2, regra 3 (id \"15\"): regra sem procedimento",
           "6 regras conferidas: 5 erros, 1 avisos"})
    EXPECT_NE(r.saida.find(esperado), std::string::npos) << esperado << "\n" << r.saida;

  // The same check runs on the text form, and a clean set passes.
  const std::string toml = RodarCli({"regras", "exportar", "--dir", estacao.Pasta().string()}).saida;
  estacao.GravarTexto("regras.toml", toml);
  EXPECT_EQ(RodarCli({"regras", "conferir", estacao.Caminho("regras.toml").string()}).saida,
            r.saida);
  EXPECT_EQ(RodarCli({"regras", "conferir", "--dir", estacao.Pasta().string(), "--set", "1"}).codigo, 0);

  // A text that does not read changes nothing and points to its line.
  const std::string lxie0 = estacao.Ler("lxie0.rdb");
  const std::pair<const char*, const char*> casos[] = {
      {"[conjunto0]\n[[conjunto0.regra]]\nativo = true\nid = \"01\"\nvar11 = \"x\"\n", "var11"},
      {"[conjunto0]\n[[conjunto0.regra]]\nativo = true\n", "sem id"},
      {"[conjunto0\n", "regras.toml:1"},
  };
  for (const auto& [texto, esperado] : casos) {
    const teste::ResultadoCli ruim = ImportarTexto(estacao, texto);
    EXPECT_EQ(ruim.codigo, 1) << texto;
    EXPECT_NE(ruim.erros.find(esperado), std::string::npos) << ruim.erros;
    EXPECT_EQ(estacao.Ler("lxie0.rdb"), lxie0);
  }
  EXPECT_EQ(RodarCli({"regras", "exportar", "--dir", estacao.Caminho("falta").string()}).codigo, 2);
}

}  // namespace
}  // namespace lumavox::cli
