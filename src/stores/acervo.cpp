#include "stores/acervo.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "base/erro.h"

#include "base/numeros.h"
#include "stores/codec.h"
#include "stores/ritmo.h"

namespace lumavox {

const std::array<std::u16string_view, kCampos> kNomesCampos{
    u"Artista",   u"Album",         u"Title",      u"",          u"Faixa",        u"Genero",
    u"Compositor", u"Bpm",          u"Nota",       u"Nacionalidade", u"Tipo",     u"Status",
    u"Ativo",     u"Duplicidade",   u"Bitrate",    u"Frequency", u"Original",     u"DuracaoSec",
    u"Velocidade", u"Voz",          u"Segmento",   u"Sexo",      u"Classe",       u"Faixa Etária",
    u"Ritmo",     u"DurInicio",     u"DurFim",     u"GeneroSub", u"Estilo",       u"Lingua",
    u"Decada",    u"Publico",       u"Vibe"};

double CalcularVibe(const Acervo& acervo, long slot) {
  return (ValorRitmo(acervo.AcervoTags(slot, kCampoVelocidade)) +
          ValorRitmo(acervo.AcervoTags(slot, kCampoRitmo))) /
         2;
}

std::string NomeArquivoMusica(int32_t codigo) { return FormatarZeros(codigo, 7) + ".mre"; }

void TagsAcervo::Definir(long slot, long campo, std::u16string_view texto) {
  Celula& c = celulas_(slot, campo);
  emUso_ -= c.tamanho;
  if (texto.size() <= c.tamanho) {
    // A reload mostly writes texts no longer than the ones they replace: they take that room.
    std::char_traits<char16_t>::move(texto_.data() + c.inicio, texto.data(), texto.size());
  } else {
    if (texto_.size() + texto.size() > UINT32_MAX) {
      c.tamanho = 0;
      Compactar();
      if (texto_.size() + texto.size() > UINT32_MAX)
        throw ErroExecucao(CodigoErro::Estouro, "Overflow: texto de tag longo demais");
    }
    c.inicio = static_cast<uint32_t>(texto_.size());
    texto_.append(texto);  // may be a text of this table: append copies before it lets go
  }
  c.tamanho = static_cast<uint32_t>(texto.size());
  emUso_ += texto.size();
  versao_ = ++proximaVersao_;
  // Room given up by replaced texts is taken back once it outweighs what is in use.
  if (texto_.size() > 2 * emUso_ + (1u << 20)) Compactar();
}

void TagsAcervo::Compactar() {
  std::u16string novo;
  novo.reserve(emUso_);
  for (long s = 0; s < kTotalSlots; ++s) {
    for (long k = 0; k < kCampos; ++k) {
      Celula& c = celulas_(s, k);
      const auto inicio = static_cast<uint32_t>(novo.size());
      novo.append(texto_, c.inicio, c.tamanho);
      c.inicio = c.tamanho ? inicio : 0;
    }
  }
  texto_ = std::move(novo);
}

void CarregarColecao(SistemaArquivos& arquivos, Acervo& acervo, const fs::path& pasta,
                     const std::function<void(long slot)>& aposLinha) {
  const fs::path pastaMre = acervo.CaminhoApp / "mre";
  const std::string prefixo = (pastaMre / "").string();
  // One listing of the media folder answers for every song in it; a name it lacks is still
  // looked up on its own, in case the file came after the listing.
  std::vector<std::string> midias;
  try {
    midias = arquivos.ListarNomes(pastaMre, ".mre");
  } catch (const std::exception&) {
    midias.clear();
  }
  std::sort(midias.begin(), midias.end());
  long s = 0;
  int k = 0;
  ParaCadaLinhaCodificada(arquivos, pasta / "lxdb.rdb", [&](Texto&& texto) {
    if (k == 0) {
      int32_t codigo = TextoParaInteiro32(texto);
      acervo.AcervoCodigos[s] = codigo;
    } else {
      acervo.AcervoTags.Definir(s, k - 1, texto);
    }
    if (++k > 32) {
      double vibe = CalcularVibe(acervo, s);
      acervo.AcervoVibe[s] = vibe;
      acervo.AcervoTags.Definir(s, kCampoVibe, FormatarNumero(vibe));
      k = 0;
      const std::string nome = NomeArquivoMusica(acervo.AcervoCodigos[s]);
      std::string& arquivo = acervo.AcervoArquivos[s];
      arquivo.assign(prefixo).append(nome);
      // Only an existing file of exactly that name keeps the song; otherwise the next
      // record takes its slot.
      if (std::binary_search(midias.begin(), midias.end(), nome) || arquivos.ArquivoExiste(arquivo)) ++s;
    }
    if (aposLinha) aposLinha(s);
  });
  acervo.TotalMusicas = static_cast<int16_t>(s);
}

}  // namespace lumavox
