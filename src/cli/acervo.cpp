// lumavox-cli acervo: the start-up load of an application folder, printed as text or JSON.
#include <nlohmann/json.hpp>

#include <memory>

#include "base/ambiente.h"
#include "base/numeros.h"
#include "cli/subcomandos.h"
#include "engine/instalacao.h"
#include "engine/motor.h"

namespace lumavox::cli {

namespace {

struct OpcoesAcervo {
  std::string dir;
  std::string agora;
  bool json = false;
};

nlohmann::ordered_json MusicaJson(const Acervo& a, long slot) {
  nlohmann::ordered_json tags = nlohmann::ordered_json::object();
  for (long campo = 0; campo < kCampoVibe; ++campo) {
    // Field 3 has no name; it is listed by its number so nothing read is hidden.
    std::string nome = campo == 3 ? "3" : ParaUtf8(kNomesCampos[static_cast<size_t>(campo)]);
    tags[nome] = ParaUtf8(a.AcervoTags(slot, campo));
  }
  tags["Vibe"] = a.AcervoVibe[slot];
  return {{"slot", slot}, {"codigo", a.AcervoCodigos[slot]}, {"tags", tags}};
}

void ImprimirTexto(std::ostream& out, const Motor& motor) {
  const Estado& e = motor.E();
  const Acervo& a = e.acervo();
  out << "Pasta: " << motor.CaminhoApp().string() << "\n";
  out << "Playlist em vigor: " << e.playlists.PlaylistAtual << " (" << a.PastaDados.string() << ")\n";
  out << "TotalMusicas: " << a.TotalMusicas << "\n";
  out << "Regras: " << e.catalogo.QuantidadeRegras[0] << " / " << e.catalogo.QuantidadeRegras[1]
      << " / " << e.catalogo.QuantidadeRegras[2] << " (conjuntos 0 / 1 / 2)\n";
  for (long s = 0; s < a.TotalMusicas; ++s) {
    out << FormatarZeros(a.AcervoCodigos[s], 7);
    for (long campo = 0; campo <= kCampoVibe; ++campo) {
      const std::u16string_view valor = a.AcervoTags(s, campo);
      if (valor.empty()) continue;
      std::string nome = campo == 3 ? "3" : ParaUtf8(kNomesCampos[static_cast<size_t>(campo)]);
      out << "  " << nome << "=" << ParaUtf8(valor);
    }
    out << "\n";
  }
}

void ExecutarAcervo(Contexto& ctx, const OpcoesAcervo& op) {
  const fs::path pasta = ResolverPastaApp(op.dir);
  if (!PastaAppValida(ctx, pasta)) return;

  std::unique_ptr<Ambiente> ambiente;
  if (op.agora.empty()) {
    ambiente = std::make_unique<AmbienteReal>();
  } else {
    auto agora = ConverterDataHora(DeUtf8(op.agora));
    if (!agora) {
      ctx.erros << "lumavox-cli: --now inválido: " << op.agora << "\n";
      ctx.codigoSaida = 2;
      return;
    }
    ambiente = std::make_unique<AmbienteFixo>(*agora);
  }
  auto motor = std::make_unique<Motor>(pasta, *ambiente);
  motor->Iniciar();
  // A load that stopped early is reported, and what it reached is still shown.
  if (motor->UltimoErro()) ctx.erros << "aviso: " << *motor->UltimoErro() << "\n";

  if (!op.json) {
    ImprimirTexto(ctx.saida, *motor);
    return;
  }
  const Estado& e = motor->E();
  nlohmann::ordered_json doc;
  doc["total_musicas"] = e.acervo().TotalMusicas;
  doc["playlist_atual"] = e.playlists.PlaylistAtual;
  doc["pasta_dados"] = e.acervo().PastaDados.string();
  doc["quantidade_regras"] = e.catalogo.QuantidadeRegras;
  doc["erro"] = motor->UltimoErro() ? nlohmann::ordered_json(*motor->UltimoErro()) : nlohmann::ordered_json();
  nlohmann::ordered_json musicas = nlohmann::ordered_json::array();
  for (long s = 0; s < e.acervo().TotalMusicas; ++s) musicas.push_back(MusicaJson(e.acervo(), s));
  doc["musicas"] = std::move(musicas);
  ctx.saida << doc.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << "\n";
}

}  // namespace

bool PastaAppValida(Contexto& ctx, const fs::path& pasta) {
  std::error_code ec;
  if (fs::is_directory(pasta, ec)) return true;
  ctx.erros << "lumavox-cli: pasta da aplicação não existe: " << pasta.string() << "\n";
  ctx.codigoSaida = 2;
  return false;
}

void RegistrarAcervo(CLI::App& app, Contexto& ctx) {
  auto op = std::make_shared<OpcoesAcervo>();
  CLI::App* cmd = app.add_subcommand(
      "acervo", "Carrega a pasta da aplicação como na partida e mostra o acervo carregado");
  cmd->add_option("--dir", op->dir, "pasta da aplicação (senão LUMAVOX_DIR, senão a do executável)");
  cmd->add_option("--now", op->agora, "momento presente fixo, \"YYYY-MM-DD HH:MM:SS\"");
  cmd->add_flag("--json", op->json, "saída em JSON");
  cmd->callback([&ctx, op] { ExecutarAcervo(ctx, *op); });
}

}  // namespace lumavox::cli
