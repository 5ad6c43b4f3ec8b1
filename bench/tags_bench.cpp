// Tag tests over a full 4001-song collection, as a rule runs them once per song: a ";" field
// filter, an artist filter over multi-artist tags, and the artist comparison of every slot with
// one song. The counter por_musica is the time of one song.
#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <string_view>

#include "rules/tags.h"

namespace {

using namespace lumavox;

constexpr long kMusicas = 4001;

std::unique_ptr<Estado> ColecaoCheia() {
  static constexpr std::array<std::u16string_view, 10> nomes{
      u"Ana Lima",  u"Bia Torres", u"Caio Souza", u"Duda Reis",  u"Enzo Prado",
      u"Flor Dias", u"Gil Matos",  u"Hugo Neves", u"Iara Costa", u"João Pires"};
  static constexpr std::array<std::u16string_view, 6> ligacoes{u" feat ", u" & ",  u" Feat. ",
                                                               u" com ",  u" vs ", u" e "};
  static constexpr std::array<std::u16string_view, 8> generos{
      u"Rock;Pop",   u"Jazz",         u"MPB;Samba;",     u"Sertanejo", u"Pop;Dance;Eletrônica",
      u"Forró;Xote", u"Samba;Pagode", u"Blues;Jazz;Soul"};
  auto e = std::make_unique<Estado>();
  e->CarregarAcervo([&](Acervo& a) {
    for (long s = 0; s < kMusicas; ++s) {
      auto i = static_cast<size_t>(s);
      Texto artista(nomes[i % nomes.size()]);
      if (s % 3 != 0)
        artista += Texto(ligacoes[i % ligacoes.size()]) + Texto(nomes[(i * 7 + 3) % nomes.size()]);
      if (s % 5 == 0) artista += u" & " + Texto(nomes[(i / 5) % nomes.size()]);
      a.AcervoTags.Definir(s, 0, artista);
      a.AcervoTags.Definir(s, 5, Texto(generos[(i * 3) % generos.size()]));
    }
    a.TotalMusicas = static_cast<int16_t>(kMusicas);
  });
  return e;
}

void PorMusica(benchmark::State& state) {
  state.counters["por_musica"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kMusicas,
                         benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_TagsConferirTagGenero(benchmark::State& state) {
  auto e = ColecaoCheia();
  for (auto _ : state) {
    int n = 0;
    for (long s = 0; s < kMusicas; ++s) n += ConferirTag(*e, u"Genero:Samba;Jazz", s);
    benchmark::DoNotOptimize(n);
  }
  PorMusica(state);
}
BENCHMARK(BM_TagsConferirTagGenero);

void BM_TagsConferirTagArtista(benchmark::State& state) {
  auto e = ColecaoCheia();
  for (auto _ : state) {
    int n = 0;
    for (long s = 0; s < kMusicas; ++s)
      n += ConferirTag(*e, u"Artista:Bia Torres feat Gil Matos", s);
    benchmark::DoNotOptimize(n);
  }
  PorMusica(state);
}
BENCHMARK(BM_TagsConferirTagArtista);

void BM_TagsCompararArtistasSlots(benchmark::State& state) {
  auto e = ColecaoCheia();
  for (auto _ : state) {
    int n = 0;
    for (long s = 0; s < kMusicas; ++s) n += CompararArtistasSlots(*e, s, 1234, 0);
    benchmark::DoNotOptimize(n);
  }
  PorMusica(state);
}
BENCHMARK(BM_TagsCompararArtistasSlots);

// The first pass after a load, when every tag is upper-cased and split once.
void BM_TagsConferirTagArtistaPrimeiraVez(benchmark::State& state) {
  auto e = ColecaoCheia();
  for (auto _ : state) {
    state.PauseTiming();
    e->cacheTags.Limpar();
    ConferirTag(*e, u"Artista:Bia Torres", 0);  // allocates the slot table outside the timing
    state.ResumeTiming();
    int n = 0;
    for (long s = 1; s < kMusicas; ++s) n += ConferirTag(*e, u"Artista:Bia Torres", s);
    benchmark::DoNotOptimize(n);
  }
  PorMusica(state);
}
BENCHMARK(BM_TagsConferirTagArtistaPrimeiraVez);

}  // namespace
