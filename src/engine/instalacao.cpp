#include "engine/instalacao.h"

#include <cstdlib>
#include <memory>
#include <system_error>

#include "engine/motor.h"
#include "stores/gravacoes.h"
#include "stores/historico_banco.h"

namespace lumavox {

namespace {

fs::path PastaDoExecutavel() {
  std::error_code ec;
  fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  return ec ? fs::current_path(ec) : exe.parent_path();
}

}  // namespace

fs::path ResolverPastaApp(const std::string& opcaoDir) {
  if (!opcaoDir.empty()) return opcaoDir;
  if (const char* env = std::getenv("LUMAVOX_DIR"); env && *env) return env;
  return PastaDoExecutavel();
}

void InstalarHistorico(Motor& motor, bool copiaDescartavel) {
  motor.DefinirOrigemHistorico(std::make_unique<OrigemHistoricoBanco>(motor.CaminhoApp(), copiaDescartavel));
  motor.DefinirPastaGravacoes(PastaGravacoesDoUsuario());
}

}  // namespace lumavox
