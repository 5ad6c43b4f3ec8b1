// The benchmarks' entry point. With --tabela it runs the figures a person checks at a glance
// (one selection, the start-up load, each rule, the peak memory of `lumavox-cli select`) and
// prints each median next to its limit; otherwise it is Google Benchmark's usual runner.
#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <fcntl.h>
#include <spawn.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>


extern char** environ;

namespace {

// Keeps the median of every benchmark run, in milliseconds.
class ColetorMedianas : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& r : runs) {
      if (r.aggregate_name != "median") continue;
      const double ms = r.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(r.time_unit) * 1e3;
      medianas[r.run_name.function_name] = ms;
    }
  }
  std::map<std::string, double> medianas;
};

// Runs lumavox-cli with `args` and answers its peak resident memory in MiB (-1 on failure). It
// is measured before any benchmark runs: a child started from a process reports at least that
// process's own peak, so the parent must still be small.
double Executar(std::vector<std::string> args) {
  args.insert(args.begin(), LUMAVOX_CLI);
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  posix_spawn_file_actions_t acoes;
  posix_spawn_file_actions_init(&acoes);
  posix_spawn_file_actions_addopen(&acoes, 1, "/dev/null", O_WRONLY, 0);
  pid_t pid;
  const int falha = posix_spawn(&pid, LUMAVOX_CLI, &acoes, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&acoes);
  if (falha != 0) return -1;
  int estado = 0;
  rusage uso{};
  wait4(pid, &estado, 0, &uso);
  return WIFEXITED(estado) && WEXITSTATUS(estado) == 0 ? static_cast<double>(uso.ru_maxrss) / 1024.0 : -1;
}

// Peak memory of `lumavox-cli select` on a full station: 4001 songs, 48 rules per set of every
// implemented number, a log database of about 20,000 rows.
double MemoriaDePicoDoSelect() {
  const std::string dir = (std::filesystem::temp_directory_path() / "lumavox-bench-memoria").string();
  std::filesystem::remove_all(dir);
  if (Executar({"demo", "--dir", dir, "--musicas", "4001", "--regras", "48", "--completas", "--tocadas", "18500"}) < 0)
    return -1;
  return Executar({"select", "--dir", dir, "--seed", "1", "--no-wait", "--json"});
}

int Tabela(int argc, char** argv) {
  const double memoria = MemoriaDePicoDoSelect();
  std::vector<char*> args(argv, argv + argc);
  std::string filtro = "--benchmark_filter=BM_UmaSelecaoSemArquivos|BM_CargaPartida|BM_Regra";
  std::string repeticoes = "--benchmark_repetitions=5";
  std::string agregados = "--benchmark_report_aggregates_only=true";
  args.push_back(filtro.data());
  args.push_back(repeticoes.data());
  args.push_back(agregados.data());
  int n = static_cast<int>(args.size());
  benchmark::Initialize(&n, args.data());
  ColetorMedianas coletor;
  benchmark::RunSpecifiedBenchmarks(&coletor);

  std::printf("%-52s %12s %10s\n", "figura", "mediana", "limite");
  auto Linha = [](const std::string& figura, double valor, const char* unidade, double limite) {
    std::printf("%-52s %9.3f %-2s %7.1f %-2s %s\n", figura.c_str(), valor, unidade, limite, unidade,
                valor <= limite ? "" : "  <- acima do limite");
  };
  auto& m = coletor.medianas;
  if (m.count("BM_UmaSelecaoSemArquivos"))
    Linha("uma seleção (regras, log, sorteio)", m["BM_UmaSelecaoSemArquivos"], "ms", 3);
  if (m.count("BM_CargaPartida"))
    Linha("carga de partida (acervo, 3 regras, banco 20.000)", m["BM_CargaPartida"], "ms", 100);
  Linha("memória de pico de lumavox-cli select", memoria, "MB", 64);
  for (const auto& [nome, ms] : m)
    if (nome.rfind("BM_Regra", 0) == 0) Linha("regra " + nome.substr(8), ms, "ms", 0.5);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i)
    if (std::strcmp(argv[i], "--tabela") == 0) {
      for (int j = i; j + 1 < argc; ++j) argv[j] = argv[j + 1];
      return Tabela(argc - 1, argv);
    }
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
