// What a simulated stretch of air time recorded (each play with the selection that chose it,
// each rule outcome, the level over time) and the figures drawn from it: plays per hour, how
// often each song played, the spacing of artists and titles, the most played songs and why.
// Showing them is simulacao_json's and simulacao_html's job.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/datas.h"
#include "base/texto.h"
#include "engine/conferencia.h"

namespace lumavox::cli {

// A rule as the report names it: its set, its number in the set's file, its id.
using ChaveRegra = std::tuple<int, int, Texto>;

struct TocadaSimulada {
  DataHora momento;  // when it went on air
  int32_t codigo = 0;
  int nivel = 0;      // the rhythm level at that moment
  double vibe = 0;
  Texto artista, titulo;
  bool avancada = false;  // the listener skipped it halfway
  // The selection that chose it: songs left after the rules (-1 when not found in the log)
  // and the rules it refused.
  int restantes = -1;
  std::vector<ChaveRegra> negadas;
};

struct MusicaDoAcervo {
  int32_t codigo = 0;
  Texto artista, titulo;
};

struct ContagemRegra {
  int conjunto = 0;
  int numero = 0;  // position in its rules file, from 1
  Texto id, descricao;
  long aplicada = 0;  // accepted (of which `removeu` removed at least one song)
  long removeu = 0;
  long negada = 0;
  long naoRealizada = 0;
  long erro = 0;
  std::string ultimoErro;
  std::array<long, 24> negadaPorHora{};  // refusals by the hour of day of their selection
};

struct Simulacao {
  std::string estacao;
  DataHora inicio, fim;
  uint32_t semente = 0;
  std::string origemNivel;                    // "--nivel 50", "curva dia.txt", "ritmo.rer"
  std::vector<std::pair<DataHora, int>> niveis;  // the level from each moment on
  int totalMusicas = 0;
  long escolhidas = 0;  // songs the engine chose, voided queue entries included
  std::vector<TocadaSimulada> tocadas;
  std::map<ChaveRegra, ContagemRegra> regras;
  std::vector<MusicaDoAcervo> acervo;  // every song of the collections loaded in the run, once
  std::vector<std::string> avisos;
  std::vector<Constatacao> conferencia;  // the station check of the station's own files
  double segundosDeExecucao = 0;
};

// The smallest distance between two plays sharing a value, in songs aired and in minutes
// between their air times; each with the value and the two moments it was found at.
struct Intervalo {
  struct Caso {
    double valor = 0;
    Texto quem;
    DataHora de, ate;
  };
  std::optional<Caso> musicas, minutos;
};

// The gaps between each play and the nearest earlier play sharing its artist (or title): their
// spread in songs and in minutes, a histogram in minutes and who came back soonest.
struct Espacamento {
  struct Resumo {
    double minimo = 0, p5 = 0, p25 = 0, mediana = 0;
  };
  struct Menor {
    Texto quem;  // the later play's text
    long intervalos = 0;
    double musicas = 0, minutos = 0;  // each the smallest of its gaps
  };
  long intervalos = 0;
  std::optional<Resumo> musicas, minutos;
  std::vector<long> histograma;  // gaps per range of kFaixasMinutos
  std::vector<Menor> menores;    // shortest minimum gap in minutes first
};

// Lower bounds of the histogram's ranges in minutes; the last range has no upper bound.
extern const std::vector<double> kFaixasMinutos;

struct Figuras {
  std::vector<std::pair<DataHora, long>> porHora;  // plays that started in each hour
  Intervalo artista, titulo;
  struct MaisTocada {
    int32_t codigo;
    Texto artista, titulo;
    long vezes;
    long unicaRestante = 0;  // plays whose selection left this song alone
    int restantesMediana = -1;
    std::vector<std::pair<ChaveRegra, long>> negadas{};  // most often refused first
  };
  std::vector<MaisTocada> maisTocadas;
  long avancadas = 0;
  // Songs of the collection by how many times they played: musicasPorVezes[n] songs played n
  // times; the songs never played, in code order.
  std::vector<long> musicasPorVezes;
  std::vector<MusicaDoAcervo> nuncaTocadas;
  long unicaRestante = 0;  // plays chosen with nothing else left
  Espacamento espacoArtista, espacoTitulo;
};

// Two artist tags name the same artist (the engine's own comparison, by pieces).
using MesmoArtista = std::function<bool(const Texto&, const Texto&)>;

// The most played list keeps `quantasMaisTocadas` songs, ties in code order.
Figuras CalcularFiguras(const Simulacao& s, const MesmoArtista& mesmoArtista, size_t quantasMaisTocadas = 10);

// The nearest-rank percentile of sorted values: the smallest value with at least `p` percent
// of them at or below it (the first for 0). 0 for no values.
double Percentil(const std::vector<double>& ordenados, double p);

}  // namespace lumavox::cli
