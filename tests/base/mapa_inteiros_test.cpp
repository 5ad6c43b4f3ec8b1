#include <gtest/gtest.h>

#include <random>
#include <unordered_map>

#include "base/mapa_inteiros.h"

using namespace lumavox;

// Random inserts, lookups and emptyings against the standard map, over keys that collide,
// are negative and outgrow the first table, so growth and generations both get exercised.
TEST(MapaInteiros, ComoOMapaPadrao) {
  std::mt19937 sorte(5);
  MapaInteiros mapa;
  std::unordered_map<int32_t, int16_t> padrao;
  for (int rodada = 0; rodada < 6; ++rodada) {
    mapa.Limpar();
    padrao.clear();
    const int32_t faixa = rodada % 2 ? 5000 : 40;
    for (int i = 0; i < 3000; ++i) {
      const int32_t chave = static_cast<int32_t>(sorte() % faixa) * (rodada % 3 ? 1024 : -7);
      auto [endereco, nova] = mapa.Inserir(chave, static_cast<int16_t>(i));
      auto [it, novaPadrao] = padrao.try_emplace(chave, static_cast<int16_t>(i));
      ASSERT_EQ(nova, novaPadrao);
      ASSERT_EQ(*endereco, it->second);
      if (i % 7 == 0) *endereco = it->second = static_cast<int16_t>(-i);
      const int32_t outra = static_cast<int32_t>(sorte() % (2 * faixa));
      const int16_t* achado = mapa.Procurar(outra);
      ASSERT_EQ(achado ? *achado : INT32_MIN, padrao.contains(outra) ? padrao[outra] : INT32_MIN) << outra;
    }
    ASSERT_EQ(mapa.Tamanho(), padrao.size());
  }
}
