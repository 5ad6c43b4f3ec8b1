#include "apoio/estacao.h"

#include <algorithm>
#include <random>
#include <stdexcept>

#include "base/arquivos.h"
#include "base/texto.h"
#include "stores/acervo.h"
#include "stores/codec.h"

namespace lumavox::teste {

Campo::Campo(const char* nome) : indice(-1) {
  for (size_t i = 0; i < 32; ++i)
    if (!kNomesCampos[i].empty() && kNomesCampos[i] == DeUtf8(nome)) indice = static_cast<int>(i);
  if (indice < 0) throw std::invalid_argument(std::string("campo desconhecido: ") + nome);
}

EstacaoTeste::EstacaoTeste() {
  std::random_device aleatorio;
  do {
    pasta_ = fs::temp_directory_path() / ("lumavox-" + std::to_string(aleatorio()));
  } while (!fs::create_directory(pasta_));
}

EstacaoTeste::~EstacaoTeste() {
  std::error_code ec;
  fs::remove_all(pasta_, ec);
}

EstacaoTeste& EstacaoTeste::Musica(int32_t codigo,
                                   std::initializer_list<std::pair<Campo, std::string>> tags,
                                   bool comMre) {
  std::array<std::string, 32> campos;
  for (const auto& [campo, valor] : tags) campos.at(static_cast<size_t>(campo.indice)) = valor;
  acervo_ += Codificada(std::to_string(codigo)) + "\n";
  for (const std::string& valor : campos) acervo_ += Codificada(valor) + "\n";
  if (comMre) mres_.push_back(codigo);
  return *this;
}

void EstacaoTeste::GravarAcervo(std::string_view subpasta) {
  GravarTexto((fs::path(subpasta) / "lxdb.rdb").string(), acervo_);
  for (int32_t codigo : mres_) {
    const std::string mre = "mre/" + NomeArquivoMusica(codigo);
    if (!Existe(mre)) GravarTexto(mre, "mre");
  }
  acervo_.clear();
  mres_.clear();
}

EstacaoTeste& EstacaoTeste::Regra(int conjunto, bool ativo, std::string_view id,
                                  std::string_view descricao, std::vector<std::string> vars) {
  std::string& arquivo = regras_.at(static_cast<size_t>(conjunto));
  for (std::string_view linha : {std::string_view(ativo ? "A" : "I"), id, descricao, std::string_view()})
    arquivo += Codificada(linha) + "\n";
  vars.resize(10);
  for (const std::string& valor : vars) arquivo += Codificada(valor) + "\n";
  return *this;
}

void EstacaoTeste::GravarRegras(std::string_view subpasta) {
  for (size_t n = 0; n < regras_.size(); ++n) {
    GravarTexto((fs::path(subpasta) / ("lxie" + std::to_string(n) + ".rdb")).string(), regras_[n]);
    regras_[n].clear();
  }
}

void EstacaoTeste::GravarTexto(std::string_view relativo, std::string_view bytes) {
  fs::create_directories(Caminho(relativo).parent_path());
  EscreverBytes(Caminho(relativo), bytes);
}

std::string EstacaoTeste::Ler(std::string_view relativo) const { return LerBytes(Caminho(relativo)); }

std::vector<std::string> EstacaoTeste::Nomes(std::string_view subpasta, std::string_view terminacao) const {
  std::vector<std::string> nomes;
  std::error_code ec;
  for (const auto& item : fs::directory_iterator(Caminho(subpasta), ec))
    if (item.path().filename().string().ends_with(terminacao)) nomes.push_back(item.path().filename().string());
  std::sort(nomes.begin(), nomes.end());
  return nomes;
}

std::map<std::string, std::string> EstacaoTeste::Conteudo() const {
  std::map<std::string, std::string> arquivos;
  for (const auto& item : fs::recursive_directory_iterator(pasta_)) {
    const fs::path relativo = fs::relative(item.path(), pasta_);
    if (item.is_regular_file()) arquivos[relativo.generic_string()] = Ler(relativo.string());
  }
  return arquivos;
}

std::string EstacaoTeste::Codificada(std::string_view utf8) { return ParaUtf8(CodificarLinha(DeUtf8(utf8))); }

std::string EstacaoTeste::Linhas(std::initializer_list<std::string_view> utf8) {
  std::string bytes;
  for (std::string_view texto : utf8) bytes += Codificada(texto) + "\r\n";
  return bytes;
}

std::optional<CodigoErro> ErroDe(const std::function<void()>& acao) {
  try {
    acao();
  } catch (const ErroExecucao& e) {
    return e.Codigo();
  }
  return std::nullopt;
}

}  // namespace lumavox::teste
