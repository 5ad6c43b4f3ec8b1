// lumavox-cli regras exportar/importar/conferir: the three rules files as editable text, and a
// check of a rule set before it goes on air.
#include <iostream>
#include <iterator>
#include <memory>

#include "base/arquivos.h"
#include "cli/regras_texto.h"
#include "cli/subcomandos.h"
#include "engine/conferencia.h"
#include "engine/instalacao.h"

namespace lumavox::cli {

namespace {

struct OpcoesRegras {
  std::string dir;
  int conjunto = -1;
  std::string arquivo;
};

fs::path ArquivoDoConjunto(const fs::path& pasta, int conjunto) {
  return pasta / ("lxie" + std::to_string(conjunto) + ".rdb");
}

std::vector<int> Conjuntos(int escolhido) {
  if (escolhido >= 0) return {escolhido};
  return {0, 1, 2};
}

void Falhar(Contexto& ctx, const std::string& mensagem, int codigo = 1) {
  ctx.erros << "lumavox-cli: " << mensagem << "\n";
  ctx.codigoSaida = codigo;
}

void Exportar(Contexto& ctx, const OpcoesRegras& op) {
  const fs::path pasta = ResolverPastaApp(op.dir);
  if (!PastaAppValida(ctx, pasta)) return;
  std::string texto = CabecalhoToml();
  for (int n : Conjuntos(op.conjunto)) {
    ConjuntoLido c;
    try {
      c = LerArquivoRegras(ArquivoDoConjunto(pasta, n), n);
    } catch (const std::exception& e) {
      return Falhar(ctx, e.what());
    }
    const std::string parte = ConjuntoParaToml(c);
    // The text must write the same file again; say so when it cannot (a file in Windows-1252
    // is written back in UTF-8).
    const std::string original = LerBytes(ArquivoDoConjunto(pasta, n));
    const auto volta = LerTomlRegras(parte, "conjunto");
    if (volta.size() != 1 || BytesDoConjunto(volta[0]) != original)
      ctx.erros << "aviso: lxie" << n << ".rdb não volta idêntico deste texto (codificação fora do padrão)\n";
    texto += parte;
  }
  ctx.saida << texto;
}

std::vector<ConjuntoLido> LerTexto(const std::string& arquivo) {
  std::string texto;
  if (arquivo == "-") {
    texto.assign(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
  } else {
    texto = LerBytes(arquivo);
  }
  return LerTomlRegras(texto, arquivo);
}

void Importar(Contexto& ctx, const OpcoesRegras& op) {
  const fs::path pasta = ResolverPastaApp(op.dir);
  if (!PastaAppValida(ctx, pasta)) return;
  std::vector<ConjuntoLido> conjuntos;
  try {
    conjuntos = LerTexto(op.arquivo);
  } catch (const std::exception& e) {
    return Falhar(ctx, e.what());
  }
  if (conjuntos.empty()) return Falhar(ctx, op.arquivo + ": nenhum conjunto de regras ([conjunto0], [conjunto1], [conjunto2])");
  // Every set was read before the first file is replaced, so a bad text changes nothing.
  for (const ConjuntoLido& c : conjuntos) {
    try {
      GravarArquivoRegras(ArquivosReais(), pasta, c);
    } catch (const std::exception& e) {
      return Falhar(ctx, e.what());
    }
    ctx.saida << "lxie" << c.conjunto << ".rdb: " << c.regras.size() << " regras gravadas\n";
  }
}

void Conferir(Contexto& ctx, const OpcoesRegras& op) {
  std::vector<ConjuntoLido> conjuntos;
  try {
    if (!op.arquivo.empty()) {
      conjuntos = LerTexto(op.arquivo);
    } else {
      const fs::path pasta = ResolverPastaApp(op.dir);
      if (!PastaAppValida(ctx, pasta)) return;
      for (int n : Conjuntos(op.conjunto)) conjuntos.push_back(LerArquivoRegras(ArquivoDoConjunto(pasta, n), n));
    }
  } catch (const std::exception& e) {
    return Falhar(ctx, e.what());
  }
  size_t regras = 0, graves = 0, avisos = 0;
  for (const ConjuntoLido& c : conjuntos) {
    if (op.conjunto >= 0 && c.conjunto != op.conjunto) continue;
    regras += c.regras.size();
    for (const Problema& p : ConferirConjunto(c)) {
      ctx.saida << (p.grave ? "erro" : "aviso") << ": conjunto " << p.conjunto;
      if (p.numero > 0) ctx.saida << ", regra " << p.numero << " (id \"" << ParaUtf8(p.id) << "\")";
      ctx.saida << ": " << p.mensagem << "\n";
      ++(p.grave ? graves : avisos);
    }
  }
  ctx.saida << regras << " regras conferidas: " << graves << " erros, " << avisos << " avisos\n";
  if (graves > 0) ctx.codigoSaida = 1;
}

}  // namespace

void RegistrarRegras(CLI::App& app, Contexto& ctx) {
  CLI::App* regras = app.add_subcommand("regras", "As regras da estação (lxie0/1/2.rdb) como texto TOML, e a conferência delas");
  regras->require_subcommand(1);
  const std::string ajudaDir = "pasta dos arquivos de regras: a da aplicação ou a de uma playlist (senão LUMAVOX_DIR)";

  auto exp = std::make_shared<OpcoesRegras>();
  CLI::App* cmdExp = regras->add_subcommand("exportar", "Escreve as regras em TOML na saída padrão");
  cmdExp->add_option("--dir", exp->dir, ajudaDir);
  cmdExp->add_option("--set", exp->conjunto, "só este conjunto (0, 1 ou 2)")->check(CLI::Range(0, 2));
  cmdExp->callback([&ctx, exp] { Exportar(ctx, *exp); });

  auto imp = std::make_shared<OpcoesRegras>();
  CLI::App* cmdImp = regras->add_subcommand(
      "importar", "Grava os arquivos de regras dos conjuntos presentes no TOML; os outros ficam como estão");
  cmdImp->add_option("FILE", imp->arquivo, "arquivo TOML, ou - para a entrada padrão")->required();
  cmdImp->add_option("--dir", imp->dir, ajudaDir);
  cmdImp->callback([&ctx, imp] { Importar(ctx, *imp); });

  auto conf = std::make_shared<OpcoesRegras>();
  CLI::App* cmdConf = regras->add_subcommand(
      "conferir", "Aponta ids desconhecidos, datas e horas inválidas, filtros sem campo e valores *a-b ruins; "
                  "sai com 1 quando acha erros");
  cmdConf->add_option("FILE", conf->arquivo, "arquivo TOML (senão os arquivos de regras de --dir)");
  cmdConf->add_option("--dir", conf->dir, ajudaDir);
  cmdConf->add_option("--set", conf->conjunto, "só este conjunto (0, 1 ou 2)")->check(CLI::Range(0, 2));
  cmdConf->callback([&ctx, conf] { Conferir(ctx, *conf); });
}

}  // namespace lumavox::cli
