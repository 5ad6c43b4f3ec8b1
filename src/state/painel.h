// What the engine tells whoever shows it (the window, or nobody) and the chance it gives that
// viewer to handle its events during a long selection.
#pragma once

#include <filesystem>

namespace lumavox {

class Painel {
 public:
  virtual ~Painel() = default;
  virtual void MostrarPlaylist(const std::filesystem::path& /*pastaDados*/) {}
  virtual void MostrarContagemAvancos(int /*contagem*/) {}
  // Lets pending interface events run between rules.
  virtual void Ceder() {}
};

}  // namespace lumavox
