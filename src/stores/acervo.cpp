#include "stores/acervo.h"

#include <string>
#include <unordered_set>

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

void CarregarColecao(SistemaArquivos& arquivos, Acervo& acervo, const fs::path& pasta,
                     const std::function<void(long slot)>& aposLinha) {
  const fs::path pastaMre = acervo.CaminhoApp / "mre";
  // One listing of the media folder answers for every song in it; a name it lacks is still
  // looked up on its own, in case the file came after the listing.
  std::unordered_set<std::string> midias;
  try {
    for (const fs::path& m : arquivos.Listar(pastaMre, ".mre")) midias.insert(m.filename().string());
  } catch (const std::exception&) {
    midias.clear();
  }
  long s = 0;
  int k = 0;
  ParaCadaLinhaCodificada(arquivos, pasta / "lxdb.rdb", [&](Texto&& texto) {
    if (k == 0) {
      int32_t codigo = TextoParaInteiro32(texto);
      acervo.AcervoCodigos[s] = codigo;
    } else {
      acervo.AcervoTags.Atribuir(s, k - 1, texto);
    }
    if (++k > 32) {
      double vibe = CalcularVibe(acervo, s);
      acervo.AcervoVibe[s] = vibe;
      acervo.AcervoTags.Definir(s, kCampoVibe, FormatarNumero(vibe));
      k = 0;
      const std::string nome = NomeArquivoMusica(acervo.AcervoCodigos[s]);
      acervo.AcervoArquivos[s] = pastaMre / nome;
      // Only an existing file of exactly that name keeps the song; otherwise the next
      // record takes its slot.
      if (midias.contains(nome) || arquivos.ArquivoExiste(acervo.AcervoArquivos[s])) ++s;
    }
    if (aposLinha) aposLinha(s);
  });
  acervo.TotalMusicas = static_cast<int16_t>(s);
}

}  // namespace lumavox
