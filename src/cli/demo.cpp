#include "cli/demo.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "base/ambiente.h"
#include "base/arquivos.h"
#include "cli/subcomandos.h"
#include "engine/instalacao.h"
#include "rules/descricoes.h"
#include "stores/acervo.h"
#include "stores/banco_sqlite.h"
#include "stores/codec.h"

namespace lumavox::cli {

namespace {

using Lista = std::vector<std::string>;

const Lista kArtistas{"Ana Lima", "Bia Torres", "Caio Prado", "Duda Reis", "Elis Moura",
                      "Fábio Nunes", "Gal Costa Rica", "Heitor Vaz", "Iara Sol", "João Brás",
                      "Karla Dias", "Léo Santana", "Marta Rocha", "Nando Reis Jr", "Olívia Mar",
                      "Pedro Luz", "Quésia Alves", "Rui Matos", "Sílvia Ramos", "Téo Azevedo",
                      "Banda Aurora", "Os Caiçaras", "Trio Ventania", "Duo Cerrado"};
const Lista kSeparadores{" feat ", " & ", " e ", " ft. ", " com ", " vs "};
const Lista kGeneros{"Rock", "Pop", "MPB", "Samba", "Forró", "Sertanejo", "Axé", "Jazz",
                     "Bossa Nova", "Reggae", "Eletrônica", "Pagode"};
const Lista kPalavrasTitulo{"Amor", "Sol", "Mar", "Saudade", "Noite", "Estrada", "Coração",
                            "Cidade", "Lua", "Vento", "Tempo", "Janela", "Chuva", "Sonho"};
const Lista kVelocidades{"Rápida;", "Rápida;Normal;", "Normal;Rápida;", "Normal;", "Normal;Lenta;",
                         "Lenta;Normal;", "Lenta;"};
const Lista kRitmos{"Calmo;", "Normal;", "Animado;", "Calmo;Romântico;", "Animado;Pista;",
                    "Normal;Positivo;", "Animado;Agitado;Sexy;", "Calmo;Relax;", "Normal;Cover;"};
const Lista kLinguas{"Português", "Inglês", "Espanhol"};
const Lista kDecadas{"60", "70", "80", "90", "2000", "2010", "2020"};
const Lista kVozes{"Masculina", "Feminina", "Dueto", "Coral"};
const Lista kPublicos{"Jovem", "Adulto", "Geral"};
const Lista kSegmentos{"Popular", "Adulto Contemporâneo", "Jovem"};
const Lista kFaixasEtarias{"18-24", "25-34", "35-49", "50+"};
const Lista kEstilos{"Acústico", "Ao Vivo", "Estúdio", "Remix"};

class Sorteio {
 public:
  explicit Sorteio(uint32_t semente) : g_(semente) {}
  int Entre(int a, int b) { return std::uniform_int_distribution<int>(a, b)(g_); }
  const std::string& De(const Lista& l) { return l[static_cast<size_t>(Entre(0, static_cast<int>(l.size()) - 1))]; }
  bool Chance(int porcento) { return Entre(1, 100) <= porcento; }

 private:
  std::mt19937 g_;
};

std::string Artista(Sorteio& s) {
  std::string a = s.De(kArtistas);
  if (s.Chance(20)) a += s.De(kSeparadores) + s.De(kArtistas);
  return a;
}

std::string Generos(Sorteio& s) {
  const std::string& primeiro = s.De(kGeneros);
  std::string g = primeiro + ";";
  if (s.Chance(40)) {
    const std::string& segundo = s.De(kGeneros);
    if (segundo != primeiro) g += segundo + ";";
  }
  return g;
}

constexpr size_t kTagsPorMusica = 32;

std::array<std::string, kTagsPorMusica> TagsDaMusica(Sorteio& s, int n) {
  std::array<std::string, kTagsPorMusica> t{};
  const int duracao = s.Entre(140, 330);
  t[0] = Artista(s);
  t[1] = "Álbum " + s.De(kPalavrasTitulo) + " " + std::to_string(s.Entre(1, 9));
  t[2] = s.De(kPalavrasTitulo) + " de " + s.De(kPalavrasTitulo);
  t[4] = std::to_string(s.Entre(1, 14));
  t[5] = Generos(s);
  t[6] = s.De(kArtistas);
  t[7] = std::to_string(s.Entre(60, 180));
  t[8] = std::to_string(s.Entre(0, 10));
  t[9] = s.Chance(60) ? "Nacional" : "Internacional";
  t[10] = s.Chance(95) ? "Musica" : "Vinheta";
  t[11] = "Liberada";
  t[12] = s.Chance(97) ? "Sim" : "Não";
  t[13] = "Não";
  t[14] = std::to_string(std::array{128, 192, 256, 320}[static_cast<size_t>(s.Entre(0, 3))]);
  t[15] = "44100";
  t[16] = s.Chance(85) ? "Sim" : "Não";
  t[17] = std::to_string(duracao);
  t[18] = s.Chance(15) ? std::to_string(s.Entre(1, 9)) : s.De(kVelocidades);
  t[19] = s.De(kVozes);
  t[20] = s.De(kSegmentos);
  t[21] = s.Chance(50) ? "M" : "F";
  t[22] = s.Chance(70) ? "A" : "B";
  t[23] = s.De(kFaixasEtarias);
  t[24] = s.De(kRitmos);
  t[25] = std::to_string(s.Entre(0, 4));
  t[26] = std::to_string(duracao - s.Entre(0, 6));
  t[27] = s.De(kGeneros) + ";";
  t[28] = s.De(kEstilos);
  t[29] = s.De(kLinguas);
  t[30] = s.De(kDecadas);
  t[31] = s.De(kPublicos);
  (void)n;
  return t;
}

// A rule of the demo sets: its number, whose description gives the description and example
// lines, and its variables.
struct RegraDemo {
  bool ativo;
  int numero;
  std::array<std::string, 10> vars;
};

const std::vector<RegraDemo> kRegrasDemo{
    {true, 1, {"Ritmo:Animado;", "", "", ""}},
    {true, 12, {"*2-4", "Genero:Geral*", "", "", ""}},
    {true, 34, {"*20-8", "Artista:Geral*", "", "", ""}},
    {true, 2, {"Não", "Title:Geral*", "6", "", "", ""}},
    {true, 4, {"10", "", "", ""}},
    {true, 33, {"*2-4", "", "", ""}},
    {false, 28, {"30", "Não", "Lingua:Espanhol", "", "", ""}},
    {false, 15, {}},
};

// One rule of every implemented number, with values that keep most songs alive, so a
// full-capacity station exercises every procedure at every selection.
const std::vector<RegraDemo> kRegrasCompletas{
    {true, 1, {"Ritmo:Animado;"}},
    {true, 2, {"Não", "Artista:Geral*", "2"}},
    {true, 3, {"1", "Sim", "Genero:Geral*", "Não"}},
    {true, 4, {"10"}},
    {true, 5, {}},
    {true, 6, {"3", "2"}},
    {true, 7, {"Genero:Geral*", "70", "50", "30", "20"}},
    {true, 8, {"10", "3", "Genero:Rock;Pop;MPB;Samba", "Lingua:Português;Inglês", "08:00", "12:00"}},
    {true, 12, {"*2-4", "Genero:Geral*"}},
    {true, 13, {"3"}},
    {true, 22, {"Ritmo:Animado;", "60", "Ritmo:Normal;Animado;", "Ritmo:Calmo;"}},
    {true, 23, {"Genero:Rock;", "", "", "Sim", "Genero:Rock;Pop;MPB", "Lingua:Português;Inglês", ""}},
    {true, 24, {"50"}},
    {true, 25, {"1", "0"}},
    {true, 26, {"4", "*4-6"}},
    {true, 27, {"40"}},
    {true, 28, {"30", "Não", "Lingua:Espanhol"}},
    {true, 29, {"20"}},
    {true, 30, {"80"}},
    {true, 31, {"3"}},
    {true, 32, {"3"}},
    {true, 33, {"*6-4"}},
    {true, 34, {"*20-8", "Title:Geral*"}},
    {false, 15, {}},
};

void GravarLinhasCodificadas(const fs::path& arquivo, const std::vector<std::string>& linhas) {
  std::string bytes;
  for (const std::string& l : linhas) bytes += ParaUtf8(CodificarLinha(DeUtf8(l))) + "\r\n";
  EscreverBytes(arquivo, bytes);
}

void GravarRegras(const fs::path& pasta, int conjunto, int quantas, bool completas) {
  const std::vector<RegraDemo>& lista = completas ? kRegrasCompletas : kRegrasDemo;
  std::vector<std::string> linhas;
  const int total = quantas > 0 ? quantas : static_cast<int>(lista.size());
  for (int i = 0; i < total; ++i) {
    // Each set starts at a different rule so the three sets differ.
    const RegraDemo& r = lista[static_cast<size_t>(i + conjunto * (quantas > 0 ? 0 : 1)) % lista.size()];
    const DescricaoRegra& d = DescricaoDaRegra(r.numero);
    linhas.push_back(r.ativo ? "A" : "I");
    linhas.push_back(ParaUtf8(d.numero));
    linhas.push_back(ParaUtf8(d.texto));
    // The full set leaves the examples out.
    linhas.push_back(completas ? "" : ParaUtf8(d.exemplo));
    for (const std::string& v : r.vars) linhas.push_back(v);
  }
  GravarLinhasCodificadas(pasta / ("lxie" + std::to_string(conjunto) + ".rdb"), linhas);
}

void ExecutarDemo(Contexto& ctx, const std::string& dir, const OpcoesDemo& op) {
  const fs::path pasta = ResolverPastaApp(dir);
  try {
    GerarEstacaoDemo(pasta, op);
  } catch (const std::exception& e) {
    ctx.erros << "lumavox-cli: " << e.what() << "\n";
    ctx.codigoSaida = 1;
    return;
  }
  ctx.saida << "Estação de demonstração criada em " << pasta.string() << ": " << op.musicas
            << " músicas, 3 conjuntos de regras, playlist noturna em \"madrugada\".\n";
}

}  // namespace

void GerarEstacaoDemo(const fs::path& pasta, const OpcoesDemo& op) {
  fs::create_directories(pasta / "mre");
  fs::create_directories(pasta / "temp");
  fs::create_directories(pasta / "list");
  Sorteio s(op.semente);

  std::vector<std::string> linhas;
  std::vector<bool> calma(static_cast<size_t>(op.musicas));
  constexpr size_t kLinhasPorMusica = 1 + kTagsPorMusica;  // the code, then the tags
  std::vector<char> bytes(static_cast<size_t>(op.bytesMre));
  for (int n = 0; n < op.musicas; ++n) {
    const int codigo = 1000 + n * 7;
    const auto tags = TagsDaMusica(s, n);
    linhas.push_back(std::to_string(codigo));
    linhas.insert(linhas.end(), tags.begin(), tags.end());
    calma[static_cast<size_t>(n)] = tags[24].rfind("Calmo", 0) == 0 || tags[18].rfind("Lenta", 0) == 0;
    for (char& b : bytes) b = static_cast<char>(s.Entre(0, 255));
    EscreverBytes(pasta / "mre" / NomeArquivoMusica(codigo), std::string_view(bytes.data(), bytes.size()));
  }
  GravarLinhasCodificadas(pasta / "lxdb.rdb", linhas);
  for (int c = 0; c <= 2; ++c) GravarRegras(pasta, c, op.regrasPorConjunto, op.regrasCompletas);
  fs::remove(pasta / "lxtb0.rdb");
  if (op.regrasCompletas) {
    // Schedule table 1 for rule "25": the night hours lean to calm languages, the day to all.
    GravarLinhasCodificadas(pasta / "lxtb0.rdb",
                            {"1", "0-89", "Lingua:Português;Inglês;Espanhol", "Ativo:Sim;Não", "",
                             "90-359", "Nacionalidade:Nacional;Internacional", "Tipo:Musica;Vinheta"});
  }

  if (op.playlistNoturna) {
    // The calm songs make the night playlist, topped up with others to the engine's minimum: a
    // smaller playlist would leave a small demo silent all night.
    const auto calmas = std::count(calma.begin(), calma.end(), true);
    auto outras = std::max<decltype(calmas)>(0, kMinimoMusicas - calmas);
    std::vector<std::string> linhasNoite;
    for (size_t n = 0; n < calma.size(); ++n) {
      if (!calma[n]) {
        if (outras == 0) continue;
        --outras;
      }
      const auto primeira = linhas.begin() + static_cast<std::ptrdiff_t>(n * kLinhasPorMusica);
      linhasNoite.insert(linhasNoite.end(), primeira, primeira + static_cast<std::ptrdiff_t>(kLinhasPorMusica));
    }
    const fs::path noite = pasta / "madrugada";
    fs::create_directories(noite);
    GravarLinhasCodificadas(noite / "lxdb.rdb", linhasNoite);
    for (int c = 0; c <= 2; ++c) GravarRegras(noite, c, op.regrasPorConjunto, op.regrasCompletas);
    EscreverBytes(pasta / "pl.rdb", "00:00:00 05:59:59 madrugada\r\n");
  } else {
    fs::remove(pasta / "pl.rdb");
  }
  EscreverBytes(pasta / "ritmo.rer", "50\r\n");

  fs::remove(pasta / "lumavox.db");
  if (op.tocadasNoBanco > 0) {
    // A log that looks lived in: plays every few minutes up to now, a few favourites (type 4)
    // and quarantine dates (type 5) from the last days.
    std::vector<RegistroLog> registros;
    const DataHora agora = AgoraLocal();
    auto Codigo = [&](int n) { return 1000 + (n % op.musicas) * 7; };
    for (int i = op.tocadasNoBanco; i >= 1; --i)
      registros.push_back({Codigo(s.Entre(0, op.musicas - 1)), SomarSegundos(agora, -200 * i), 0});
    for (int i = 0; i < op.musicas / 10; ++i)
      registros.push_back({Codigo(s.Entre(0, op.musicas - 1)), SomarSegundos(agora, -3600 * s.Entre(1, 300)), 4});
    for (int i = 0; i < op.musicas / 8; ++i) {
      const int32_t codigo = Codigo(s.Entre(0, op.musicas - 1));
      for (int d = s.Entre(1, 3); d >= 1; --d)
        registros.push_back({codigo, SomarSegundos(agora, -86400 * d - 60 * s.Entre(0, 600)), 5});
    }
    BancoLogs(pasta / "lumavox.db").Registrar(registros);
  }
}

void RegistrarDemo(CLI::App& app, Contexto& ctx) {
  auto op = std::make_shared<OpcoesDemo>();
  auto dir = std::make_shared<std::string>();
  CLI::App* cmd = app.add_subcommand("demo", "Cria uma estação de demonstração com dados próprios");
  cmd->add_option("--dir", *dir, "pasta da estação (senão LUMAVOX_DIR, senão a do executável)");
  cmd->add_option("--musicas", op->musicas, "número de músicas (1..4001)")->check(CLI::Range(1, 4001));
  cmd->add_option("--regras", op->regrasPorConjunto, "regras por conjunto (0 = conjunto pequeno)")
      ->check(CLI::Range(0, 256));
  cmd->add_option("--semente", op->semente, "semente dos dados");
  cmd->add_flag("--completas", op->regrasCompletas, "uma regra de cada número implementado");
  cmd->add_option("--tocadas", op->tocadasNoBanco, "tocadas já registradas no lumavox.db (0: sem banco)")
      ->check(CLI::NonNegativeNumber);
  cmd->callback([&ctx, op, dir] { ExecutarDemo(ctx, *dir, *op); });
}

}  // namespace lumavox::cli
