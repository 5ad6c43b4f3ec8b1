// lumavox-cli rdb decode FILE / rdb encode [FILE|-]: the line encoding of the station files;
// rdb tabela FILE: checks a schedule table file and shows what it holds.
#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "base/arquivos.h"
#include "base/erro.h"
#include "cli/subcomandos.h"
#include "stores/agenda.h"
#include "stores/codec.h"

namespace lumavox::cli {

namespace {

void Decodificar(Contexto& ctx, const std::string& arquivo) {
  std::vector<Texto> linhas;
  try {
    linhas = LerLinhas(arquivo);
  } catch (const ErroExecucao& e) {
    ctx.erros << "lumavox-cli: " << e.what() << "\n";
    ctx.codigoSaida = 1;
    return;
  }
  for (size_t i = 0; i < linhas.size(); ++i) {
    try {
      ctx.saida << ParaUtf8(DecodificarLinha(linhas[i])) << "\n";
    } catch (const ErroExecucao& e) {
      ctx.erros << "lumavox-cli: linha " << i + 1 << ": " << e.what() << "\n";
      ctx.codigoSaida = 1;
      return;
    }
  }
}

void Codificar(Contexto& ctx, const std::string& arquivo) {
  std::string bytes;
  if (arquivo.empty() || arquivo == "-") {
    bytes.assign(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
  } else {
    try {
      bytes = LerBytes(arquivo);
    } catch (const ErroExecucao& e) {
      ctx.erros << "lumavox-cli: " << e.what() << "\n";
      ctx.codigoSaida = 1;
      return;
    }
  }
  for (const Texto& linha : DividirLinhas(DecodificarBytes(bytes)))
    ctx.saida << ParaUtf8(CodificarLinha(linha)) << "\n";
}

// "0-14 (00:00-00:59)" or "3 (00:12-00:15)": the slots and the times of day they cover in a table by time.
std::string Faixa(long de, long ate) {
  char horas[32];
  const long fim = ate * 4 + 3;
  std::snprintf(horas, sizeof horas, " (%02ld:%02ld-%02ld:%02ld)", de * 4 / 60, de * 4 % 60, fim / 60,
                fim % 60);
  return std::to_string(de) + (de == ate ? "" : "-" + std::to_string(ate)) + horas;
}

// Reads the file as the engine does and prints the table number and each run of slots that
// share the same filters; a bad line is reported after what was read before it.
void MostrarTabela(Contexto& ctx, const std::string& arquivo) {
  auto agenda = std::make_unique<TabelasAgenda>();
  agenda->Limpar();
  std::string erro;
  try {
    CarregarTabelaAgenda(ArquivosReais(), *agenda, 0, arquivo);
  } catch (const ErroExecucao& e) {
    erro = e.what();
  }
  auto Filtros = [&](long slot) {
    std::vector<Texto> f;
    for (long k = 0; k < kFiltrosAgenda; ++k)
      if (const Texto& t = agenda->TabelasGrade(0, slot, k); !t.empty()) f.push_back(t);
    return f;
  };
  ctx.saida << "tabela " << agenda->TabelasNumero[0] << "\n";
  for (long de = 0; de < kSlotsAgenda;) {
    const std::vector<Texto> filtros = Filtros(de);
    long ate = de;
    while (ate + 1 < kSlotsAgenda && Filtros(ate + 1) == filtros) ++ate;
    if (!filtros.empty()) {
      ctx.saida << Faixa(de, ate) << "\n";
      for (const Texto& f : filtros) ctx.saida << "  " << ParaUtf8(f) << "\n";
    }
    de = ate + 1;
  }
  if (!erro.empty()) {
    ctx.erros << "lumavox-cli: " << erro << "\n";
    ctx.codigoSaida = 1;
  }
}

}  // namespace

void RegistrarRdb(CLI::App& app, Contexto& ctx) {
  CLI::App* rdb = app.add_subcommand("rdb", "Codifica ou decodifica arquivos .rdb (uma linha por linha) e confere tabelas de agenda");
  rdb->require_subcommand(1);

  auto arquivoDecodificar = std::make_shared<std::string>();
  auto arquivoCodificar = std::make_shared<std::string>();
  CLI::App* dec = rdb->add_subcommand("decode", "Mostra o texto de cada linha codificada");
  dec->add_option("FILE", *arquivoDecodificar, "arquivo .rdb")->required();
  dec->callback([&ctx, arquivoDecodificar] { Decodificar(ctx, *arquivoDecodificar); });

  CLI::App* enc = rdb->add_subcommand("encode", "Codifica cada linha de texto (UTF-8) de FILE ou da entrada");
  enc->add_option("FILE", *arquivoCodificar, "arquivo de texto, ou - para a entrada padrão");
  enc->callback([&ctx, arquivoCodificar] { Codificar(ctx, *arquivoCodificar); });

  auto arquivoTabela = std::make_shared<std::string>();
  CLI::App* tab = rdb->add_subcommand("tabela", "Confere uma tabela de agenda (lxtb0..5.rdb) e mostra o que ela contém");
  tab->add_option("FILE", *arquivoTabela, "arquivo da tabela")->required();
  tab->callback([&ctx, arquivoTabela] { MostrarTabela(ctx, *arquivoTabela); });
}

}  // namespace lumavox::cli
