// The rules-file loader over an arbitrary lxie0.rdb, then every active rule it loaded applied
// to a demo station with a played history: a rule may remove songs, be refused or end in an
// error, but it never crashes, never loops for ever and never leaves the selection without a
// candidate.
#include <memory>

#include "cli/demo.h"
#include "engine/despacho.h"
#include "engine/motor.h"
#include "fuzz_apoio.h"
#include "stores/historico_banco.h"

using namespace lumavox;
namespace fs = std::filesystem;

namespace {

struct Bancada {
  fs::path pasta = fuzz::PastaDeTrabalho() / "estacao";
  AmbienteFixo ambiente{MontarDataHora(2026, 11, 22, 10, 0, 0), 7};
  std::unique_ptr<Motor> motor;

  Bancada() {
    cli::GerarEstacaoDemo(pasta, {.musicas = 120, .bytesMre = 1, .playlistNoturna = false});
    motor = std::make_unique<Motor>(pasta, ambiente);
    motor->DefinirOrigemHistorico(std::make_unique<OrigemHistoricoBanco>(pasta));
    motor->Iniciar();
    if (motor->E().acervo().TotalMusicas != 120) fuzz::Falha("estação de demonstração não carregou");
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* dados, size_t tamanho) {
  static Bancada bancada;
  if (tamanho < 2) return 0;
  Estado& e = bancada.motor->E();
  const int16_t nivel = static_cast<int16_t>(dados[0] % 111) - 5;
  const fs::path arquivo = bancada.pasta / "regras-fuzz.rdb";
  fuzz::Gravar(arquivo, fuzz::ArquivoCodificado(dados + 1, tamanho - 1));

  const int conjunto = ConjuntoDoNivel(nivel);
  const int16_t& regras = e.catalogo.QuantidadeRegras[static_cast<size_t>(conjunto)];
  const int16_t antes = regras;
  const bool leu = !fuzz::ErroDe([&] { CarregarArquivoRegras(ArquivosReais(), e.catalogo, conjunto, arquivo); });
  if (!leu && regras != antes) fuzz::Falha("leitura que parou mudou QuantidadeRegras");
  if (!leu) return 0;

  const long total = e.acervo().TotalMusicas;
  Selecao& s = e.selecao;
  for (long i = 0; i < total; ++i) s.MusicaCandidata[i] = true;
  s.MusicasExcluidas = 0;
  s.RegraNumero = 1;
  s.DataHoraReferencia = bancada.ambiente.Agora();
  s.ModoComparacaoArtista = static_cast<int16_t>(dados[0] % 3);
  s.CliqueAtual = (dados[0] & 0x80) ? 1 : 0;
  // A bounded number of rules keeps each input quick.
  for (long r = 0; r < regras && r < 24; ++r, ++s.RegraNumero) {
    if (!e.catalogo.CatalogoRegras(conjunto, r).Ativo) continue;
    if (fuzz::ErroDe([&] { AplicarRegra(e, true, r, nivel); })) fuzz::Falha("AplicarRegra deixou escapar um erro");
    long restantes = 0;
    for (long i = 0; i < total; ++i) restantes += s.MusicaCandidata[i] ? 1 : 0;
    if (restantes == 0) fuzz::Falha("uma regra deixou a seleção sem candidatas");
    if (restantes != total - s.MusicasExcluidas) fuzz::Falha("MusicasExcluidas não confere com as candidatas");
  }
  // Keeps the log from holding every input's entries under one selection.
  e.log.Limpar();
  return 0;
}
