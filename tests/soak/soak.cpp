// Soak run of the headless engine on a full station (4001 songs, a night playlist, three rule
// sets with refusals and rules that end in errors) under a stand-in player on a simulated
// clock: random levels, advance clicks, forced songs, clock jumps and playlist switches. Every
// selection is checked against the files it left and the rule log; resident memory is printed
// every thousand selections and must stop growing.
//   lumavox_soak [--selecoes N] [--semente S] [--pasta DIR]
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "base/arquivos.h"
#include "base/numeros.h"
#include "cli/demo.h"
#include "engine/motor.h"
#include "stores/banco_sqlite.h"
#include "stores/codec.h"
#include "stores/historico_banco.h"
#include "stores/saida.h"

namespace {

using namespace lumavox;
namespace fs = std::filesystem;

struct RegraSoak {
  const char* id;
  std::vector<std::string> vars;
  bool ativa = true;
};

// Every rule number with values of the kinds stations use, plus rules that every song breaks
// (refused), rules whose values cannot be read (ended by an error), an inactive one, one not
// performed and one unknown.
const std::vector<RegraSoak> kRegras{
    {"01", {"Ritmo:Animado;"}},
    {"02", {"Não", "Artista:Geral*", "3"}},
    {"03", {"1", "Sim", "Genero:Geral*", "Não"}},
    {"04", {"10"}},
    {"05", {}},
    {"06", {"3", "1"}},
    {"07", {"Genero:Geral*", "70", "20"}},
    {"08", {"10", "6", "Segmento:Jovem", "Voz:Feminina", "08:00", "12:00"}},
    {"12", {"*2-4", "Genero:Geral*"}},
    {"13", {"2"}},
    {"22", {"Ritmo:Animado;", "80", "Ritmo:Normal;", "Ritmo:Calmo;"}},
    {"23", {"Genero:Rock;", "", "", "", "Ritmo:Animado;"}},
    {"24", {"50"}},
    {"25", {"7", "0"}},
    {"26", {"4", "2"}},
    {"27", {"60"}},
    {"28", {"30", "Não", "Lingua:Espanhol"}},
    {"29", {"50"}},
    {"30", {"50"}},
    {"31", {"2"}},
    {"32", {"1,5"}},
    {"33", {"*2-4"}},
    {"34", {"*20-8", "Artista:Geral*"}},
    {"28", {"100", "Sim", "Lingua:Klingon"}},    // no song has it: refused
    {"34", {"4010", "Genero:Geral*"}},           // every song shares "any genre": refused
    {"04", {"10", "31/02/2026"}},                 // not a date: error
    {"13", {"dois"}},                             // not a number: error
    {"12", {"*40000-1", "Genero:Rock"}},          // past 16 bits: error
    {"28", {"80", "Sim", "Ritmo:Calmo"}, false},  // inactive
    {"15", {}},
    {"99", {}},
};

void GravarRegras(const fs::path& pasta, std::mt19937& g) {
  for (int conjunto = 0; conjunto <= 2; ++conjunto) {
    std::vector<RegraSoak> regras = kRegras;
    std::shuffle(regras.begin(), regras.end(), g);
    std::string arquivo;
    auto Linha = [&](const std::string& t) { arquivo += ParaUtf8(CodificarLinha(DeUtf8(t))) + "\r\n"; };
    for (const RegraSoak& r : regras) {
      Linha(r.ativa ? "A" : "I");
      Linha(r.id);
      Linha(std::string("Regra ") + r.id + " (X1) (X2) (X3)");
      Linha("");
      for (size_t v = 0; v < 10; ++v) Linha(v < r.vars.size() ? r.vars[v] : "");
    }
    EscreverBytes(pasta / ("lxie" + std::to_string(conjunto) + ".rdb"), arquivo);
  }
}

long MemoriaResidenteKb() {
  std::ifstream statm("/proc/self/statm");
  long paginas = 0, residentes = 0;
  statm >> paginas >> residentes;
  return residentes * (::sysconf(_SC_PAGESIZE) / 1024);
}

struct Opcoes {
  long selecoes = 300;
  uint32_t semente = 1;
  fs::path pasta;
};

class Soak {
 public:
  explicit Soak(const Opcoes& op) : op_(op), g_(op.semente), ambiente_(MontarDataHora(2026, 11, 22, 22, 0, 0), op.semente) {}

  int Rodar() {
    Preparar();
    // Resident memory is read after every tick; the curve keeps the highest value of each
    // thousand selections, since it swings with the size of the playlist in force.
    long feitas = 0, proximaMedida = 1000, pico = MemoriaResidenteKb();
    curva_.emplace_back(0, pico);
    while (feitas < op_.selecoes && falhas_ <= 20) {
      feitas += Tique();
      pico = std::max(pico, MemoriaResidenteKb());
      if (feitas >= proximaMedida || feitas >= op_.selecoes) {
        curva_.emplace_back(feitas, pico);
        std::printf("selecoes %6ld  rss máx %7ld kB\n", feitas, pico);
        std::fflush(stdout);
        proximaMedida += 1000;
        pico = 0;
      }
    }
    return Relatorio(feitas);
  }

 private:
  void Preparar() {
    cli::OpcoesDemo op;
    op.musicas = 4001;
    op.bytesMre = 32;
    op.tocadasNoBanco = 0;
    op.semente = op_.semente;
    cli::GerarEstacaoDemo(op_.pasta, op);
    GravarRegras(op_.pasta, g_);
    GravarRegras(op_.pasta / "madrugada", g_);
    banco_ = std::make_unique<BancoLogs>(op_.pasta / "lumavox.db");
    sqlite3_exec(banco_->Conexao(), "PRAGMA synchronous=OFF", nullptr, nullptr, nullptr);
    motor_ = std::make_unique<Motor>(op_.pasta, ambiente_);
    motor_->DefinirOrigemHistorico(std::make_unique<OrigemHistoricoBanco>(op_.pasta));
    motor_->Iniciar();
    if (motor_->UltimoErro()) Falha("início: " + *motor_->UltimoErro());
  }

  bool Chance(int porcento) { return std::uniform_int_distribution<int>(1, 100)(g_) <= porcento; }

  void Falha(const std::string& texto) {
    if (++falhas_ <= 20) std::fprintf(stderr, "FALHA (seleção %ld): %s\n", totalSelecoes_, texto.c_str());
  }

  // One tick: what the player and the operator do, one call of the run, every check, then the
  // player plays the first song of the queue.
  long Tique() {
    Estado& e = motor_->E();
    if (Chance(10)) EscreverBytes(op_.pasta / "ritmo.rer", std::to_string(std::uniform_int_distribution<int>(0, 100)(g_)) + "\r\n");
    if (Chance(6)) EscreverBytes(op_.pasta / "avancar.rer", "1\r\n");
    int32_t forcada = 0;
    if (Chance(4) && e.acervo().TotalMusicas > 0) {
      forcada = Chance(80) ? e.acervo().AcervoCodigos[std::uniform_int_distribution<long>(0, e.acervo().TotalMusicas - 1)(g_)] : 999999;
      e.execucao.MusicaForcada = forcada;
    }
    if (Chance(2)) {
      // The clock jumps, forward or back, by up to nine hours: playlists switch with it.
      ambiente_.DefinirAgora(SomarSegundos(ambiente_.Agora(), std::uniform_int_distribution<int64_t>(-9 * 3600, 9 * 3600)(g_)));
    }

    const ResultadoExecucao r = motor_->TestarRegras();
    const long total = e.acervo().TotalMusicas;
    for (size_t i = 0; i < r.selecoes.size(); ++i) {
      ++totalSelecoes_;
      Conferir(r.selecoes[i], i == 0 ? forcada : 0);
    }
    const size_t fila = ListarArquivos(ArquivosReais(), op_.pasta / "list", ".lre").size();
    if (total >= 51 && fila == 0) Falha("fila vazia depois da chamada");
    // The player takes an entry with its media, so every media file left has its entry.
    if (const size_t midias = ListarArquivos(ArquivosReais(), op_.pasta / "temp", ".mrt").size(); midias != fila)
      Falha(std::to_string(midias) + " mídias em temp/ para " + std::to_string(fila) + " entradas na fila");
    Tocar();
    return static_cast<long>(r.selecoes.size());
  }

  void Conferir(const SelecaoFeita& s, int32_t forcada) {
    Estado& e = motor_->E();
    if (e.acervo().TotalMusicas >= 51 && !s.lre) Falha("nenhum arquivo de fila para " + std::to_string(s.escolhida));
    if (!s.mrt) Falha("nenhuma mídia para " + std::to_string(s.escolhida));
    if (s.lre && ArquivoExiste(op_.pasta / *s.lre) && s.mrt) {
      const std::string mre = LerBytes(op_.pasta / "mre" / NomeArquivoMusica(s.escolhida));
      std::string mrt = LerBytes(op_.pasta / *s.mrt);
      for (char& b : mrt) b = static_cast<char>(255 - static_cast<unsigned char>(b));
      if (mrt != mre) Falha(*s.mrt + " não é o complemento de " + NomeArquivoMusica(s.escolhida));
      ++midiasConferidas_;
    }
    bool noAcervo = false;
    for (long i = 0; i < e.acervo().TotalMusicas && !noAcervo; ++i) noAcervo = e.acervo().AcervoCodigos[i] == forcada;
    if (forcada && noAcervo) {
      if (s.escolhida != forcada) Falha("a música forçada " + std::to_string(forcada) + " não foi escolhida");
      ++forcadas_;
      return;
    }
    const NoLog* pai = nullptr;
    for (const NoLog& no : e.log.Selecoes())
      if (no.chave == s.chaveLog) pai = &no;
    if (!pai) return Falha("seleção " + s.chaveLog + " fora do log");
    for (const NoLog& no : pai->filhos) {
      if (no.tipo != TipoLog::Restantes) continue;
      for (const MusicaLog& m : no.musicas)
        if (m.codigo == s.escolhida && m.slot == s.slot) return;
      return Falha(std::to_string(s.escolhida) + " não estava entre as restantes de " + s.chaveLog);
    }
    Falha("seleção " + s.chaveLog + " sem MUSICAS RESTANTES");
  }

  // The stand-in player: takes the first entry of the queue with its media, logs the play and
  // lets the clock run for the song's length.
  void Tocar() {
    const std::vector<fs::path> fila = ListarArquivos(ArquivosReais(), op_.pasta / "list", ".lre");
    if (fila.empty()) return;
    const std::string nome = fila.front().filename().string();
    const int32_t codigo = static_cast<int32_t>(std::stol(nome.substr(7, 7)));
    fs::remove(fila.front());
    fs::remove(op_.pasta / "temp" / (nome.substr(0, 6) + ".mrt"));
    banco_->Registrar(RegistroLog{codigo, ambiente_.Agora(), 0});
    Estado& e = motor_->E();
    int64_t duracao = 180;
    for (long i = 0; i < e.acervo().TotalMusicas; ++i)
      if (e.acervo().AcervoCodigos[i] == codigo) duracao = static_cast<int64_t>(ValorNumerico(e.acervo().AcervoTags(i, kCampoDuracaoSec)));
    ambiente_.DefinirAgora(SomarSegundos(ambiente_.Agora(), std::clamp<int64_t>(duracao, 30, 900)));
  }

  int Relatorio(long feitas) {
    std::printf("\n%ld seleções, %ld mídias conferidas, %ld forçadas\n", feitas, midiasConferidas_, forcadas_);
    std::printf("mídias restantes em temp/: %zu\n", ListarArquivos(ArquivosReais(), op_.pasta / "temp", ".mrt").size());
    std::printf("memória residente, máximo por bloco (kB):");
    for (const auto& [n, kb] : curva_) std::printf(" %ld:%ld", n, kb);
    std::printf("\n");
    // Past the warm-up the engine holds bounded tables only: the peak of the second half may
    // not pass the peak of the first (its first tenth left out) by more than 4 MB or 5 %.
    if (feitas >= 8000) {
      long primeira = 0, segunda = 0;
      for (const auto& [n, kb] : curva_) {
        if (n > feitas / 10 && n <= feitas / 2) primeira = std::max(primeira, kb);
        if (n > feitas / 2) segunda = std::max(segunda, kb);
      }
      if (segunda - primeira > std::max(4096L, primeira / 20))
        Falha("a memória ainda cresce: pico de " + std::to_string(primeira) + " kB na primeira metade, " +
              std::to_string(segunda) + " kB na segunda");
    }
    if (falhas_) std::printf("%ld falhas\n", falhas_);
    return falhas_ ? 1 : 0;
  }

  Opcoes op_;
  std::mt19937 g_;
  AmbienteFixo ambiente_;
  std::unique_ptr<BancoLogs> banco_;
  std::unique_ptr<Motor> motor_;
  long falhas_ = 0, totalSelecoes_ = 0, midiasConferidas_ = 0, forcadas_ = 0;
  std::vector<std::pair<long, long>> curva_;
};

}  // namespace

int main(int argc, char** argv) {
  Opcoes op;
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string nome = argv[i];
    if (nome == "--selecoes") op.selecoes = std::stol(argv[i + 1]);
    else if (nome == "--semente") op.semente = static_cast<uint32_t>(std::stoul(argv[i + 1]));
    else if (nome == "--pasta") op.pasta = argv[i + 1];
    else {
      std::fprintf(stderr, "uso: lumavox_soak [--selecoes N] [--semente S] [--pasta DIR]\n");
      return 2;
    }
  }
  const bool temporaria = op.pasta.empty();
  if (temporaria) op.pasta = fs::temp_directory_path() / ("lumavox-soak-" + std::to_string(::getpid()));
  int codigo = 1;
  try {
    codigo = Soak(op).Rodar();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "FALHA: exceção %s\n", e.what());
  }
  if (temporaria) {
    std::error_code ec;
    fs::remove_all(op.pasta, ec);
  }
  return codigo;
}
