#include "base/memoria.h"
#include "cli/comandos.h"

int main(int argc, char** argv) {
  lumavox::PrepararAlocador();
  return lumavox::cli::Executar(argc, argv);
}
