#include "cli/simulacao.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace lumavox::cli {

const std::vector<double> kFaixasMinutos{0,   15,  30,  45,  60,  90,   120,
                                         180, 240, 360, 480, 720, 1440, 2880};

namespace {

// Every play against the nearest earlier play whose value matches, where `iguais[v]` lists the
// values (distinct texts by number) that count as the same as v: the last play of each is
// enough, so a month costs one pass instead of a scan back from every play.
// Each gap is named by the later play's text (`nome`).
Espacamento Espacar(const std::vector<TocadaSimulada>& tocadas, const std::vector<long>& valores,
                    const std::vector<std::vector<long>>& iguais, const Texto TocadaSimulada::*nome,
                    Intervalo& intervalo) {
  Espacamento r;
  r.histograma.assign(kFaixasMinutos.size(), 0);
  std::vector<long> ultima(iguais.size(), -1);
  std::vector<double> musicas, minutos;
  std::unordered_map<long, Espacamento::Menor> porQuem;
  for (size_t i = 0; i < tocadas.size(); ++i) {
    const long v = valores[i];
    if (v < 0) continue;
    long j = -1;
    for (long outro : iguais[static_cast<size_t>(v)])
      j = std::max(j, ultima[static_cast<size_t>(outro)]);
    ultima[static_cast<size_t>(v)] = static_cast<long>(i);
    if (j < 0) continue;
    const auto anterior = static_cast<size_t>(j);
    const double emMusicas = static_cast<double>(i - anterior);
    const double emMinutos =
        static_cast<double>(tocadas[i].momento.segundos - tocadas[anterior].momento.segundos) / 60;
    musicas.push_back(emMusicas);
    minutos.push_back(emMinutos);
    const auto faixa = std::upper_bound(kFaixasMinutos.begin(), kFaixasMinutos.end(), emMinutos);
    ++r.histograma[static_cast<size_t>(
        std::max<std::ptrdiff_t>(0, faixa - kFaixasMinutos.begin() - 1))];
    const Texto& quem = tocadas[i].*nome;
    const Intervalo::Caso caso{0, quem, tocadas[anterior].momento, tocadas[i].momento};
    if (!intervalo.musicas || emMusicas < intervalo.musicas->valor) {
      intervalo.musicas = caso;
      intervalo.musicas->valor = emMusicas;
    }
    if (!intervalo.minutos || emMinutos < intervalo.minutos->valor) {
      intervalo.minutos = caso;
      intervalo.minutos->valor = emMinutos;
    }
    auto [it, novo] = porQuem.try_emplace(v, Espacamento::Menor{quem, 0, emMusicas, emMinutos});
    ++it->second.intervalos;
    it->second.musicas = std::min(it->second.musicas, emMusicas);
    it->second.minutos = std::min(it->second.minutos, emMinutos);
  }
  r.intervalos = static_cast<long>(musicas.size());
  auto Resumir = [](std::vector<double>& v) -> std::optional<Espacamento::Resumo> {
    if (v.empty()) return std::nullopt;
    std::sort(v.begin(), v.end());
    return Espacamento::Resumo{v.front(), Percentil(v, 5), Percentil(v, 25), Percentil(v, 50)};
  };
  r.musicas = Resumir(musicas);
  r.minutos = Resumir(minutos);
  for (auto& [v, menor] : porQuem) r.menores.push_back(std::move(menor));
  std::sort(r.menores.begin(), r.menores.end(), [](const auto& a, const auto& b) {
    return std::tie(a.minutos, a.musicas, a.quem) < std::tie(b.minutos, b.musicas, b.quem);
  });
  if (r.menores.size() > 10) r.menores.resize(10);
  return r;
}

// Numbers each distinct key (an empty one gets -1, as a play without the tag shares nothing).
template <typename Chave>
std::vector<long> Numerar(const std::vector<TocadaSimulada>& tocadas, Chave chave,
                          std::vector<Texto>& chaves) {
  std::unordered_map<Texto, long> numeros;
  std::vector<long> valores;
  for (const TocadaSimulada& t : tocadas) {
    Texto k = chave(t);
    if (k.empty()) {
      valores.push_back(-1);
      continue;
    }
    auto [it, novo] = numeros.try_emplace(k, static_cast<long>(chaves.size()));
    if (novo) chaves.push_back(std::move(k));
    valores.push_back(it->second);
  }
  return valores;
}

}  // namespace

double Percentil(const std::vector<double>& ordenados, double p) {
  if (ordenados.empty()) return 0;
  const double posicao = std::ceil(p / 100 * static_cast<double>(ordenados.size()));
  const auto indice =
      static_cast<size_t>(std::clamp(posicao, 1.0, static_cast<double>(ordenados.size())));
  return ordenados[indice - 1];
}

Figuras CalcularFiguras(const Simulacao& s, const MesmoArtista& mesmoArtista, size_t quantasMaisTocadas) {
  Figuras f;
  for (DataHora h = s.inicio; h < s.fim; h = SomarSegundos(h, 3600)) f.porHora.emplace_back(h, 0);
  for (const TocadaSimulada& t : s.tocadas) {
    const int64_t hora = (t.momento.segundos - s.inicio.segundos) / 3600;
    if (hora >= 0 && hora < static_cast<int64_t>(f.porHora.size())) ++f.porHora[static_cast<size_t>(hora)].second;
    if (t.avancada) ++f.avancadas;
    if (t.restantes == 1) ++f.unicaRestante;
  }

  // Artists compare by pieces, as the engine does ("Ana feat Bia" shares Ana): each pair of
  // distinct texts is asked once, later play first, as a month repeats the same few hundred.
  std::vector<Texto> artistas, titulos;
  const auto numeroArtista = Numerar(
      s.tocadas, [](const TocadaSimulada& t) { return t.artista; }, artistas);
  const auto numeroTitulo = Numerar(
      s.tocadas, [](const TocadaSimulada& t) { return Maiusculas(t.titulo); }, titulos);
  std::vector<std::vector<long>> iguaisArtista(artistas.size()), iguaisTitulo(titulos.size());
  for (size_t a = 0; a < artistas.size(); ++a)
    for (size_t b = 0; b < artistas.size(); ++b)
      if (a == b || mesmoArtista(artistas[a], artistas[b]))
        iguaisArtista[a].push_back(static_cast<long>(b));
  for (size_t t = 0; t < titulos.size(); ++t) iguaisTitulo[t] = {static_cast<long>(t)};
  f.espacoArtista =
      Espacar(s.tocadas, numeroArtista, iguaisArtista, &TocadaSimulada::artista, f.artista);
  f.espacoTitulo =
      Espacar(s.tocadas, numeroTitulo, iguaisTitulo, &TocadaSimulada::titulo, f.titulo);

  std::map<int32_t, size_t> vezes;
  std::map<int32_t, const TocadaSimulada*> primeira;
  for (const MusicaDoAcervo& m : s.acervo) vezes.emplace(m.codigo, 0);
  for (const TocadaSimulada& t : s.tocadas) {
    ++vezes[t.codigo];
    primeira.emplace(t.codigo, &t);
  }
  for (const auto& [codigo, n] : vezes) {
    if (f.musicasPorVezes.size() <= n) f.musicasPorVezes.resize(n + 1, 0);
    ++f.musicasPorVezes[n];
    if (n > 0)
      f.maisTocadas.push_back(
          {codigo, primeira[codigo]->artista, primeira[codigo]->titulo, static_cast<long>(n)});
  }
  for (const MusicaDoAcervo& m : s.acervo)
    if (vezes[m.codigo] == 0) f.nuncaTocadas.push_back(m);
  // Codes are unique, and a collection usually lists them in order already: moving thousands of
  // texts around for nothing is then spared.
  auto PorCodigo = [](const MusicaDoAcervo& a, const MusicaDoAcervo& b) { return a.codigo < b.codigo; };
  if (!std::is_sorted(f.nuncaTocadas.begin(), f.nuncaTocadas.end(), PorCodigo))
    std::sort(f.nuncaTocadas.begin(), f.nuncaTocadas.end(), PorCodigo);
  std::stable_sort(f.maisTocadas.begin(), f.maisTocadas.end(),
                   [](const auto& a, const auto& b) { return a.vezes > b.vezes; });
  if (f.maisTocadas.size() > quantasMaisTocadas) f.maisTocadas.resize(quantasMaisTocadas);

  // Why the rules kept choosing them: what their selections looked like.
  for (Figuras::MaisTocada& m : f.maisTocadas) {
    std::vector<double> restantes;
    std::map<ChaveRegra, long> negadas;
    for (const TocadaSimulada& t : s.tocadas) {
      if (t.codigo != m.codigo) continue;
      if (t.restantes == 1) ++m.unicaRestante;
      if (t.restantes >= 0) restantes.push_back(t.restantes);
      for (const ChaveRegra& r : t.negadas) ++negadas[r];
    }
    std::sort(restantes.begin(), restantes.end());
    if (!restantes.empty()) m.restantesMediana = static_cast<int>(Percentil(restantes, 50));
    m.negadas.assign(negadas.begin(), negadas.end());
    std::stable_sort(m.negadas.begin(), m.negadas.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
  }
  return f;
}

}  // namespace lumavox::cli
