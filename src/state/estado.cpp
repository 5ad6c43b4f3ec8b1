#include "state/estado.h"

namespace lumavox {

namespace {

// Bumps a version on the way in and on the way out, so a write that raises half-way still
// leaves every index over the old contents stale.
class Versionar {
 public:
  explicit Versionar(uint64_t& versao) : versao_(versao) { ++versao_; }
  ~Versionar() { ++versao_; }
  Versionar(const Versionar&) = delete;
  Versionar& operator=(const Versionar&) = delete;

 private:
  uint64_t& versao_;
};

}  // namespace

void Estado::CarregarAcervo(const std::function<void(Acervo&)>& carregar) {
  Versionar v(versaoCodigos_);
  carregar(acervo_);
}

void Estado::SubstituirHistorico(const std::function<void(Historico&)>& preencher) {
  Versionar v(versaoHistorico_);
  preencher(historico_);
}

void Estado::AdicionarTocada(int32_t codigo, DataHora momento) {
  Historico& h = historico_;
  const long posicao = h.TotalTocadas;
  h.HistoricoCodigos[posicao] = codigo;  // raises first when there is no room
  h.HistoricoDatas[posicao] = momento;
  ++h.TotalTocadas;
  const bool indiceEmDia = historicoIndexado_ == versaoHistorico_ && codigosDoHistorico_ == versaoCodigos_;
  ++versaoHistorico_;
  // A play on top of an index that is up to date only lengthens its chains; anything else
  // (an empty entry, which cuts the slot chains) leaves it to be built again.
  if (indiceEmDia && codigo > 0) {
    historicoIndexado_ = ~0ull;  // stale should the update raise
    indiceHistorico_.Acrescentar(*this, posicao);
    historicoIndexado_ = versaoHistorico_;
  }
}

void Estado::ChecarMusicasTocadas() {
  Historico& h = historico_;
  if (h.TotalTocadas < 3501) return;
  for (long i = 0; i <= 1000; ++i) {
    h.HistoricoCodigos[i - 500] = h.HistoricoCodigos[i + 2500];
    h.HistoricoDatas[i - 500] = h.HistoricoDatas[i + 2500];
  }
  h.TotalTocadas = 501;
  ++versaoHistorico_;
}

int16_t Estado::LocalizarMusica(int32_t codigo) const {
  if (codigosIndexados_ != versaoCodigos_) {
    primeiroSlot_.Limpar();
    for (long slot = 0; slot <= kUltimoSlot; ++slot)
      primeiroSlot_.Inserir(acervo_.AcervoCodigos.SemVerificar(slot), static_cast<int16_t>(slot));
    codigosIndexados_ = versaoCodigos_;
  }
  const int16_t* slot = primeiroSlot_.Procurar(codigo);
  return slot ? *slot : kSlotAusente;
}

const IndiceHistorico& Estado::IndiceDoHistorico() const {
  if (historicoIndexado_ != versaoHistorico_ || codigosDoHistorico_ != versaoCodigos_) {
    historicoIndexado_ = ~0ull;  // a build that raises leaves the index marked stale
    indiceHistorico_.Construir(*this);
    historicoIndexado_ = versaoHistorico_;
    codigosDoHistorico_ = versaoCodigos_;
  }
  return indiceHistorico_;
}

}  // namespace lumavox
