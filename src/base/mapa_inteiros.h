// A map from whole numbers (song codes) to small ones (slots, history positions), for indexes
// rebuilt at every selection: open addressing in one array, and emptied by moving to a new
// generation instead of freeing nodes, so a rebuild allocates nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace lumavox {

class MapaInteiros {
 public:
  // Empties the map in constant time.
  void Limpar() {
    ++geracao_;
    tamanho_ = 0;
    if (geracao_ == 0) {  // the counter wrapped: old stamps could look current
      for (Entrada& e : entradas_) e.geracao = 0;
      geracao_ = 1;
    }
  }

  // The value under `chave`, inserting `valor` when there is none (like try_emplace): the
  // value's address and whether it was inserted. The address is valid until the next insert.
  std::pair<int16_t*, bool> Inserir(int32_t chave, int16_t valor) {
    if (2 * (tamanho_ + 1) > entradas_.size()) Crescer();
    Entrada& e = Lugar(chave);
    if (e.geracao == geracao_) return {&e.valor, false};
    e = {chave, valor, geracao_};
    ++tamanho_;
    return {&e.valor, true};
  }

  // The value under `chave`, or nullptr.
  const int16_t* Procurar(int32_t chave) const {
    if (entradas_.empty()) return nullptr;
    const Entrada& e = const_cast<MapaInteiros*>(this)->Lugar(chave);
    return e.geracao == geracao_ ? &e.valor : nullptr;
  }

  std::size_t Tamanho() const { return tamanho_; }

 private:
  struct Entrada {
    int32_t chave = 0;
    int16_t valor = 0;
    uint32_t geracao = 0;  // current when it equals the map's
  };

  // The entry holding `chave`, or the free one where it would go.
  Entrada& Lugar(int32_t chave) {
    const std::size_t mascara = entradas_.size() - 1;
    std::size_t i = (static_cast<uint32_t>(chave) * 2654435761u) & mascara;
    while (entradas_[i].geracao == geracao_ && entradas_[i].chave != chave) i = (i + 1) & mascara;
    return entradas_[i];
  }

  void Crescer() {
    std::vector<Entrada> antigas = std::move(entradas_);
    const uint32_t geracaoAntiga = geracao_;
    entradas_.assign(antigas.empty() ? 1024 : 2 * antigas.size(), Entrada{});
    geracao_ = 1;
    tamanho_ = 0;
    for (const Entrada& e : antigas)
      if (e.geracao == geracaoAntiga) {
        Lugar(e.chave) = {e.chave, e.valor, geracao_};
        ++tamanho_;
      }
  }

  std::vector<Entrada> entradas_;
  uint32_t geracao_ = 1;
  std::size_t tamanho_ = 0;
};

}  // namespace lumavox
