#include "stores/arquivo_regras.h"

#include "base/arquivos.h"
#include "base/erro.h"
#include "stores/codec.h"

namespace lumavox {

bool RegraLida::Ativo() const { return Maiusculas(linhas[0].texto) == u"A"; }

namespace {

// The engine drops one CR before the LF; a line whose CR the file's CRLF ending already
// accounts for is decoded as it stands.
Texto EntradaDoDecodificador(const Texto& bruto, bool crDoFimDeLinha) {
  if (!crDoFimDeLinha && !bruto.empty() && bruto.back() == u'\r')
    return bruto.substr(0, bruto.size() - 1);
  return bruto;
}

Texto CodificarComPrefixo(const LinhaCodificada& l) {
  Texto linha = CodificarLinha(l.texto);
  linha[0] = l.prefixo;
  return linha;
}

// The line as it was written when that still decodes to the text (an edited text is
// encoded afresh), else the text encoded with its leading character.
Texto Escrita(const LinhaCodificada& l, bool crDoFimDeLinha) {
  if (l.bruto) {
    try {
      if (DecodificarLinha(EntradaDoDecodificador(*l.bruto, crDoFimDeLinha)) == l.texto)
        return *l.bruto;
    } catch (const ErroExecucao&) {
    }
  }
  return CodificarComPrefixo(l);
}

LinhaCodificada LerLinha(const Texto& bruto, bool crDoFimDeLinha) {
  LinhaCodificada l;
  l.texto = DecodificarLinha(EntradaDoDecodificador(bruto, crDoFimDeLinha));
  if (!bruto.empty()) l.prefixo = bruto[0];
  if (CodificarComPrefixo(l) != bruto) l.bruto = bruto;
  return l;
}

bool SoAscii(std::string_view bytes) {
  for (char c : bytes)
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  return true;
}

}  // namespace

ConjuntoLido LerArquivoRegras(const fs::path& arquivo, int conjunto) {
  const std::string bytes = LerBytes(arquivo);
  const Texto texto = SoAscii(bytes) ? Texto(bytes.begin(), bytes.end()) : DecodificarBytes(bytes);

  std::vector<Texto> brutas;
  bool terminada = true;
  for (size_t inicio = 0; inicio < texto.size();) {
    const size_t fim = texto.find(u'\n', inicio);
    if (fim == Texto::npos) {
      brutas.push_back(texto.substr(inicio));
      terminada = false;
      break;
    }
    brutas.push_back(texto.substr(inicio, fim - inicio));
    inicio = fim + 1;
  }
  ConjuntoLido c;
  c.conjunto = conjunto;
  c.ultimaSemFim = !terminada;
  const size_t terminadas = brutas.size() - (terminada ? 0 : 1);
  // CRLF when every ended line ends so; a lone LF line in such a file keeps its own form.
  bool todasCr = true;
  for (size_t i = 0; i < terminadas; ++i)
    todasCr &= !brutas[i].empty() && brutas[i].back() == u'\r';
  c.crlf = todasCr;

  const size_t completas = brutas.size() / kLinhasPorRegra * kLinhasPorRegra;
  for (size_t i = 0; i < brutas.size(); ++i) {
    const bool crDoFim = c.crlf && i < terminadas;
    Texto bruto = brutas[i];
    if (crDoFim) bruto.pop_back();
    LinhaCodificada linha;
    try {
      linha = LerLinha(bruto, crDoFim);
    } catch (const ErroExecucao& e) {
      throw ErroNaLinha(
          e.Codigo(),
          arquivo.filename().string() + " linha " + std::to_string(i + 1) + ": " + e.what(),
          static_cast<long>(i + 1));
    }
    if (i >= completas) {
      c.incompletas.push_back(std::move(bruto));
      continue;
    }
    if (i % kLinhasPorRegra == 0) {
      c.regras.emplace_back();
      c.regras.back().numero = static_cast<int>(c.regras.size());
      c.regras.back().linhaOrigem = static_cast<int>(i + 1);
    }
    c.regras.back().linhas[i % kLinhasPorRegra] = std::move(linha);
  }
  return c;
}

std::string BytesDoConjunto(const ConjuntoLido& c) {
  const size_t linhasDeRegras = c.regras.size() * kLinhasPorRegra;
  const size_t total = linhasDeRegras + c.incompletas.size();
  std::string bytes;
  for (size_t i = 0; i < total; ++i) {
    const bool terminada = !(c.ultimaSemFim && i + 1 == total);
    const Texto linha = i < linhasDeRegras
                            ? Escrita(c.regras[i / kLinhasPorRegra].linhas[i % kLinhasPorRegra],
                                      c.crlf && terminada)
                            : c.incompletas[i - linhasDeRegras];
    bytes += ParaUtf8(linha);
    if (terminada) bytes += c.crlf ? "\r\n" : "\n";
  }
  return bytes;
}

void GravarArquivoRegras(SistemaArquivos& arquivos, const fs::path& pasta, const ConjuntoLido& c) {
  const fs::path destino = pasta / ("lxie" + std::to_string(c.conjunto) + ".rdb");
  const fs::path temporario = pasta / ("lxie" + std::to_string(c.conjunto) + ".rdb.novo");
  arquivos.EscreverBytes(temporario, BytesDoConjunto(c));
  try {
    arquivos.Renomear(temporario, destino);
  } catch (const ErroExecucao&) {
    arquivos.Apagar(temporario);
    throw ErroExecucao(CodigoErro::PermissaoNegada, "não foi possível gravar " + destino.string());
  }
}

}  // namespace lumavox
