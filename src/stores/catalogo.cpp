#include "stores/catalogo.h"

#include "stores/codec.h"

namespace lumavox {

RegrasVariavel& RegrasCatalogo::Var(int n) {
  if (n < 1 || n > 10) ErroIndice(n, 1, 10);
  return Vars[static_cast<size_t>(n - 1)];
}

const RegrasVariavel& RegrasCatalogo::Var(int n) const {
  if (n < 1 || n > 10) ErroIndice(n, 1, 10);
  return Vars[static_cast<size_t>(n - 1)];
}

void CarregarArquivoRegras(SistemaArquivos& arquivos, Catalogo& catalogo, int conjunto,
                           const fs::path& arquivo) {
  long r = 0;
  int k = 0;
  ParaCadaLinhaCodificada(arquivos, arquivo, [&](Texto&& texto) {
    RegrasCatalogo& regra = catalogo.CatalogoRegras(conjunto, r);
    switch (k) {
      case 0: regra.Ativo = Maiusculas(texto) == u"A"; break;
      case 1: regra.ID = std::move(texto); break;
      case 2: regra.Descricao = std::move(texto); break;
      case 3: regra.Exemplo = std::move(texto); break;
      default: regra.Var(k - 3).Valor = std::move(texto); break;
    }
    if (++k > 13) {
      k = 0;
      ++r;
    }
  });
  catalogo.QuantidadeRegras[static_cast<size_t>(conjunto)] = static_cast<int16_t>(r);
}

std::array<Texto, kLinhasPorRegra> LinhasDaRegra(const RegrasCatalogo& regra) {
  std::array<Texto, kLinhasPorRegra> linhas{regra.Ativo ? u"A" : u"I", regra.ID, regra.Descricao,
                                            regra.Exemplo};
  for (int n = 1; n <= 10; ++n) linhas[static_cast<size_t>(n + 3)] = regra.Valor(n);
  return linhas;
}

}  // namespace lumavox
