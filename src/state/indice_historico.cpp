#include "state/indice_historico.h"

#include "state/estado.h"

namespace lumavox {

void IndiceHistorico::Construir(const Estado& e) {
  const Historico& h = e.historico();
  const long topo = h.TotalTocadas - 1;
  if (topo >= kPosicaoMaisAntiga) (void)h.HistoricoCodigos[topo];

  const std::size_t posicoes = Deslocada(kUltimaPosicao) + 1;
  primeiraDoCodigo_.Limpar();
  seguinteDoCodigo_.assign(posicoes, static_cast<int16_t>(kFim));
  primeiraDoSlot_.assign(kTotalSlots, static_cast<int16_t>(kFim));
  seguinteDoSlot_.assign(posicoes, static_cast<int16_t>(kFim));

  // Scans that stop at an empty entry see nothing below the newest one.
  long parada = kPosicaoMaisAntiga - 1;
  for (long p = topo; p >= kPosicaoMaisAntiga; --p)
    if (h.HistoricoCodigos[p] <= 0) {
      parada = p;
      break;
    }

  // Oldest first, each position pushed in front of its chain, so chains read newest first.
  for (long p = kPosicaoMaisAntiga; p <= topo; ++p) {
    const int32_t codigo = h.HistoricoCodigos[p];
    const auto posicao = static_cast<int16_t>(p);
    if (codigo > 0) {
      auto [primeira, nova] = primeiraDoCodigo_.Inserir(codigo, posicao);
      if (!nova) {
        seguinteDoCodigo_[Deslocada(p)] = *primeira;
        *primeira = posicao;
      }
    }
    if (p > parada) {
      int16_t& primeira = primeiraDoSlot_[static_cast<std::size_t>(LocalizarMusicaTocada(e, p))];
      seguinteDoSlot_[Deslocada(p)] = primeira;
      primeira = posicao;
    }
  }
}

void IndiceHistorico::Acrescentar(const Estado& e, long p) {
  // The newest entry is a play, so the newest empty entry, where slot chains stop, stays where
  // it was.
  const auto posicao = static_cast<int16_t>(p);
  auto [primeira, nova] = primeiraDoCodigo_.Inserir(e.historico().HistoricoCodigos[p], posicao);
  if (!nova) {
    seguinteDoCodigo_[Deslocada(p)] = *primeira;
    *primeira = posicao;
  }
  int16_t& primeiraSlot = primeiraDoSlot_[static_cast<std::size_t>(LocalizarMusicaTocada(e, p))];
  seguinteDoSlot_[Deslocada(p)] = primeiraSlot;
  primeiraSlot = posicao;
}

}  // namespace lumavox
