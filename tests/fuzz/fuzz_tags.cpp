// Tag filters and artist comparison on arbitrary texts. The input is cut at 0x1F bytes into a
// filter and three tag texts; the first byte picks the field and the comparison mode. Checked:
// a value matches itself in any case, and the prepared-text cache never answers differently
// from a fresh one.
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
  return r;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* dados, size_t tamanho) {
  static const std::unique_ptr<Estado> estado = std::make_unique<Estado>();
  if (tamanho < 1) return 0;
  Estado& e = *estado;
  const int16_t campo = static_cast<int16_t>(dados[0] % kCampos);
  e.selecao.ModoComparacaoArtista = static_cast<int16_t>(dados[0] / kCampos - 2);  // -2..5
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

  for (const Texto& t : tags)
    if (CompararArtistas(e, t, Maiusculas(t), campo) == t.empty())
      fuzz::Falha("valor igual (sem caixa) não casou consigo");
  return 0;
}
