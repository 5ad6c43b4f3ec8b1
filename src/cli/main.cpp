#include "cli/comandos.h"

int main(int argc, char** argv) { return lumavox::cli::Executar(argc, argv); }
