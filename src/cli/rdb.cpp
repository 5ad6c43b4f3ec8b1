// lumavox-cli rdb decode FILE / rdb encode [FILE|-]: the line encoding of the station files.
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>

#include "base/arquivos.h"
#include "base/erro.h"
#include "cli/subcomandos.h"
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

}  // namespace

void RegistrarRdb(CLI::App& app, Contexto& ctx) {
  CLI::App* rdb = app.add_subcommand("rdb", "Codifica ou decodifica arquivos .rdb (uma linha por linha)");
  rdb->require_subcommand(1);

  auto arquivoDecodificar = std::make_shared<std::string>();
  auto arquivoCodificar = std::make_shared<std::string>();
  CLI::App* dec = rdb->add_subcommand("decode", "Mostra o texto de cada linha codificada");
  dec->add_option("FILE", *arquivoDecodificar, "arquivo .rdb")->required();
  dec->callback([&ctx, arquivoDecodificar] { Decodificar(ctx, *arquivoDecodificar); });

  CLI::App* enc = rdb->add_subcommand("encode", "Codifica cada linha de texto (UTF-8) de FILE ou da entrada");
  enc->add_option("FILE", *arquivoCodificar, "arquivo de texto, ou - para a entrada padrão");
  enc->callback([&ctx, arquivoCodificar] { Codificar(ctx, *arquivoCodificar); });
}

}  // namespace lumavox::cli
