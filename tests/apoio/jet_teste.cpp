#include "apoio/jet_teste.h"

#include <bit>
#include <cmath>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace lumavox::teste {

namespace {

constexpr size_t kPagina = 4096;

using Bytes = std::string;

void Por(Bytes& b, size_t onde, uint64_t valor, size_t tamanho) {
  for (size_t i = 0; i < tamanho; ++i) b[onde + i] = static_cast<char>(valor >> (8 * i));
}

Bytes Num(uint64_t valor, size_t tamanho) {
  Bytes b(tamanho, '\0');
  Por(b, 0, valor, tamanho);
  return b;
}

bool Fixa(const ColunaJet& c) { return c.tipo != TipoJet::Texto && c.tipo != TipoJet::Ole; }

size_t Tamanho(const ColunaJet& c) {
  switch (c.tipo) {
    case TipoJet::Inteiro: return 2;
    case TipoJet::Longo: return 4;
    case TipoJet::DataHora: return 8;
    default: return 510;
  }
}

// An OLE date: whole days from 30/12/1899, the time of day a fraction counting forward.
double DiasOle(DataHora d) {
  const double dias = std::floor(static_cast<double>(d.segundos) / kSegundosPorDia);
  const double fracao =
      (static_cast<double>(d.segundos) - dias * kSegundosPorDia) / kSegundosPorDia;
  return dias < 0 ? dias - fracao : dias + fracao;
}

// A row as Jet 4 lays it: column count, the fixed columns, the variable ones, their offsets
// from the last, their count and the mask of the columns that are not Null.
Bytes Linha(const std::vector<ColunaJet>& colunas, const LinhaBanco& valores) {
  Bytes fixas, variaveis, mascara((colunas.size() + 7) / 8, '\0');
  std::vector<size_t> inicios;
  for (size_t c = 0; c < colunas.size(); ++c) {
    const ValorBanco& v = valores[c];
    if (!std::holds_alternative<std::monostate>(v))
      mascara[c / 8] |= static_cast<char>(1 << (c % 8));
    if (!Fixa(colunas[c])) {
      inicios.push_back(variaveis.size());
      if (const Texto* t = std::get_if<Texto>(&v))
        for (char16_t ch : *t) variaveis += Num(ch, 2);
    } else if (const DataHora* d = std::get_if<DataHora>(&v)) {
      fixas += Num(std::bit_cast<uint64_t>(DiasOle(*d)), 8);
    } else {
      const double* n = std::get_if<double>(&v);
      fixas += Num(n ? static_cast<uint64_t>(static_cast<int64_t>(*n)) : 0, Tamanho(colunas[c]));
    }
  }
  // The variable columns follow all the fixed ones, wherever they stand among the columns.
  const Bytes linha = Num(colunas.size(), 2) + fixas + variaveis;
  Bytes fim = Num(linha.size(), 2);
  for (auto i = inicios.rbegin(); i != inicios.rend(); ++i) fim += Num(2 + fixas.size() + *i, 2);
  return linha + fim + Num(inicios.size(), 2) + mascara;
}

// The data pages of the table defined on page `definicao`, rows packed from each page's end.
std::vector<Bytes> PaginasDeDados(uint32_t definicao, const std::vector<Bytes>& linhas) {
  std::vector<Bytes> paginas;
  size_t i = 0;
  do {
    Bytes p(kPagina, '\0');
    p[0] = p[1] = 1;
    Por(p, 4, definicao, 4);
    size_t fim = kPagina, n = 0;
    for (; i < linhas.size() && fim - linhas[i].size() >= 16 + 2 * n; ++i, ++n) {
      fim -= linhas[i].size();
      p.replace(fim, linhas[i].size(), linhas[i]);
      Por(p, 14 + 2 * n, fim, 2);
    }
    Por(p, 12, n, 2);
    paginas.push_back(p);
  } while (i < linhas.size());
  return paginas;
}

// A table's definition page; its usage map is row `mapa` of page 1.
Bytes Definicao(const std::vector<ColunaJet>& colunas, size_t linhas, uint32_t mapa) {
  Bytes p(kPagina, '\0');
  p[0] = 2, p[1] = 1;
  Por(p, 16, linhas, 4);
  size_t pos = 63, fixo = 0, var = 0;
  for (size_t c = 0; c < colunas.size(); ++c, pos += 25) {
    p[pos] = static_cast<char>(colunas[c].tipo);
    Por(p, pos + 5, c, 2);
    Por(p, pos + 7, Fixa(colunas[c]) ? 0 : var++, 2);
    Por(p, pos + 9, c, 2);
    p[pos + 15] = Fixa(colunas[c]) ? 1 : 0;
    Por(p, pos + 21, Fixa(colunas[c]) ? fixo : 0, 2);
    Por(p, pos + 23, Tamanho(colunas[c]), 2);
    if (Fixa(colunas[c])) fixo += Tamanho(colunas[c]);
  }
  Por(p, 43, var, 2);
  Por(p, 45, colunas.size(), 2);
  Por(p, 55, 0x100 | mapa, 4);
  Por(p, 59, 0x100 | mapa, 4);  // the map of pages with free space, never read here
  for (const ColunaJet& c : colunas) {
    Por(p, pos, c.nome.size() * 2, 2);
    for (size_t k = 0; k < c.nome.size(); ++k) p[pos + 2 + 2 * k] = c.nome[k];
    pos += 2 + c.nome.size() * 2;
  }
  return p;
}

// A usage map of type 0: the first page, then a bit for it and each page after it.
Bytes Mapa(uint32_t primeira, size_t paginas) {
  Bytes m = Num(0, 1) + Num(primeira, 4) + Bytes((paginas + 7) / 8, '\0');
  for (size_t k = 0; k < paginas; ++k) m[5 + k / 8] |= static_cast<char>(1 << (k % 8));
  return m;
}

// The header from 0x18 on is kept RC4-encrypted under a fixed key. All zero, the database key
// among them, its bytes say the pages are stored plain: written, they are the key stream.
Bytes FluxoRc4(size_t tamanho) {
  const uint8_t chave[4] = {0xc7, 0xda, 0x39, 0x6b};
  uint8_t s[256];
  for (int i = 0; i < 256; ++i) s[i] = static_cast<uint8_t>(i);
  for (int i = 0, j = 0; i < 256; ++i) {
    j = (j + s[i] + chave[i % 4]) & 0xff;
    std::swap(s[i], s[j]);
  }
  Bytes fluxo;
  for (int i = 0, j = 0; fluxo.size() < tamanho;) {
    i = (i + 1) & 0xff;
    j = (j + s[i]) & 0xff;
    std::swap(s[i], s[j]);
    fluxo += static_cast<char>(s[(s[i] + s[j]) & 0xff]);
  }
  return fluxo;
}

}  // namespace

void GravarJet(const fs::path& arquivo, const std::string& tabela,
               const std::vector<ColunaJet>& colunas, const std::vector<LinhaBanco>& linhas) {
  // Page 0 the header, 1 the usage maps, 2 the catalogue (MSysObjects) and 3 its one row,
  // 4 the table's definition and 5 on its rows.
  const std::vector<ColunaJet> catalogo = {{"Id", TipoJet::Longo},
                                           {"Name", TipoJet::Texto},
                                           {"Type", TipoJet::Inteiro},
                                           {"Flags", TipoJet::Longo},
                                           {"LvProp", TipoJet::Ole}};
  const LinhaBanco entrada = {4.0, Texto(tabela.begin(), tabela.end()), 1.0, 0.0, {}};
  std::vector<Bytes> linhasTabela;
  for (const LinhaBanco& l : linhas) linhasTabela.push_back(Linha(colunas, l));
  const std::vector<Bytes> dados = PaginasDeDados(4, linhasTabela);

  Bytes cabecalho(kPagina, '\0');
  cabecalho.replace(0, 19, Bytes("\0\1\0\0Standard Jet DB", 19));
  cabecalho[0x14] = 1;  // Jet 4
  cabecalho.replace(0x18, 128, FluxoRc4(128));

  std::ofstream out(arquivo, std::ios::binary);
  out << cabecalho << PaginasDeDados(0, {Mapa(3, 1), Mapa(5, dados.size())})[0]
      << Definicao(catalogo, 1, 0) << PaginasDeDados(2, {Linha(catalogo, entrada)})[0]
      << Definicao(colunas, linhas.size(), 1);
  for (const Bytes& p : dados) out << p;
  if (!out) throw std::runtime_error("writing " + arquivo.string());
}

}  // namespace lumavox::teste
