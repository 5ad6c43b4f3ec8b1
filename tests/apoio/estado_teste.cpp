#include "apoio/estado_teste.h"

#include "base/numeros.h"

namespace lumavox::teste {

EstadoTeste::EstadoTeste(DataHora agora, uint32_t semente)
    : ambiente_(agora, semente), estado_(std::make_unique<Estado>()) {
  estado_->ambiente = &ambiente_;
  estado_->selecao.DataHoraReferencia = agora;
  estado_->selecao.NivelRitmo = 50;
}

EstadoTeste& EstadoTeste::Musica(int32_t codigo, std::initializer_list<std::pair<int, std::string>> tags) {
  estado_->CarregarAcervo([&](Acervo& a) {
    const long s = a.TotalMusicas;
    a.AcervoCodigos[s] = codigo;
    for (long c = 0; c < kCampoVibe; ++c) a.AcervoTags.Definir(s, c, Texto());
    for (const auto& [campo, valor] : tags) a.AcervoTags.Definir(s, campo, DeUtf8(valor));
    a.AcervoVibe[s] = CalcularVibe(a, s);
    a.AcervoTags.Definir(s, kCampoVibe, FormatarNumero(a.AcervoVibe[s]));
    ++a.TotalMusicas;
  });
  return *this;
}

EstadoTeste& EstadoTeste::Tocadas(std::initializer_list<int32_t> codigos) {
  const DataHora agora = estado_->selecao.DataHoraReferencia;
  long n = static_cast<long>(codigos.size());
  for (int32_t c : codigos) estado_->AdicionarTocada(c, SomarSegundos(agora, -60 * n--));
  return *this;
}

EstadoTeste& EstadoTeste::TocadaEm(int32_t codigo, DataHora quando) {
  estado_->AdicionarTocada(codigo, quando);
  return *this;
}

EstadoTeste& EstadoTeste::TodasCandidatas() {
  for (long i = 0; i < estado_->acervo().TotalMusicas; ++i) {
    estado_->selecao.MusicaCandidata[i] = true;
    estado_->selecao.MusicaMantida[i] = true;
  }
  return *this;
}

RegrasCatalogo& EstadoTeste::Regra(int conjunto, long indice, std::string id, std::vector<std::string> vars,
                                   std::string descricao) {
  RegrasCatalogo& r = estado_->catalogo.CatalogoRegras(conjunto, indice);
  r = RegrasCatalogo{};
  r.Ativo = true;
  r.ID = DeUtf8(id);
  r.Descricao = DeUtf8(descricao);
  for (size_t k = 0; k < vars.size(); ++k) r.Var(static_cast<int>(k) + 1).Valor = DeUtf8(vars[k]);
  return r;
}

EstadoTeste& EstadoTeste::RegraAtual(std::string id, std::vector<std::string> vars) {
  RegrasCatalogo& r = estado_->catalogo.RegraAtual;
  r = RegrasCatalogo{};
  r.ID = DeUtf8(id);
  for (size_t k = 0; k < vars.size(); ++k) r.Var(static_cast<int>(k) + 1).Valor = DeUtf8(vars[k]);
  return *this;
}

std::vector<int32_t> EstadoTeste::Aplicar(const std::function<void(Estado&)>& regra, std::string id,
                                          std::vector<std::string> vars) {
  TodasCandidatas().RegraAtual(std::move(id), std::move(vars));
  regra(*estado_);
  std::vector<int32_t> codigos;
  for (long i = 0; i < estado_->acervo().TotalMusicas; ++i)
    if (estado_->selecao.MusicaCandidata[i] && estado_->selecao.MusicaMantida[i])
      codigos.push_back(estado_->acervo().AcervoCodigos[i]);
  return codigos;
}

std::vector<int32_t> EstadoTeste::Candidatas() {
  std::vector<int32_t> codigos;
  for (long i = 0; i < estado_->acervo().TotalMusicas; ++i)
    if (estado_->selecao.MusicaCandidata[i]) codigos.push_back(estado_->acervo().AcervoCodigos[i]);
  return codigos;
}

}  // namespace lumavox::teste
