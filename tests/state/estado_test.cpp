// The state's indexes cannot go stale: every way the collection or the history changes is one of
// Estado's operations, and the next lookup sees the change, even after a load that raised.
#include "state/estado.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <stdexcept>

#include "apoio/estacao.h"
#include "base/erro.h"

namespace lumavox {
namespace {

// The plays of a code, or with `slot` set of a slot, newest first, as the index chains them.
std::vector<long> Tocadas(const Estado& e, int32_t codigo, bool slot = false) {
  const IndiceHistorico& i = e.IndiceDoHistorico();
  std::vector<long> posicoes;
  for (long p = slot ? i.PrimeiraDoSlot(codigo) : i.PrimeiraDoCodigo(codigo);
       p != IndiceHistorico::kFim; p = slot ? i.SeguinteDoSlot(p) : i.SeguinteDoCodigo(p))
    posicoes.push_back(p);
  return posicoes;
}

void Codigos(Estado& e, std::initializer_list<int32_t> codigos) {
  e.CarregarAcervo([&](Acervo& a) {
    long slot = 0;
    for (int32_t c : codigos) a.AcervoCodigos[slot++] = c;
    a.TotalMusicas = static_cast<int16_t>(slot);
  });
}

TEST(Estado, LocalizarMusicaSegueCadaCargaDoAcervo) {
  auto e = std::make_unique<Estado>();
  Codigos(*e, {10, 20, 10});
  // A repeated code: the first slot wins; code 0 fills every unused slot.
  for (auto [codigo, slot] : {std::pair{20, 1}, {10, 0}, {30, int{kSlotAusente}}, {0, 3}})
    EXPECT_EQ(e->LocalizarMusica(codigo), slot) << codigo;
  e->AdicionarTocada(20, DataHora{});
  EXPECT_EQ(LocalizarMusicaTocada(*e, 0), 1);
  EXPECT_EQ(LocalizarMusicaTocada(*e, -1), 3);  // an empty database position holds code 0
  EXPECT_THROW(LocalizarMusicaTocada(*e, -4001), ErroExecucao);

  Codigos(*e, {30, 20});
  EXPECT_EQ(e->LocalizarMusica(30), 0);
  EXPECT_EQ(e->LocalizarMusica(10), 2);  // past the last song, the earlier load's code still counts

  // A load that raises half-way: what it wrote before raising is what lookups see.
  auto Quebrada = [](Acervo& a) { a.AcervoCodigos[0] = 40, throw std::runtime_error("linha ruim"); };
  EXPECT_THROW(e->CarregarAcervo(Quebrada), std::runtime_error);
  EXPECT_EQ(e->LocalizarMusica(40), 0);
  EXPECT_EQ(e->LocalizarMusica(30), kSlotAusente);
}

// Plays added to an index in use lengthen its chains as building it anew would, empty entries
// and codes outside the collection included.
TEST(Estado, IndiceAcrescidoIgualAoConstruido) {
  auto e = std::make_unique<Estado>();
  Codigos(*e, {10, 20, 30});
  auto Cadeias = [&] {
    std::vector<std::vector<long>> c;
    for (int32_t codigo : {10, 20, 30, 40}) c.push_back(Tocadas(*e, codigo));
    for (int32_t slot : {0, 1, 2, 4000}) c.push_back(Tocadas(*e, slot, true));
    return c;
  };
  std::mt19937 g(3);
  const int32_t codigos[] = {10, 20, 30, 40, 10, 0, -1};
  for (int i = 0; i < 200; ++i) {
    std::vector<std::vector<long>> acrescido;
    for (unsigned k = 0; k <= g() % 3; ++k) {
      e->AdicionarTocada(codigos[g() % 7], DataHora{});
      acrescido = Cadeias();  // read, so the next play finds the index up to date
    }
    e->SubstituirHistorico([](Historico&) {});  // the same plays, indexed anew
    ASSERT_EQ(acrescido, Cadeias()) << i;
  }
}

// The song of code 10 moves to slot 1: the slot chains follow the collection.
TEST(Estado, IndiceDoHistoricoSegueCodigosESubstituicao) {
  auto e = std::make_unique<Estado>();
  Codigos(*e, {10, 20});
  for (int32_t c : {10, 20, 10}) e->AdicionarTocada(c, DataHora{});
  Codigos(*e, {20, 10});
  EXPECT_EQ(Tocadas(*e, 1, true), (std::vector<long>{2, 0}));
  EXPECT_EQ(Tocadas(*e, 0, true), std::vector<long>{1});
  e->SubstituirHistorico([](Historico& h) { h.HistoricoCodigos[0] = 20, h.TotalTocadas = 1; });
  EXPECT_TRUE(Tocadas(*e, 10).empty());
  EXPECT_EQ(Tocadas(*e, 20), std::vector<long>{0});
}

// Compacting keeps the newest 1001 plays; a history already full refuses a play untouched.
TEST(Estado, ChecarMusicasTocadasCompactaSoAcimaDe3500EOCheioRecusa) {
  auto e = std::make_unique<Estado>();
  for (long i = 0; i < 3500; ++i) e->AdicionarTocada(static_cast<int32_t>(i + 1), DataHora{});
  e->ChecarMusicasTocadas();
  EXPECT_EQ(e->historico().TotalTocadas, 3500);
  e->AdicionarTocada(3501, DataHora{});
  e->ChecarMusicasTocadas();
  EXPECT_EQ(e->historico().TotalTocadas, 501);
  EXPECT_EQ(e->historico().HistoricoCodigos[-500], 2501);
  EXPECT_EQ(e->historico().HistoricoCodigos[500], 3501);
  EXPECT_EQ(e->IndiceDoHistorico().PrimeiraDoCodigo(2501), -500);  // the index followed the move

  e->SubstituirHistorico([](Historico& h) { h.TotalTocadas = 4001; });
  EXPECT_EQ(teste::ErroDe([&] { e->AdicionarTocada(7, DataHora{}); }), CodigoErro::ForaDoIntervalo);
  EXPECT_EQ(e->historico().TotalTocadas, 4001);
}

}  // namespace
}  // namespace lumavox
