#include "state/pedacos.h"

#include <algorithm>
#include <cstring>

#include "base/numeros.h"
#include "stores/acervo.h"

namespace lumavox {

namespace {

// The artist separators in the order they are tried, upper-cased once so that matching one
// "ignoring case" is a plain compare against the upper-cased tag.
const std::array<Texto, 20>& SeparadoresArtista() {
  static const std::array<Texto, 20> separadores = [] {
    constexpr std::array<std::u16string_view, 20> originais{
        u" feat ", u" feat. ", u" ft ",     u" ft. ",  u" featuring ", u" and ",   u" & ",
        u" e ",    u" remix ", u" mix ",    u" rmx ",  u" duet ",      u" dueto ", u" , ",
        u" vs ",   u" vs. ",   u" versus ", u" with ", u" w ",         u" com "};
    std::array<Texto, 20> saida;
    for (size_t i = 0; i < originais.size(); ++i) saida[i] = Maiusculas(originais[i]);
    return saida;
  }();
  return separadores;
}

// Whether an upper-cased character is the second of some artist separator.
bool SegundaLetraDeSeparador(char16_t c) {
  static const Texto segundas = [] {
    Texto t;
    for (const Texto& s : SeparadoresArtista())
      if (t.find(s[1]) == Texto::npos) t += s[1];
    return t;
  }();
  return segundas.find(c) != Texto::npos;
}

// Tags and their pieces are short: an inline loop answers them faster than a call to memcmp,
// which this test makes millions of times in a selection.
bool Iguais(std::u16string_view a, std::u16string_view b) {
  if (a.size() != b.size()) return false;
  if (a.size() > 24) return std::memcmp(a.data(), b.data(), a.size() * sizeof(char16_t)) == 0;
  for (size_t i = 0; i < a.size(); ++i)
    if (a[i] != b[i]) return false;
  return true;
}

}  // namespace

TipoDivisao TipoDoCampo(int16_t campo) {
  if (campo == 0) return TipoDivisao::Artista;
  if (campo == kCampoVibe) return TipoDivisao::Vibe;
  return TipoDivisao::PontoEVirgula;
}

bool PedacosTexto::MesmoTexto(std::u16string_view texto) const { return Iguais(Original(), texto); }

void PedacosTexto::Preparar(std::u16string_view texto, TipoDivisao tipo) {
  tipo_ = tipo;
  numeroInteiro_ = 0;
  pedacos_.clear();
  dados_.reserve(2 * texto.size());
  dados_.assign(texto);
  AcrescentarMaiusculas(dados_, texto);
  tamanhoOriginal_ = static_cast<uint32_t>(texto.size());
  tamanhoMaiusculo_ = static_cast<uint32_t>(dados_.size() - texto.size());

  // Upper-casing keeps the length for every code point ICU maps; should it ever not, positions
  // are walked on the original text and each piece is upper-cased on its own (appended to the
  // buffer, so the upper-case view below is read only when aligned).
  const bool alinhado = tamanhoMaiusculo_ == texto.size();
  const std::u16string_view maius = Maiusculo();
  const size_t n = texto.size();
  if (tipo != TipoDivisao::Artista) pedacos_.reserve(static_cast<size_t>(std::count(texto.begin(), texto.end(), u';')) + 1);
  size_t inicio = 0;
  for (size_t p = 0; p < n; ++p) {
    size_t salto = 0;
    bool achou = false;
    if (tipo == TipoDivisao::Artista) {
      // Every separator starts with a blank, and only a blank upper-cases to a blank.
      if (texto[p] != u' ') continue;
      // Most blanks separate words: a character after it that starts no separator settles it.
      if (alinhado && (p + 1 >= n || !SegundaLetraDeSeparador(maius[p + 1]))) continue;
      for (const Texto& s : SeparadoresArtista()) {
        if (p + s.size() > n) continue;
        bool igual =
            alinhado ? maius.substr(p, s.size()) == s : Maiusculas(texto.substr(p, s.size())) == s;
        if (igual) {
          achou = true;
          salto = s.size() - 1;
          break;
        }
      }
    } else {
      achou = texto[p] == u';';
    }
    if (achou) {
      AdicionarPedaco(texto, inicio, p - inicio, false, alinhado);
      p += salto;
      inicio = p + 1;
    }
  }
  // The trailing piece needs two characters or more.
  if (inicio + 1 < n) AdicionarPedaco(texto, inicio, n - inicio, true, alinhado);
}

void PedacosTexto::AdicionarPedaco(std::u16string_view texto, size_t inicio, size_t tamanho,
                                   bool final, bool alinhado) {
  Pedaco p;
  p.final = final;
  p.tamanho = static_cast<uint32_t>(tamanho);
  if (alinhado) {
    p.inicio = static_cast<uint32_t>(tamanhoOriginal_ + inicio);
  } else {
    Texto m = Maiusculas(texto.substr(inicio, tamanho));
    p.inicio = static_cast<uint32_t>(dados_.size());
    p.tamanho = static_cast<uint32_t>(m.size());
    dados_.append(m);
  }
  if (tipo_ == TipoDivisao::Vibe) p.numero = ValorNumerico(texto.substr(inicio, tamanho));
  pedacos_.push_back(p);
}

bool PedacosTexto::ContemPedaco(std::u16string_view maiusculo, double numero) const {
  if (tipo_ == TipoDivisao::Vibe) {
    for (const Pedaco& q : pedacos_)
      if (q.numero - 0.5 <= numero && numero <= q.numero + 0.5) return true;
    return false;
  }
  for (const Pedaco& q : pedacos_)
    if (Iguais(Vista(q), maiusculo)) return true;
  return false;
}

CacheTags& CacheTags::operator=(const CacheTags& outro) {
  if (this != &outro) Limpar();
  return *this;
}

void CacheTags::Limpar() {
  for (auto& s : slots_) s.reset();
  for (auto& v : versoes_) v.reset();
  numeros_.clear();
  ++geracaoNumeros_;
  for (auto& n : numerados_) n.reset();
  for (auto& v : valores_) v.reset();
  for (MapaTextos& m : textos_) m.clear();
  for (FiltroPreparado& f : filtros_) f = FiltroPreparado();
  ultimoFiltro_ = proximoFiltro_ = 0;
}

const PedacosTexto& CacheTags::DoSlot(long slot, int16_t campo, const TagsAcervo& tags) {
  if (slot < 0 || slot >= kSlots || campo < 0 || campo >= kCampos) {
    static_cast<void>(tags(slot, campo));  // raises the table's own index error
  }
  std::unique_ptr<PedacosTexto[]>& formas = slots_[static_cast<size_t>(campo)];
  std::unique_ptr<uint64_t[]>& versoes = versoes_[static_cast<size_t>(campo)];
  if (!formas) {
    formas = std::make_unique<PedacosTexto[]>(static_cast<size_t>(kSlots));
    versoes = std::make_unique<uint64_t[]>(static_cast<size_t>(kSlots));  // zeroed
  }
  const auto i = static_cast<size_t>(slot);
  PedacosTexto& p = formas[i];
  // An entry never prepared is the form of the empty text at version 0, which is right: a table
  // never written holds only empty texts.
  if (versoes[i] != tags.Versao()) {
    const std::u16string_view texto = tags(slot, campo);
    if (!p.MesmoTexto(texto)) p.Preparar(texto, TipoDoCampo(campo));
    versoes[i] = tags.Versao();
  }
  return p;
}

const PedacosTexto& CacheTags::DoSlotNumerado(long slot, int16_t campo, const TagsAcervo& tags) {
  auto& p = const_cast<PedacosTexto&>(DoSlot(slot, campo, tags));
  if (p.numeroInteiro_ == 0) {
    p.numeroInteiro_ = Numerar(p.Maiusculo());
    for (Pedaco& q : p.pedacos_) q.numeroTexto = Numerar(p.Vista(q));
  }
  return p;
}

int32_t CacheTags::Numerar(std::u16string_view texto) {
  auto it = numeros_.find(texto);
  if (it != numeros_.end()) return it->second;
  const auto numero = static_cast<int32_t>(numeros_.size() + 1);
  numeros_.emplace(Texto(texto), numero);
  return numero;
}

const CacheTags::NumerosCampo& CacheTags::Numerados(int16_t campo, const TagsAcervo& tags) {
  if (campo < 0 || campo >= kCampos) static_cast<void>(tags(0, campo));  // raises the table's own error
  std::unique_ptr<NumerosCampo>& n = numerados_[static_cast<size_t>(campo)];
  if (n && n->versaoTags == tags.Versao() && n->geracao == geracaoNumeros_) return *n;
  if (!n) n = std::make_unique<NumerosCampo>();
  n->inteiro.assign(static_cast<size_t>(kSlots), 0);
  n->inicio.assign(static_cast<size_t>(kSlots) + 1, 0);
  n->pedacos.clear();
  for (long s = 0; s < kSlots; ++s) {
    const PedacosTexto& p = DoSlotNumerado(s, campo, tags);
    const auto i = static_cast<size_t>(s);
    n->inicio[i] = static_cast<uint32_t>(n->pedacos.size());
    if (p.Original().empty()) continue;
    n->inteiro[i] = p.NumeroInteiro();
    for (const Pedaco& q : p.Pedacos())
      n->pedacos.push_back(!q.final && p.Vista(q) == u"POP" ? -q.numeroTexto : q.numeroTexto);
  }
  n->inicio[static_cast<size_t>(kSlots)] = static_cast<uint32_t>(n->pedacos.size());
  n->versaoTags = tags.Versao();
  n->geracao = geracaoNumeros_;
  return *n;
}

const std::vector<double>& CacheTags::Valores(int16_t campo, const TagsAcervo& tags) {
  if (campo < 0 || campo >= kCampos) static_cast<void>(tags(0, campo));  // raises the table's own error
  std::unique_ptr<ValoresCampo>& v = valores_[static_cast<size_t>(campo)];
  if (v && v->versaoTags == tags.Versao()) return v->valor;
  if (!v) v = std::make_unique<ValoresCampo>();
  v->valor.resize(static_cast<size_t>(kSlots));
  for (long s = 0; s < kSlots; ++s) v->valor[static_cast<size_t>(s)] = ValorNumerico(tags(s, campo));
  v->versaoTags = tags.Versao();
  return v->valor;
}

void CacheTags::ReiniciarNumeracaoSeGrande() {
  // Every tag of a full collection and its pieces fit many times over.
  constexpr size_t kLimite = 1 << 20;
  if (numeros_.size() < kLimite) return;
  numeros_.clear();
  ++geracaoNumeros_;
  for (auto& formas : slots_) {
    if (!formas) continue;
    for (long i = 0; i < kSlots; ++i) {
      formas[static_cast<size_t>(i)].numeroInteiro_ = 0;
      for (Pedaco& q : formas[static_cast<size_t>(i)].pedacos_) q.numeroTexto = 0;
    }
  }
}

const PedacosTexto& CacheTags::DoTexto(std::u16string_view texto, TipoDivisao tipo) {
  MapaTextos& mapa = textos_[static_cast<size_t>(tipo)];
  auto it = mapa.find(texto);
  if (it == mapa.end()) {
    it = mapa.try_emplace(Texto(texto)).first;
    it->second.Preparar(texto, tipo);
  }
  return it->second;
}

std::pair<const PedacosTexto*, const PedacosTexto*> CacheTags::DoisTextos(std::u16string_view a,
                                                                          std::u16string_view b,
                                                                          TipoDivisao tipo) {
  // Emptied before either lookup, so the first answer cannot be freed by the second.
  MapaTextos& mapa = textos_[static_cast<size_t>(tipo)];
  if (mapa.size() + 2 > kLimiteTextos) mapa.clear();
  const PedacosTexto* pa = &DoTexto(a, tipo);
  const PedacosTexto* pb = &DoTexto(b, tipo);
  return {pa, pb};
}

const FiltroPreparado* CacheTags::ProcurarFiltro(std::u16string_view filtro) {
  const FiltroPreparado& ultimo = filtros_[ultimoFiltro_];
  if (ultimo.usado && Iguais(ultimo.filtro, filtro)) return &ultimo;
  for (size_t i = 0; i < kFiltros; ++i) {
    if (filtros_[i].usado && Iguais(filtros_[i].filtro, filtro)) {
      ultimoFiltro_ = i;
      return &filtros_[i];
    }
  }
  return nullptr;
}

FiltroPreparado& CacheTags::NovoFiltro() {
  ultimoFiltro_ = proximoFiltro_;
  proximoFiltro_ = (proximoFiltro_ + 1) % kFiltros;
  FiltroPreparado& f = filtros_[ultimoFiltro_];
  f.usado = false;
  return f;
}

}  // namespace lumavox
