// The song collection of the playlist in force: codes, 33 tag fields and media paths per
// slot 0..4000. Slots at or past TotalMusicas keep what an earlier load left there, so every
// reader bounds its loops by TotalMusicas.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include "base/sistema_arquivos.h"
#include "base/texto.h"
#include "base/vetor.h"

namespace lumavox {

namespace fs = std::filesystem;

constexpr long kUltimoSlot = 4000;
constexpr long kTotalSlots = 4001;
constexpr long kCampos = 33;       // fields 0..31 from the file, 32 computed ("Vibe")
constexpr long kCampoVibe = 32;
// A selection run with fewer songs than this chooses nothing and waits a minute.
constexpr int kMinimoMusicas = 51;
constexpr long kCampoGenero = 5;
constexpr long kCampoBpm = 7;
constexpr long kCampoNota = 8;
constexpr long kCampoDuracaoSec = 17;
constexpr long kCampoVelocidade = 18;
constexpr long kCampoRitmo = 24;
constexpr long kCampoGeneroSub = 27;

// Field names in file order; field 3 has none (no filter can name it).
extern const std::array<std::u16string_view, kCampos> kNomesCampos;

// The tag texts of the collection, slot by field. Reading is open to all; every write goes
// through Definir, which gives the table a version never used before in the process, so a
// prepared form of a tag that saw this version knows the text is still the same without
// reading it. Equal versions mean the same writes, copies included.
// The texts live end to end in one buffer (a full collection is 132,000 short texts, and one
// allocation each made loading and freeing it cost more than decoding it); a text read stays
// valid until the next write.
class TagsAcervo {
 public:
  std::u16string_view operator()(long slot, long campo) const {
    const Celula c = celulas_(slot, campo);
    return {texto_.data() + c.inicio, c.tamanho};
  }
  void Definir(long slot, long campo, std::u16string_view texto);
  // What Definir leaves after writing, in turn, the first tamanhos.size() cells in slot order
  // (slot 0 field 0, field 1, ...) with the texts end to end in `textos`, in one write.
  void DefinirEmOrdem(std::u16string textos, const std::vector<uint32_t>& tamanhos);
  // 0 until the first write: every text is then empty.
  uint64_t Versao() const { return versao_; }

 private:
  struct Celula {
    uint32_t inicio = 0;
    uint32_t tamanho = 0;
  };
  void Compactar();

  inline static std::atomic<uint64_t> proximaVersao_{0};
  Matriz<Celula, kTotalSlots, kCampos> celulas_;
  std::u16string texto_;
  size_t emUso_ = 0;  // characters some cell still points at
  uint64_t versao_ = 0;
};

struct Acervo {
  Vetor<int32_t, 0, kUltimoSlot> AcervoCodigos;
  // Fields 0..31 as read; field 32 holds the vibe as text ("5,5"), its number in AcervoVibe.
  TagsAcervo AcervoTags;
  Vetor<double, 0, kUltimoSlot> AcervoVibe;
  Vetor<std::string, 0, kUltimoSlot> AcervoArquivos;
  int16_t TotalMusicas = 0;
  fs::path CaminhoApp;
  fs::path PastaDados;
};

double CalcularVibe(const Acervo& acervo, long slot);

// Name of a song's media file: the code with at least seven digits and ".mre".
std::string NomeArquivoMusica(int32_t codigo);
// The same name appended to `destino`.
void AcrescentarNomeArquivoMusica(std::string& destino, int32_t codigo);

// What one load of a collection wrote, and only that: every value of the kept songs' slots, and
// of the slot after them whatever a dropped song or an unfinished last record left there. The
// slots beyond keep what an earlier load left, so writing this again equals reading the same
// files again into any collection.
struct GravacaoAcervo {
  int16_t total = 0;
  std::vector<int32_t> codigos;    // slots 0..total-1, then the slot after them when written
  std::vector<double> vibes;       // likewise; the slot after them only for a dropped song
  std::u16string textos;           // the tags written, slot by slot, field by field
  std::vector<uint32_t> tamanhos;  // the length of each of them
  // The slot after the kept songs: how many of its fields were written from field 0 (33 for a
  // dropped song, whose vibe and file were written too), and whether its code was.
  int camposNaSobra = 0;
  bool codigoNaSobra = false;
  // The dropped song's media file name (its folder is the collection's own), named by its code,
  // not by the code an unfinished record after it left in the slot.
  std::string arquivoNaSobra;
};

// Reads `pasta`/lxdb.rdb into the collection, dropping songs whose .mre file is missing,
// and sets TotalMusicas at the end. `aposLinha` runs after every line read with the slot
// counter (the debug trace). Raises on a missing file, an undecodable line, a non-numeric
// code or a 4002nd song; TotalMusicas then keeps its previous value. When `gravacao` is given,
// a load that completes records in it what it wrote.
void CarregarColecao(SistemaArquivos& arquivos, Acervo& acervo, const fs::path& pasta,
                     const std::function<void(long slot)>& aposLinha, GravacaoAcervo* gravacao = nullptr);

// Writes into the collection what a load recorded, as that load wrote it.
void RegravarColecao(Acervo& acervo, GravacaoAcervo gravacao);

}  // namespace lumavox
