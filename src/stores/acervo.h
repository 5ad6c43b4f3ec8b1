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
class TagsAcervo {
 public:
  const Texto& operator()(long slot, long campo) const { return tags_(slot, campo); }
  void Definir(long slot, long campo, Texto texto) {
    tags_(slot, campo) = std::move(texto);
    versao_ = ++proximaVersao_;
  }
  // Definir by copy into the room the old text had, for loaders that reuse one buffer.
  void Atribuir(long slot, long campo, std::u16string_view texto) {
    tags_(slot, campo).assign(texto);
    versao_ = ++proximaVersao_;
  }
  // 0 until the first write: every text is then empty.
  uint64_t Versao() const { return versao_; }

 private:
  inline static std::atomic<uint64_t> proximaVersao_{0};
  Matriz<Texto, kTotalSlots, kCampos> tags_;
  uint64_t versao_ = 0;
};

struct Acervo {
  Vetor<int32_t, 0, kUltimoSlot> AcervoCodigos;
  // Fields 0..31 as read; field 32 holds the vibe as text ("5,5"), its number in AcervoVibe.
  TagsAcervo AcervoTags;
  Vetor<double, 0, kUltimoSlot> AcervoVibe;
  Vetor<fs::path, 0, kUltimoSlot> AcervoArquivos;
  int16_t TotalMusicas = 0;
  fs::path CaminhoApp;
  fs::path PastaDados;
};

double CalcularVibe(const Acervo& acervo, long slot);

// Name of a song's media file: the code with at least seven digits and ".mre".
std::string NomeArquivoMusica(int32_t codigo);

// Reads `pasta`/lxdb.rdb into the collection, dropping songs whose .mre file is missing,
// and sets TotalMusicas at the end. `aposLinha` runs after every line read with the slot
// counter (the debug trace). Raises on a missing file, an undecodable line, a non-numeric
// code or a 4002nd song; TotalMusicas then keeps its previous value.
void CarregarColecao(SistemaArquivos& arquivos, Acervo& acervo, const fs::path& pasta,
                     const std::function<void(long slot)>& aposLinha);

}  // namespace lumavox
