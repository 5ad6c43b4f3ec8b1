// Tag access by field filter ("Genero:Rock;Pop") and the piecewise comparison of multi-valued
// tags (artists split by "feat", "&", ...; other fields by ";"). The odd corners are the
// station's own and are kept: the last colon splits a filter, "Title" is tested twice so field
// 3 cannot be named, and a one-character value or trailing piece is never compared.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/texto.h"
#include "state/estado.h"

namespace lumavox {

constexpr int16_t kCampoDesconhecido = 99;

// Field index of the filter's name part (before the last ':'), 99 when unknown or without ':'.
int16_t IndiceCampo(std::u16string_view filtro);
// The value part of the filter (after the last ':'), empty without ':'.
Texto ValorDoFiltro(std::u16string_view filtro);
// Whether the text ends with "Geral*", case included.
bool TerminaComGeral(std::u16string_view texto);

// Whether a piece of the song's tag equals a piece of the filter's value list. A value of
// "Geral*" or an empty filter accepts every song; an unknown field rejects every song.
bool ConferirTag(Estado& e, std::u16string_view filtro, long slot);
// The same filter test made with CompararArtistas (whole-value match, "POP" pieces skipped).
bool ConferirTagArtista(Estado& e, std::u16string_view filtro, long slot);
// A filter prepared once, for a rule that tests several filters in turn over the collection
// (the memo of recent filters would otherwise be searched at every song).
FiltroPreparado FiltroParaLaco(Estado& e, std::u16string_view filtro);
bool ConferirTag(Estado& e, const FiltroPreparado& filtro, long slot);
bool ConferirTagArtista(Estado& e, const FiltroPreparado& filtro, long slot);

// Whether `pedaco` equals one of the pieces of `lista` split as field `campo` splits.
bool ConferirPedaco(std::u16string_view pedaco, std::u16string_view lista, int16_t campo);

// Whether two values share a piece, under selecao.ModoComparacaoArtista: 0 = one piece of `a`
// found in `b` suffices, 1 = every piece must be found, above 1 always True, below 0 always
// False. Two empty values never match; equal values (ignoring case) always do. Non-trailing
// pieces of `a` that read "POP" are skipped.
bool CompararArtistas(Estado& e, std::u16string_view a, std::u16string_view b, int16_t campo);
bool CompararArtistasSemExcecao(Estado& e, std::u16string_view a, std::u16string_view b,
                                int16_t campo);

// CompararArtistas of AcervoTags(slotA, campo) and AcervoTags(slotB, campo), for loops over the
// collection. Slots outside 0..4000 and fields outside 0..32 raise ForaDoIntervalo.
bool CompararArtistasSlots(Estado& e, long slotA, long slotB, int16_t campo);
// CompararArtistas (or, without `excecaoPop`, CompararArtistasSemExcecao) of the tag of (slot,
// campo) with a text the caller prepared once for that field: for loops over the collection.
bool CompararSlotComPreparado(Estado& e, long slot, int16_t campo, const PedacosTexto& valor, bool excecaoPop);
// Whether two songs share a value of the field: False for slots from 4000 on, for field 99 and
// for two empty values; otherwise CompararArtistasSlots.
bool MesmoValorTag(Estado& e, int16_t campo, long slotA, long slotB);

// The values of one field carried by a group of songs, gathered once so that "does this
// candidate share a value with any of them" costs a few hash look-ups instead of one
// MesmoValorTag per song of the group. Only comparison mode 0 on a field split into text pieces
// can be answered this way (mode 1 needs every piece inside one song, Vibe compares numbers);
// `Serve` says when, and the caller falls back to MesmoValorTag otherwise. The sets hold views
// into the prepared tags, valid while no tag text of the collection changes.
class ValoresOuvidos {
 public:
  static bool Serve(const Estado& e, int16_t campo);
  void Adicionar(Estado& e, int16_t campo, long slot);
  // MesmoValorTag(e, campo, slot, s) for some s added, all of one field; the tag table must not
  // change in between.
  bool Compartilha(Estado& e, int16_t campo, long slot) const;

 private:
  // Flags by the tag cache's text numbers: the whole values heard, and every piece of them.
  std::vector<uint8_t> inteiros_;
  std::vector<uint8_t> pedacos_;
  bool vazio_ = true;
  const CacheTags::NumerosCampo* numeros_ = nullptr;  // the field's, from the first Adicionar
};

}  // namespace lumavox
