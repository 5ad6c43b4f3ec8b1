// Tag filters and artist comparison on arbitrary texts. The input is cut at 0x1F bytes into a
// filter and three tag texts; the first byte picks the field and the comparison mode. Checked:
// the documented fixed points (equal values match, "Geral*" accepts all, modes outside 0 and 1
// decide alone), that the prepared-text cache never answers differently from a fresh one, and
// that gathered values (ValoresOuvidos) answer as the comparison with each song.
#include <functional>
#include <memory>
#include <vector>

#include "base/texto.h"
#include "fuzz_apoio.h"
#include "rules/tags.h"

using namespace lumavox;

namespace {

// The last part keeps every 0x1F left; parts past the end are empty.
std::vector<Texto> Partes(std::string_view bytes, size_t quantas) {
  std::vector<Texto> partes(quantas);
  for (size_t i = 0, corte = 0; i < quantas && corte != std::string_view::npos; ++i) {
    corte = i + 1 < quantas ? bytes.find('\x1f') : std::string_view::npos;
    partes[i] = DecodificarBytes(bytes.substr(0, corte));
    bytes.remove_prefix(corte == std::string_view::npos ? bytes.size() : corte + 1);
  }
  return partes;
}

// Every answer the tag functions give on the three songs, in a fixed order.
std::vector<bool> Perguntar(Estado& e, const Texto& filtro, int16_t campo, const std::vector<Texto>& tags) {
  std::vector<bool> r;
  for (long s = 0; s < 3; ++s) {
    r.push_back(ConferirTag(e, filtro, s));
    r.push_back(ConferirTagArtista(e, filtro, s));
    for (long t = 0; t < 3; ++t) {
      r.push_back(CompararArtistasSlots(e, s, t, campo));
      r.push_back(MesmoValorTag(e, campo, s, t));
    }
  }
  r.push_back(CompararArtistas(e, tags[0], tags[1], campo));
  r.push_back(CompararArtistasSemExcecao(e, tags[0], tags[1], campo));
  r.push_back(ConferirPedaco(tags[0], tags[1], campo));
  return r;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* dados, size_t tamanho) {
  static const std::unique_ptr<Estado> estado = std::make_unique<Estado>();
  if (tamanho < 1) return 0;
  Estado& e = *estado;
  const int16_t campo = static_cast<int16_t>(dados[0] % kCampos);
  const int16_t modo = static_cast<int16_t>(dados[0] / kCampos) - 2;  // -2..5
  e.selecao.ModoComparacaoArtista = modo;
  const std::string_view bytes(reinterpret_cast<const char*>(dados), tamanho);
  const std::vector<Texto> partes = Partes(bytes.substr(1), 4);
  const Texto& filtro = partes[0];
  const std::vector<Texto> tags(partes.begin() + 1, partes.end());
  e.CarregarAcervo([&](Acervo& a) {
    a.TotalMusicas = 3;
    for (long s = 0; s < 3; ++s) {
      // The filter names its own field; the tags go into that one and into the chosen one.
      a.AcervoTags.Definir(s, campo, tags[static_cast<size_t>(s)]);
      const int16_t doFiltro = IndiceCampo(filtro);
      if (doFiltro != kCampoDesconhecido) a.AcervoTags.Definir(s, doFiltro, tags[static_cast<size_t>(s)]);
    }
  });

  // A warm cache (every earlier input left its texts in it) answers as an empty one does.
  // Emptying it reallocates the per-slot table, so only one input in 64 pays for the check.
  const std::vector<bool> quente = Perguntar(e, filtro, campo, tags);
  if (std::hash<std::string_view>{}(bytes) % 64 == 0) {
    e.cacheTags.Limpar();
    if (Perguntar(e, filtro, campo, tags) != quente) fuzz::Falha("cache de tags deu outra resposta");
  }

  // The gathered values of songs 1 and 2 answer as MesmoValorTag with each of them.
  if (ValoresOuvidos::Serve(e, campo)) {
    ValoresOuvidos ouvidos;
    ouvidos.Adicionar(e, campo, 1);
    ouvidos.Adicionar(e, campo, 2);
    for (long s = 0; s < 3; ++s)
      if (ouvidos.Compartilha(e, campo, s) != (MesmoValorTag(e, campo, s, 1) || MesmoValorTag(e, campo, s, 2)))
        fuzz::Falha("valores ouvidos diferem de MesmoValorTag");
  }

  for (const Texto& t : tags) {
    const bool igual = CompararArtistas(e, t, Maiusculas(t), campo);
    if (igual != !t.empty()) fuzz::Falha("valor igual (sem caixa) não casou consigo");
  }
  if (tags[0].empty() && tags[1].empty() && CompararArtistas(e, tags[0], tags[1], campo))
    fuzz::Falha("dois valores vazios casaram");
  if (!IguaisSemCaixa(tags[0], tags[1]) && !(tags[0].empty() && tags[1].empty()) &&
      (modo < 0 || modo > 1) && CompararArtistas(e, tags[0], tags[1], campo) != (modo > 1))
    fuzz::Falha("modo fora de 0 e 1 não decidiu sozinho");
  const size_t doisPontos = filtro.rfind(u':');
  if (doisPontos != Texto::npos && filtro.substr(doisPontos + 1) == u"Geral*" && !ConferirTag(e, filtro, 1))
    fuzz::Falha("filtro Geral* recusou uma música");
  return 0;
}
