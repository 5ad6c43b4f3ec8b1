// What a simulated stretch of air time recorded (each play, each rule outcome, the level over
// time) and the figures drawn from it: plays per hour, the shortest repeats of an artist and of
// a title, the most played songs. Showing them is simulacao_json's and simulacao_html's job.
#pragma once

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

namespace lumavox::cli {

struct TocadaSimulada {
  DataHora momento;  // when it went on air
  int32_t codigo = 0;
  int nivel = 0;      // the rhythm level at that moment
  double vibe = 0;
  Texto artista, titulo;
  bool avancada = false;  // the listener skipped it halfway
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
  std::map<std::tuple<int, int, Texto>, ContagemRegra> regras;
  std::vector<std::string> avisos;
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

struct Figuras {
  std::vector<std::pair<DataHora, long>> porHora;  // plays that started in each hour
  Intervalo artista, titulo;
  struct MaisTocada {
    int32_t codigo;
    Texto artista, titulo;
    long vezes;
  };
  std::vector<MaisTocada> maisTocadas;
  long avancadas = 0;
};

// Two artist tags name the same artist (the engine's own comparison, by pieces).
using MesmoArtista = std::function<bool(const Texto&, const Texto&)>;

// The most played list keeps `quantasMaisTocadas` songs, ties in code order.
Figuras CalcularFiguras(const Simulacao& s, const MesmoArtista& mesmoArtista, size_t quantasMaisTocadas = 10);

}  // namespace lumavox::cli
