// Prepared forms of tag texts and value lists. Rules compare tags inside loops over the whole
// collection, so a text is upper-cased and split into its pieces once, and later comparisons
// only look at views into that prepared form.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/texto.h"

namespace lumavox {

class TagsAcervo;

// How a field's values are split: the artist separators for "Artista" (field 0), ";" for every
// other field, and ";" with pieces compared as numbers for "Vibe" (field 32).
enum class TipoDivisao : uint8_t { Artista = 0, PontoEVirgula = 1, Vibe = 2 };
constexpr int kTiposDivisao = 3;

TipoDivisao TipoDoCampo(int16_t campo);

struct Pedaco {
  uint32_t inicio = 0;  // position of the upper-cased piece in PedacosTexto's buffer
  uint32_t tamanho = 0;
  bool final = false;  // the trailing piece, after the last separator
  int32_t numeroTexto = 0;  // CacheTags::DoSlotNumerado's number of the piece's text; 0 until then
  double numero = 0;   // ValorNumerico of the piece; filled for Vibe only
};

// One text split by the station's walk: a separator hit closes the piece before it; the
// trailing piece exists only when it holds at least two characters, so a one-character tag or
// a one-character last piece is never compared. Pieces are not trimmed and may be empty.
// A default-constructed object is the prepared form of the empty text.
class PedacosTexto {
 public:
  void Preparar(std::u16string_view texto, TipoDivisao tipo);

  bool MesmoTexto(std::u16string_view texto) const;
  std::u16string_view Original() const { return {dados_.data(), tamanhoOriginal_}; }
  std::u16string_view Maiusculo() const {
    return {dados_.data() + tamanhoOriginal_, tamanhoMaiusculo_};
  }
  std::u16string_view Vista(const Pedaco& p) const { return {dados_.data() + p.inicio, p.tamanho}; }
  const std::vector<Pedaco>& Pedacos() const { return pedacos_; }
  TipoDivisao Tipo() const { return tipo_; }
  // CacheTags::DoSlotNumerado's number of the whole upper-cased text; 0 until then.
  int32_t NumeroInteiro() const { return numeroInteiro_; }

  // Whether a piece (upper-cased, with its number for Vibe) equals one of this list's pieces:
  // within 0.5 either way, both bounds included, for Vibe; the same upper-case text otherwise.
  bool ContemPedaco(std::u16string_view maiusculo, double numero) const;

 private:
  void AdicionarPedaco(std::u16string_view texto, size_t inicio, size_t tamanho, bool final,
                       bool alinhado);
  friend class CacheTags;

  // The original text, then its upper-case form, then (only when upper-casing changed the
  // length) the upper-case form of each piece on its own.
  Texto dados_;
  uint32_t tamanhoOriginal_ = 0;
  uint32_t tamanhoMaiusculo_ = 0;
  TipoDivisao tipo_ = TipoDivisao::PontoEVirgula;
  int32_t numeroInteiro_ = 0;
  std::vector<Pedaco> pedacos_;
};

// A filter text already split and looked up: its field, whether it accepts every song, and the
// prepared value list.
struct FiltroPreparado {
  Texto filtro;
  bool usado = false;
  bool aceitaTudo = false;
  int16_t campo = 0;
  PedacosTexto valor;
};

// Memo of prepared forms, kept inside Estado. A slot's entry remembers the version of the tag
// table it was checked against and reads the text again only when the table was written since,
// so a rewritten tag is never answered from a stale form.
class CacheTags {
 public:
  static constexpr long kSlots = 4001;
  static constexpr long kCampos = 33;
  static constexpr size_t kLimiteTextos = 4096;  // per split kind; the map is emptied past it
  static constexpr size_t kFiltros = 16;

  CacheTags() = default;
  // Prepared forms are derived data: a copy starts empty and fills itself again.
  CacheTags(const CacheTags&) {}
  CacheTags& operator=(const CacheTags&);
  CacheTags(CacheTags&&) noexcept = default;
  CacheTags& operator=(CacheTags&&) noexcept = default;

  // The tag text of (slot, campo), prepared for that field; a slot or field out of range raises
  // as reading the table would.
  const PedacosTexto& DoSlot(long slot, int16_t campo, const TagsAcervo& tags);

  // DoSlot's form with a number for the whole text and for each piece: equal texts get equal
  // numbers, so sets of values become flags indexed by number. Numbers stay valid until
  // ReiniciarNumeracaoSeGrande empties the numbering.
  const PedacosTexto& DoSlotNumerado(long slot, int16_t campo, const TagsAcervo& tags);
  // One past the highest number given so far.
  size_t LimiteNumeros() const { return numeros_.size() + 1; }

  // DoSlotNumerado's numbers of every slot of one field, laid out flat for loops over the
  // collection: the whole text's number (0 for an empty text) and the pieces' numbers, negative
  // for a piece before the last that reads "POP". Valid until the next call of a Do* method
  // that renumbers; rebuilt when the table or the numbering changed.
  struct NumerosCampo {
    std::vector<int32_t> inteiro;   // per slot
    std::vector<uint32_t> inicio;   // per slot and one past the last: its pieces in `pedacos`
    std::vector<int32_t> pedacos;
    uint64_t versaoTags = 0;
    uint64_t geracao = 0;
  };
  const NumerosCampo& Numerados(int16_t campo, const TagsAcervo& tags);
  // ValorNumerico of every slot's text of one field, for rules that read a number of each song
  // at every selection; rebuilt when the table changed. Valid until the next call.
  const std::vector<double>& Valores(int16_t campo, const TagsAcervo& tags);
  // Keeps a long-running engine whose tags keep changing from growing the numbering forever;
  // called where no numbers are held.
  void ReiniciarNumeracaoSeGrande();

  // Two arbitrary texts prepared for one split kind; both stay valid until the next call.
  std::pair<const PedacosTexto*, const PedacosTexto*> DoisTextos(std::u16string_view a,
                                                                 std::u16string_view b,
                                                                 TipoDivisao tipo);

  // The memo entry of a filter text, or nullptr; Novo hands out an entry to fill, replacing
  // the oldest one.
  const FiltroPreparado* ProcurarFiltro(std::u16string_view filtro);
  FiltroPreparado& NovoFiltro();

  void Limpar();

 private:
  struct HashTexto {
    using is_transparent = void;
    size_t operator()(std::u16string_view t) const { return std::hash<std::u16string_view>{}(t); }
  };
  using MapaTextos = std::unordered_map<Texto, PedacosTexto, HashTexto, std::equal_to<>>;

  const PedacosTexto& DoTexto(std::u16string_view texto, TipoDivisao tipo);

  int32_t Numerar(std::u16string_view texto);

  // Per field, kSlots entries allocated when a rule first reads that field: most fields are
  // never compared, and a one-shot selection should not pay for them.
  std::array<std::unique_ptr<PedacosTexto[]>, kCampos> slots_;
  std::array<std::unique_ptr<uint64_t[]>, kCampos> versoes_;  // the table's version each entry was checked at
  std::unordered_map<Texto, int32_t, HashTexto, std::equal_to<>> numeros_;
  uint64_t geracaoNumeros_ = 1;  // changes whenever the numbering is emptied
  std::array<std::unique_ptr<NumerosCampo>, kCampos> numerados_;
  struct ValoresCampo {
    std::vector<double> valor;
    uint64_t versaoTags = 0;
  };
  std::array<std::unique_ptr<ValoresCampo>, kCampos> valores_;
  std::array<MapaTextos, kTiposDivisao> textos_;
  std::array<FiltroPreparado, kFiltros> filtros_;
  size_t ultimoFiltro_ = 0;
  size_t proximoFiltro_ = 0;
};

}  // namespace lumavox
