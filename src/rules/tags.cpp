#include "rules/tags.h"

#include <algorithm>
#include <cstdlib>

#include "base/numeros.h"
#include "state/pedacos.h"
#include "stores/acervo.h"

namespace lumavox {

namespace {

struct FiltroDividido {
  std::u16string_view nome;
  std::u16string_view valor;
  bool temDoisPontos = false;
};

// The last colon wins: "Faixa Etária:10:20" has the name "Faixa Etária:10" and the value "20".
FiltroDividido DividirFiltro(std::u16string_view filtro) {
  size_t pos = filtro.rfind(u':');
  if (pos == std::u16string_view::npos) return {};
  return {filtro.substr(0, pos), filtro.substr(pos + 1), true};
}

int16_t IndiceDoNome(std::u16string_view nome) {
  for (size_t i = 0; i < kNomesCampos.size(); ++i) {
    // The lookup asks for "Title" where field 3 would be, so the first test always wins and
    // no filter reaches field 3.
    std::u16string_view candidato = i == 3 ? std::u16string_view(u"Title") : kNomesCampos[i];
    if (nome == candidato) return static_cast<int16_t>(i);
  }
  return kCampoDesconhecido;
}

const FiltroPreparado& PrepararFiltro(Estado& e, std::u16string_view filtro) {
  if (const FiltroPreparado* f = e.cacheTags.ProcurarFiltro(filtro)) return *f;
  FiltroDividido d = DividirFiltro(filtro);
  FiltroPreparado& f = e.cacheTags.NovoFiltro();
  f.filtro.assign(filtro);
  f.aceitaTudo = d.valor == u"Geral*" || filtro.empty();
  f.campo = d.temDoisPontos ? IndiceDoNome(d.nome) : kCampoDesconhecido;
  f.valor.Preparar(f.campo == kCampoDesconhecido ? std::u16string_view() : d.valor,
                   TipoDoCampo(f.campo));
  f.usado = true;
  return f;
}

bool CompararPreparados(const PedacosTexto& a, const PedacosTexto& b, int16_t modo,
                        bool excecaoPop) {
  const bool resultado = modo > 0;
  if (a.Original().empty() && b.Original().empty()) return false;
  if (a.Maiusculo() == b.Maiusculo()) return true;
  // Outside modes 0 and 1 no piece can move the result off its starting value.
  if (modo != 0 && modo != 1) return resultado;
  for (const Pedaco& p : a.Pedacos()) {
    std::u16string_view pedaco = a.Vista(p);
    if (excecaoPop && !p.final && pedaco == u"POP") continue;
    const bool achou = b.ContemPedaco(pedaco, p.numero);
    // Mode 0 can only turn True and mode 1 only False, so the first change is final.
    if (achou && modo == 0) return true;
    if (!achou && modo == 1) return false;
  }
  return resultado;
}

}  // namespace

int16_t IndiceCampo(std::u16string_view filtro) {
  FiltroDividido d = DividirFiltro(filtro);
  return d.temDoisPontos ? IndiceDoNome(d.nome) : kCampoDesconhecido;
}

Texto ValorDoFiltro(std::u16string_view filtro) { return Texto(DividirFiltro(filtro).valor); }

bool TerminaComGeral(std::u16string_view texto) { return texto.ends_with(u"Geral*"); }

bool ConferirTag(Estado& e, std::u16string_view filtro, long slot) {
  return ConferirTag(e, PrepararFiltro(e, filtro), slot);
}

bool ConferirTag(Estado& e, const FiltroPreparado& f, long slot) {
  if (f.aceitaTudo) return true;
  if (f.campo == kCampoDesconhecido) return false;
  const PedacosTexto& tag = e.cacheTags.DoSlot(slot, f.campo, e.acervo().AcervoTags);
  for (const Pedaco& p : tag.Pedacos())
    if (f.valor.ContemPedaco(tag.Vista(p), p.numero)) return true;
  return false;
}

bool ConferirTagArtista(Estado& e, std::u16string_view filtro, long slot) {
  return ConferirTagArtista(e, PrepararFiltro(e, filtro), slot);
}

FiltroPreparado FiltroParaLaco(Estado& e, std::u16string_view filtro) { return PrepararFiltro(e, filtro); }

bool ConferirTagArtista(Estado& e, const FiltroPreparado& f, long slot) {
  if (f.aceitaTudo) return true;
  if (f.campo == kCampoDesconhecido) return false;
  const PedacosTexto& tag = e.cacheTags.DoSlot(slot, f.campo, e.acervo().AcervoTags);
  return CompararPreparados(tag, f.valor, e.selecao.ModoComparacaoArtista, true);
}

bool ConferirPedaco(std::u16string_view pedaco, std::u16string_view lista, int16_t campo) {
  PedacosTexto l;
  l.Preparar(lista, TipoDoCampo(campo));
  return l.ContemPedaco(Maiusculas(pedaco), campo == kCampoVibe ? ValorNumerico(pedaco) : 0.0);
}

bool CompararArtistas(Estado& e, std::u16string_view a, std::u16string_view b, int16_t campo) {
  auto [pa, pb] = e.cacheTags.DoisTextos(a, b, TipoDoCampo(campo));
  return CompararPreparados(*pa, *pb, e.selecao.ModoComparacaoArtista, true);
}

bool CompararArtistasSemExcecao(Estado& e, std::u16string_view a, std::u16string_view b,
                                int16_t campo) {
  auto [pa, pb] = e.cacheTags.DoisTextos(a, b, TipoDoCampo(campo));
  return CompararPreparados(*pa, *pb, e.selecao.ModoComparacaoArtista, false);
}

bool CompararSlotComPreparado(Estado& e, long slot, int16_t campo, const PedacosTexto& valor, bool excecaoPop) {
  const PedacosTexto& p = e.cacheTags.DoSlot(slot, campo, e.acervo().AcervoTags);
  return CompararPreparados(p, valor, e.selecao.ModoComparacaoArtista, excecaoPop);
}

bool CompararArtistasSlots(Estado& e, long slotA, long slotB, int16_t campo) {
  const PedacosTexto& pa = e.cacheTags.DoSlot(slotA, campo, e.acervo().AcervoTags);
  const PedacosTexto& pb = e.cacheTags.DoSlot(slotB, campo, e.acervo().AcervoTags);
  return CompararPreparados(pa, pb, e.selecao.ModoComparacaoArtista, true);
}

bool MesmoValorTag(Estado& e, int16_t campo, long slotA, long slotB) {
  if (slotA >= kUltimoSlot || slotB >= kUltimoSlot || campo == kCampoDesconhecido) return false;
  // Both empty gives False and equal texts give True inside the comparison too.
  return CompararArtistasSlots(e, slotA, slotB, campo);
}

bool ValoresOuvidos::Serve(const Estado& e, int16_t campo) {
  return e.selecao.ModoComparacaoArtista == 0 && campo != kCampoDesconhecido &&
         TipoDoCampo(campo) != TipoDivisao::Vibe;
}

namespace {

void Marcar(std::vector<uint8_t>& marcas, int32_t numero) {
  const auto n = static_cast<size_t>(numero);
  if (n >= marcas.size()) marcas.resize(std::max(2 * marcas.size(), n + 1));
  marcas[n] = 1;
}

bool Marcado(const std::vector<uint8_t>& marcas, int32_t numero) {
  const auto n = static_cast<size_t>(numero);
  return n < marcas.size() && marcas[n];
}

}  // namespace

void ValoresOuvidos::Adicionar(Estado& e, int16_t campo, long slot) {
  if (slot >= kUltimoSlot) return;  // the last slot never shares a value
  if (vazio_) {
    e.cacheTags.ReiniciarNumeracaoSeGrande();
    numeros_ = &e.cacheTags.Numerados(campo, e.acervo().AcervoTags);
    inteiros_.assign(e.cacheTags.LimiteNumeros(), 0);
    pedacos_.assign(e.cacheTags.LimiteNumeros(), 0);
  }
  const auto i = static_cast<size_t>(slot);
  if (numeros_->inteiro[i] == 0) return;  // two empty values never match, and an empty one has no pieces
  vazio_ = false;
  Marcar(inteiros_, numeros_->inteiro[i]);
  // Every piece of the heard song counts, "POP" included: the exception is for the candidate's.
  for (uint32_t k = numeros_->inicio[i]; k < numeros_->inicio[i + 1]; ++k)
    Marcar(pedacos_, std::abs(numeros_->pedacos[k]));
}

bool ValoresOuvidos::Compartilha(Estado& e, int16_t campo, long slot) const {
  (void)e;
  (void)campo;  // the numbers of the field Adicionar was given
  if (slot >= kUltimoSlot || vazio_) return false;
  const auto i = static_cast<size_t>(slot);
  if (numeros_->inteiro[i] == 0) return false;
  if (Marcado(inteiros_, numeros_->inteiro[i])) return true;
  for (uint32_t k = numeros_->inicio[i]; k < numeros_->inicio[i + 1]; ++k) {
    const int32_t numero = numeros_->pedacos[k];
    if (numero > 0 && Marcado(pedacos_, numero)) return true;  // a leading "POP" is skipped
  }
  return false;
}

}  // namespace lumavox
