#include "stores/acervo.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
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

void AcrescentarNomeArquivoMusica(std::string& destino, int32_t codigo) {
  // FormatarZeros(codigo, 7) + ".mre", written into the destination: a load names thousands.
  char digitos[16];
  const auto fim = std::to_chars(digitos, digitos + sizeof digitos, std::abs(static_cast<long long>(codigo))).ptr;
  const auto n = static_cast<size_t>(fim - digitos);
  if (codigo < 0) destino += '-';
  if (n < 7) destino.append(7 - n, '0');
  destino.append(digitos, n).append(".mre");
}

std::string NomeArquivoMusica(int32_t codigo) {
  std::string nome;
  AcrescentarNomeArquivoMusica(nome, codigo);
  return nome;
}

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

void TagsAcervo::DefinirEmOrdem(std::u16string textos, const std::vector<uint32_t>& tamanhos) {
  uint64_t soma = 0;
  for (uint32_t t : tamanhos) soma += t;
  if (tamanhos.size() > static_cast<size_t>(kTotalSlots * kCampos) || soma != textos.size())
    throw ErroExecucao(CodigoErro::ChamadaInvalida, "Invalid procedure call or argument");
  uint64_t inicio = 0;
  if (emUso_ == 0 && textos.size() <= UINT32_MAX) {
    // No cell points into the buffer: the texts become it, with nothing copied.
    texto_ = std::move(textos);
  } else if (texto_.size() + textos.size() <= UINT32_MAX) {
    inicio = texto_.size();
    texto_.append(textos);
  } else {
    size_t de = 0;
    for (size_t i = 0; i < tamanhos.size(); ++i) {
      Definir(static_cast<long>(i) / kCampos, static_cast<long>(i) % kCampos,
              std::u16string_view(textos).substr(de, tamanhos[i]));
      de += tamanhos[i];
    }
    return;
  }
  for (size_t i = 0; i < tamanhos.size(); ++i) {
    Celula& c = celulas_(static_cast<long>(i) / kCampos, static_cast<long>(i) % kCampos);
    emUso_ -= c.tamanho;
    c.inicio = static_cast<uint32_t>(inicio);
    c.tamanho = tamanhos[i];
    emUso_ += c.tamanho;
    inicio += c.tamanho;
  }
  versao_ = ++proximaVersao_;
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

namespace {

std::string PrefixoMidias(const Acervo& acervo) { return (acervo.CaminhoApp / "mre" / "").string(); }

// AcervoArquivos of a slot: the media folder, then the code's file name.
void NomearArquivo(Acervo& a, long slot, const std::string& prefixo, const std::string& nome) {
  a.AcervoArquivos[slot].assign(prefixo).append(nome);
}

void Gravar(const Acervo& a, long slot, int campos, GravacaoAcervo& g) {
  for (int k = 0; k < campos; ++k) {
    const std::u16string_view t = a.AcervoTags(slot, k);
    g.textos.append(t);
    g.tamanhos.push_back(static_cast<uint32_t>(t.size()));
  }
}

void Registrar(const Acervo& a, long total, int linhasNaSobra, bool descartada, const std::string& nomeDescartada,
               GravacaoAcervo& g) {
  g = GravacaoAcervo();
  g.total = static_cast<int16_t>(total);
  for (long s = 0; s < total; ++s) {
    g.codigos.push_back(a.AcervoCodigos[s]);
    g.vibes.push_back(a.AcervoVibe[s]);
    Gravar(a, s, kCampos, g);
  }
  // A dropped song wrote the whole slot; an unfinished record after it, its first lines again.
  g.camposNaSobra = descartada ? static_cast<int>(kCampos) : std::max(0, linhasNaSobra - 1);
  g.codigoNaSobra = descartada || linhasNaSobra > 0;
  if (total > kUltimoSlot) return;
  if (g.codigoNaSobra) g.codigos.push_back(a.AcervoCodigos[total]);
  if (descartada) {
    g.vibes.push_back(a.AcervoVibe[total]);
    g.arquivoNaSobra = nomeDescartada;
  }
  Gravar(a, total, g.camposNaSobra, g);
}

}  // namespace

void RegravarColecao(Acervo& acervo, GravacaoAcervo g) {
  const std::string prefixo = PrefixoMidias(acervo);
  for (long s = 0; s < g.total; ++s) {
    const int32_t codigo = g.codigos[static_cast<size_t>(s)];
    acervo.AcervoCodigos[s] = codigo;
    acervo.AcervoVibe[s] = g.vibes[static_cast<size_t>(s)];
    std::string& arquivo = acervo.AcervoArquivos[s];
    arquivo.assign(prefixo);
    AcrescentarNomeArquivoMusica(arquivo, codigo);
  }
  if (g.codigoNaSobra) acervo.AcervoCodigos[g.total] = g.codigos[static_cast<size_t>(g.total)];
  if (g.camposNaSobra == kCampos) {
    acervo.AcervoVibe[g.total] = g.vibes[static_cast<size_t>(g.total)];
    NomearArquivo(acervo, g.total, prefixo, g.arquivoNaSobra);
  }
  acervo.AcervoTags.DefinirEmOrdem(std::move(g.textos), g.tamanhos);
  acervo.TotalMusicas = g.total;
}

void CarregarColecao(SistemaArquivos& arquivos, Acervo& acervo, const fs::path& pasta,
                     const std::function<void(long slot)>& aposLinha, GravacaoAcervo* gravacao) {
  const fs::path pastaMre = acervo.CaminhoApp / "mre";
  const std::string prefixo = PrefixoMidias(acervo);
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
  bool descartada = false;  // a whole record was written into slot s and dropped
  std::string nome;          // the media file name of the last whole record
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
      nome = NomeArquivoMusica(acervo.AcervoCodigos[s]);
      NomearArquivo(acervo, s, prefixo, nome);
      const std::string& arquivo = acervo.AcervoArquivos[s];
      // Only an existing file of exactly that name keeps the song; otherwise the next
      // record takes its slot.
      const bool existe = std::binary_search(midias.begin(), midias.end(), nome) || arquivos.ArquivoExiste(arquivo);
      descartada = !existe;
      if (existe) ++s;
    }
    if (aposLinha) aposLinha(s);
  });
  if (gravacao) Registrar(acervo, s, k, descartada, nome, *gravacao);
  acervo.TotalMusicas = static_cast<int16_t>(s);
}

}  // namespace lumavox
