#include "cli/simulacao.h"

#include <algorithm>
#include <unordered_map>

namespace lumavox::cli {

namespace {

// Nearest earlier play sharing the value, for every play: the smallest of those distances is
// the smallest over all pairs, as air times only grow.
template <typename Igual>
Intervalo MenorIntervalo(const std::vector<TocadaSimulada>& tocadas, const std::vector<const Texto*>& valores,
                         Igual igual) {
  Intervalo r;
  for (size_t i = 1; i < tocadas.size(); ++i) {
    if (valores[i]->empty()) continue;
    for (size_t j = i; j-- > 0;) {
      if (valores[j]->empty() || !igual(i, j)) continue;
      const double musicas = static_cast<double>(i - j);
      const double minutos = static_cast<double>(tocadas[i].momento.segundos - tocadas[j].momento.segundos) / 60;
      const Intervalo::Caso caso{0, *valores[i], tocadas[j].momento, tocadas[i].momento};
      if (!r.musicas || musicas < r.musicas->valor) {
        r.musicas = caso;
        r.musicas->valor = musicas;
      }
      if (!r.minutos || minutos < r.minutos->valor) {
        r.minutos = caso;
        r.minutos->valor = minutos;
      }
      break;
    }
  }
  return r;
}

}  // namespace

Figuras CalcularFiguras(const Simulacao& s, const MesmoArtista& mesmoArtista, size_t quantasMaisTocadas) {
  Figuras f;
  for (DataHora h = s.inicio; h < s.fim; h = SomarSegundos(h, 3600)) f.porHora.emplace_back(h, 0);
  for (const TocadaSimulada& t : s.tocadas) {
    const int64_t hora = (t.momento.segundos - s.inicio.segundos) / 3600;
    if (hora >= 0 && hora < static_cast<int64_t>(f.porHora.size())) ++f.porHora[static_cast<size_t>(hora)].second;
    if (t.avancada) ++f.avancadas;
  }

  // Artists compare by pieces, as the engine does ("Ana feat Bia" shares Ana); the answer for
  // each pair of distinct texts is kept, as a day repeats the same few hundred names.
  std::vector<const Texto*> artistas, titulos;
  std::vector<Texto> titulosMaiusculos;
  std::unordered_map<Texto, size_t> idArtista;
  std::vector<size_t> ids;
  for (const TocadaSimulada& t : s.tocadas) {
    artistas.push_back(&t.artista);
    titulos.push_back(&t.titulo);
    titulosMaiusculos.push_back(Maiusculas(t.titulo));
    ids.push_back(idArtista.emplace(t.artista, idArtista.size()).first->second);
  }
  std::unordered_map<uint64_t, bool> comparados;
  f.artista = MenorIntervalo(s.tocadas, artistas, [&](size_t i, size_t j) {
    if (ids[i] == ids[j]) return true;
    const uint64_t par = (static_cast<uint64_t>(ids[i]) << 32) | ids[j];
    auto it = comparados.find(par);
    if (it == comparados.end()) it = comparados.emplace(par, mesmoArtista(*artistas[i], *artistas[j])).first;
    return it->second;
  });
  f.titulo = MenorIntervalo(s.tocadas, titulos,
                            [&](size_t i, size_t j) { return titulosMaiusculos[i] == titulosMaiusculos[j]; });

  std::map<int32_t, size_t> vezes;
  std::map<int32_t, const TocadaSimulada*> primeira;
  for (const TocadaSimulada& t : s.tocadas) {
    ++vezes[t.codigo];
    primeira.emplace(t.codigo, &t);
  }
  for (const auto& [codigo, n] : vezes)
    f.maisTocadas.push_back({codigo, primeira[codigo]->artista, primeira[codigo]->titulo, static_cast<long>(n)});
  std::stable_sort(f.maisTocadas.begin(), f.maisTocadas.end(),
                   [](const auto& a, const auto& b) { return a.vezes > b.vezes; });
  if (f.maisTocadas.size() > quantasMaisTocadas) f.maisTocadas.resize(quantasMaisTocadas);
  return f;
}

}  // namespace lumavox::cli
