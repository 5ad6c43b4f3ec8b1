// lumavox-cli importar: builds or refreshes a station's collection from a folder of audio files.
// Each file's tags become a record of lxdb.rdb and the file itself mre/<code>.mre. The codes
// are kept in importados.json in the station folder, keyed by the file's path inside the music
// folder, so a file keeps its code on every later import and a code is never given twice.
#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <set>

#include "base/arquivos.h"
#include "base/erro.h"
#include "base/numeros.h"
#include "cli/progresso.h"
#include "cli/subcomandos.h"
#include "cli/tags_audio.h"
#include "engine/instalacao.h"
#include "stores/acervo.h"
#include "stores/codec.h"

namespace lumavox::cli {

namespace {

constexpr const char* kArquivoMapa = "importados.json";
constexpr size_t kLinhasPorMusica = 33;

struct OpcoesImportar {
  std::string origem, dir;
};

struct Importado {
  int32_t codigo = 0;
  uintmax_t tamanho = 0;
  int64_t modificado = 0;  // seconds since 1970
  bool presente = true;    // found in the music folder at the last import
};

using Mapa = std::map<std::string, Importado>;

// A record of lxdb.rdb as written: its code and its 33 lines without line ends.
struct Registro {
  int32_t codigo = 0;
  std::vector<Texto> linhas;
};

struct AcervoBruto {
  std::vector<Registro> registros;
  bool crlf = true;
  size_t soltas = 0;  // lines of a partial record at the end
};

class ErroImportar : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

Mapa LerMapa(const fs::path& arquivo) {
  Mapa mapa;
  if (!ArquivoExiste(arquivo)) return mapa;
  try {
    const auto doc = nlohmann::json::parse(LerBytes(arquivo));
    for (const auto& [caminho, e] : doc.at("arquivos").items())
      mapa[caminho] = {e.at("codigo").get<int32_t>(), e.at("tamanho").get<uintmax_t>(),
                       e.at("modificado").get<int64_t>(), e.value("presente", true)};
  } catch (const std::exception& e) {
    throw ErroImportar(arquivo.string() + " ilegível (" + e.what() + "); nada foi alterado");
  }
  return mapa;
}

void GravarAtomico(const fs::path& destino, const std::string& bytes) {
  const fs::path temporario = destino.string() + ".novo";
  EscreverBytes(temporario, bytes);
  std::error_code ec;
  fs::rename(temporario, destino, ec);
  if (ec) throw ErroImportar("não foi possível gravar " + destino.string() + ": " + ec.message());
}

void GravarMapa(const fs::path& arquivo, const fs::path& origem, const Mapa& mapa) {
  nlohmann::ordered_json arquivos = nlohmann::ordered_json::object();
  for (const auto& [caminho, e] : mapa)
    arquivos[caminho] = {{"codigo", e.codigo}, {"tamanho", e.tamanho}, {"modificado", e.modificado},
                         {"presente", e.presente}};
  nlohmann::ordered_json doc = {{"formato", 1}, {"pasta_origem", origem.string()}, {"arquivos", std::move(arquivos)}};
  GravarAtomico(arquivo, doc.dump(2) + "\n");
}

AcervoBruto LerAcervoBruto(const fs::path& arquivo) {
  AcervoBruto a;
  if (!ArquivoExiste(arquivo)) return a;
  const std::string bytes = LerBytes(arquivo);
  std::vector<Texto> linhas = DividirLinhas(DecodificarBytes(bytes));
  a.crlf = bytes.find('\n') == std::string::npos || bytes.find("\r\n") != std::string::npos;
  const size_t completas = linhas.size() / kLinhasPorMusica;
  a.soltas = linhas.size() % kLinhasPorMusica;
  for (size_t r = 0; r < completas; ++r) {
    Registro reg;
    reg.linhas.assign(linhas.begin() + static_cast<long>(r * kLinhasPorMusica),
                      linhas.begin() + static_cast<long>((r + 1) * kLinhasPorMusica));
    try {
      reg.codigo = TextoParaInteiro32(DecodificarLinha(reg.linhas[0]));
    } catch (const ErroExecucao& e) {
      throw ErroImportar(arquivo.string() + " linha " + std::to_string(r * kLinhasPorMusica + 1) + ": " + e.what() +
                         "; nada foi alterado");
    }
    a.registros.push_back(std::move(reg));
  }
  return a;
}

Registro MontarRegistro(int32_t codigo, const CamposMusica& campos) {
  Registro r;
  r.codigo = codigo;
  r.linhas.push_back(CodificarLinha(DeUtf8(std::to_string(codigo))));
  for (const Texto& valor : campos) r.linhas.push_back(CodificarLinha(valor));
  return r;
}

int64_t ModificadoEm(const fs::path& arquivo) {
  const auto quando = std::chrono::file_clock::to_sys(fs::last_write_time(arquivo));
  return std::chrono::duration_cast<std::chrono::seconds>(quando.time_since_epoch()).count();
}

// The audio files under `origem`, by their path inside it, in name order so that a first
// import numbers them in a predictable order.
std::vector<std::pair<std::string, fs::path>> ListarAudio(const fs::path& origem) {
  std::vector<std::pair<std::string, fs::path>> lista;
  std::error_code ec;
  for (fs::recursive_directory_iterator it(origem, fs::directory_options::skip_permission_denied, ec), fim;
       !ec && it != fim; it.increment(ec)) {
    if (it->is_regular_file(ec) && ExtensaoDeAudio(it->path()))
      lista.emplace_back(fs::relative(it->path(), origem).generic_string(), it->path());
  }
  if (ec) throw ErroImportar("não foi possível percorrer " + origem.string() + ": " + ec.message());
  std::sort(lista.begin(), lista.end());
  return lista;
}

int32_t MaiorCodigoDasMidias(const fs::path& pastaMre) {
  int32_t maior = 0;
  std::error_code ec;
  for (fs::directory_iterator it(pastaMre, ec), fim; !ec && it != fim; it.increment(ec)) {
    const fs::path& p = it->path();
    if (p.extension() == ".mre")
      if (auto n = ConverterNumero(DeUtf8(p.stem().string())); n && *n < 2147483647)
        maior = std::max(maior, static_cast<int32_t>(*n));
  }
  return maior;
}

void ExecutarImportar(Contexto& ctx, const OpcoesImportar& op) {
  const fs::path origem = op.origem;
  std::error_code ec;
  if (!fs::is_directory(origem, ec)) {
    ctx.erros << "lumavox-cli: pasta de músicas não existe: " << origem.string() << "\n";
    ctx.codigoSaida = 2;
    return;
  }
  const fs::path pasta = ResolverPastaApp(op.dir);
  fs::create_directories(pasta / "mre", ec);
  if (ec) {
    ctx.erros << "lumavox-cli: não foi possível criar " << (pasta / "mre").string() << ": " << ec.message() << "\n";
    ctx.codigoSaida = 1;
    return;
  }

  Mapa mapa = LerMapa(pasta / kArquivoMapa);
  AcervoBruto acervo = LerAcervoBruto(pasta / "lxdb.rdb");
  const auto arquivos = ListarAudio(origem);

  std::set<int32_t> codigosDoMapa;
  int32_t proximo = MaiorCodigoDasMidias(pasta / "mre");
  for (const auto& [caminho, e] : mapa) {
    codigosDoMapa.insert(e.codigo);
    proximo = std::max(proximo, e.codigo);
  }
  std::map<int32_t, const Registro*> existentes;
  size_t alheias = 0;  // records this tool did not write: kept as they are
  for (const Registro& r : acervo.registros) {
    proximo = std::max(proximo, r.codigo);
    existentes.emplace(r.codigo, &r);
    if (!codigosDoMapa.count(r.codigo)) ++alheias;
  }
  ++proximo;

  std::set<std::string> vistos;
  for (const auto& [caminho, p] : arquivos) vistos.insert(caminho);
  size_t naColecao = alheias;
  for (const auto& [caminho, e] : mapa)
    if (vistos.count(caminho) && existentes.count(e.codigo)) ++naColecao;

  std::map<int32_t, Registro> novosRegistros;
  std::vector<int32_t> acrescentados;
  std::vector<std::string> ilegiveis;
  size_t novos = 0, atualizados = 0, iguais = 0;
  Progresso progresso(ctx.erros, "importando");
  for (size_t i = 0; i < arquivos.size(); ++i) {
    progresso.Mostrar(i, arquivos.size());
    const auto& [caminho, arquivo] = arquivos[i];
    auto it = mapa.find(caminho);
    const bool conhecido = it != mapa.end();
    Importado atual;
    try {
      atual.tamanho = fs::file_size(arquivo);
      atual.modificado = ModificadoEm(arquivo);
    } catch (const std::exception& e) {
      ilegiveis.push_back(caminho + " (" + e.what() + ")");
      continue;
    }
    if (conhecido) {
      it->second.presente = true;  // an unreadable known file keeps its old record
      atual.codigo = it->second.codigo;
      const bool igual = it->second.tamanho == atual.tamanho && it->second.modificado == atual.modificado;
      if (igual && existentes.count(atual.codigo) && ArquivoExiste(pasta / "mre" / NomeArquivoMusica(atual.codigo))) {
        ++iguais;
        continue;
      }
    }
    std::string motivo;
    const std::optional<CamposMusica> campos = LerTagsAudio(arquivo, motivo);
    if (!campos) {
      ilegiveis.push_back(caminho + " (" + motivo + ")");
      continue;
    }
    const bool entra = conhecido && existentes.count(atual.codigo);
    if (!entra && naColecao >= static_cast<size_t>(kTotalSlots)) {
      ilegiveis.push_back(caminho + " (acervo cheio: " + std::to_string(kTotalSlots) + " músicas)");
      continue;
    }
    if (!conhecido) atual.codigo = proximo++;
    fs::copy_file(arquivo, pasta / "mre" / NomeArquivoMusica(atual.codigo), fs::copy_options::overwrite_existing, ec);
    if (ec) {
      ilegiveis.push_back(caminho + " (não foi copiado: " + ec.message() + ")");
      continue;
    }
    novosRegistros[atual.codigo] = MontarRegistro(atual.codigo, *campos);
    if (!entra) {
      acrescentados.push_back(atual.codigo);
      ++naColecao;
    }
    ++(conhecido ? atualizados : novos);
    mapa[caminho] = atual;
  }

  // Files gone from the music folder leave the collection; their codes stay reserved.
  size_t removidos = 0;
  for (auto& [caminho, e] : mapa)
    if (!vistos.count(caminho)) {
      if (e.presente && existentes.count(e.codigo)) ++removidos;
      e.presente = false;
    }

  std::map<int32_t, bool> presentes;
  for (const auto& [caminho, e] : mapa) presentes[e.codigo] = e.presente;
  std::vector<const Registro*> saida;
  for (const Registro& r : acervo.registros) {
    if (!codigosDoMapa.count(r.codigo)) {
      saida.push_back(&r);
      continue;
    }
    auto novo = novosRegistros.find(r.codigo);
    if (novo != novosRegistros.end()) {
      saida.push_back(&novo->second);
      continue;
    }
    if (presentes[r.codigo]) saida.push_back(&r);
  }
  for (int32_t codigo : acrescentados) saida.push_back(&novosRegistros[codigo]);

  std::string bytes;
  for (const Registro* r : saida)
    for (const Texto& linha : r->linhas) bytes += ParaUtf8(linha) + (acervo.crlf ? "\r\n" : "\n");
  GravarAtomico(pasta / "lxdb.rdb", bytes);
  GravarMapa(pasta / kArquivoMapa, fs::absolute(origem), mapa);
  // A new station needs its three rules files for the engine to load; empty ones apply no rule.
  for (int n = 0; n <= 2; ++n) {
    const fs::path regras = pasta / ("lxie" + std::to_string(n) + ".rdb");
    if (!ArquivoExiste(regras)) {
      EscreverBytes(regras, "");
      ctx.saida << "criado " << regras.filename().string() << " vazio (sem regras)\n";
    }
  }

  for (const std::string& i : ilegiveis) ctx.saida << "ignorado: " << i << "\n";
  if (acervo.soltas > 0)
    ctx.saida << "aviso: " << acervo.soltas << " linhas soltas no fim do lxdb.rdb anterior foram descartadas\n";
  ctx.saida << arquivos.size() << " arquivos de áudio: " << novos << " novos, " << atualizados << " atualizados, "
            << iguais << " sem mudança, " << ilegiveis.size() << " ignorados, " << removidos
            << " saíram do acervo; lxdb.rdb com " << saida.size() << " músicas\n";
}

}  // namespace

void RegistrarImportar(CLI::App& app, Contexto& ctx) {
  auto op = std::make_shared<OpcoesImportar>();
  CLI::App* cmd = app.add_subcommand(
      "importar", "Monta ou atualiza o acervo da estação (lxdb.rdb e mre/) a partir de uma pasta de áudio "
                  "(mp3, ogg, flac, m4a, wav); os códigos ficam em importados.json");
  cmd->add_option("--from", op->origem, "pasta com os arquivos de áudio (lida com as subpastas)")->required();
  cmd->add_option("--dir", op->dir, "pasta da estação, criada se faltar (senão LUMAVOX_DIR, senão a do executável)");
  cmd->callback([&ctx, op] {
    try {
      ExecutarImportar(ctx, *op);
    } catch (const std::exception& e) {
      ctx.erros << "lumavox-cli: " << e.what() << "\n";
      ctx.codigoSaida = 1;
    }
  });
}

}  // namespace lumavox::cli
