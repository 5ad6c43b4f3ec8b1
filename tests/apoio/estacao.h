// A station folder built on the fly for tests: songs with their media files, rule sets and any
// raw file, in a fresh temporary directory that disappears with the object.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/erro.h"

namespace lumavox::teste {

namespace fs = std::filesystem;

// A tag field named by its index (0..31) or by its tag name ("Artista", "Velocidade").
struct Campo {
  Campo(int i) : indice(i) {}
  Campo(const char* nome);
  int indice;
};

class EstacaoTeste {
 public:
  EstacaoTeste();
  ~EstacaoTeste();
  EstacaoTeste(const EstacaoTeste&) = delete;
  EstacaoTeste& operator=(const EstacaoTeste&) = delete;

  const fs::path& Pasta() const { return pasta_; }
  fs::path Caminho(std::string_view relativo) const { return pasta_ / relativo; }

  // Adds a song to the next collection file; its media file is made unless comMre is false.
  EstacaoTeste& Musica(int32_t codigo, std::initializer_list<std::pair<Campo, std::string>> tags = {},
                       bool comMre = true);
  // Writes subpasta/lxdb.rdb with the songs added since the last call, and mre/ media files.
  void GravarAcervo(std::string_view subpasta = "");

  // Adds a rule to set 0..2; vars are Var1, Var2, ... (the rest empty).
  EstacaoTeste& Regra(int conjunto, bool ativo, std::string_view id, std::string_view descricao = "",
                      std::vector<std::string> vars = {});
  // Writes subpasta/lxie0.rdb .. lxie2.rdb (empty for a set without rules) and forgets the rules.
  void GravarRegras(std::string_view subpasta = "");

  // Any file, byte for byte; folders are created as needed.
  void GravarTexto(std::string_view relativo, std::string_view bytes);
  std::string Ler(std::string_view relativo) const;
  bool Existe(std::string_view relativo) const { return fs::exists(Caminho(relativo)); }
  // Names of a subfolder's files that end in `terminacao`, sorted (none when it is missing).
  std::vector<std::string> Nomes(std::string_view subpasta, std::string_view terminacao = "") const;
  // Every file of the station by its relative path, with its bytes.
  std::map<std::string, std::string> Conteudo() const;

  // A UTF-8 text as one encoded line of the collection and rules files, without its line end.
  static std::string Codificada(std::string_view utf8);
  // Texts as the encoded lines of a station file, each ending in CRLF.
  static std::string Linhas(std::initializer_list<std::string_view> utf8);

 private:
  fs::path pasta_;
  std::string acervo_;
  std::vector<int32_t> mres_;
  std::array<std::string, 3> regras_;
};

// The code of the ErroExecucao that `acao` raises, or nothing when it returns normally.
std::optional<CodigoErro> ErroDe(const std::function<void()>& acao);

}  // namespace lumavox::teste
