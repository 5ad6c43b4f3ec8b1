// A file system that hands every operation to another one (the real disk unless told) but for
// the faults a test arms: a disk that fills at a chosen byte, operations the system refuses on
// chosen paths, and files another program takes away the instant after the engine saw them.
// Each fault leaves behind what the real one would, so the engine can be watched in-process.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "base/sistema_arquivos.h"

namespace lumavox::teste {

class SistemaArquivosFalho : public SistemaArquivos {
 public:
  explicit SistemaArquivosFalho(SistemaArquivos& base = ArquivosReais()) : base_(base) {}

  // The disk fills once `bytes` more bytes were written: the write that reaches the limit leaves
  // its first bytes in the file and raises as a full disk does, and every later write leaves an
  // empty file and raises too, until LiberarDisco. Deleting gives no room back.
  void EncherDiscoApos(uint64_t bytes) { restante_ = bytes; }
  void LiberarDisco() { restante_.reset(); }

  // The system refuses the operation on `caminho` and everything under it: reads raise
  // PermissaoNegada without touching the file, deletes answer false, and a rename from or to it
  // raises.
  void NegarLeitura(const fs::path& caminho) { leituraNegada_.push_back(Normal(caminho)); }
  void NegarApagar(const fs::path& caminho) { apagarNegado_.push_back(Normal(caminho)); }
  void NegarRenomear(const fs::path& caminho) { renomearNegado_.push_back(Normal(caminho)); }
  // Every refusal lifted.
  void Permitir();

  // The file is deleted right after the next listing or existence check that reports it.
  void SumirDepoisDeVisto(const fs::path& caminho) { sumir_.push_back(Normal(caminho)); }

  std::string LerBytes(const fs::path& caminho) override;
  void EscreverBytes(const fs::path& caminho, std::string_view bytes) override;
  void Sincronizar(const fs::path& caminho) override { base_.Sincronizar(caminho); }
  void Renomear(const fs::path& de, const fs::path& para) override;
  bool Apagar(const fs::path& caminho) noexcept override;
  bool ArquivoExiste(const fs::path& caminho) noexcept override;
  bool CriarPastas(const fs::path& pasta) noexcept override { return base_.CriarPastas(pasta); }
  std::vector<fs::path> Listar(const fs::path& pasta, std::string_view terminacao) override;
  std::optional<MarcaArquivo> Marca(const fs::path& caminho) noexcept override;
  std::optional<VersaoArquivo> Versao(const fs::path& caminho) noexcept override { return base_.Versao(caminho); }

 private:
  static fs::path Normal(const fs::path& caminho);
  // True when `caminho` is one of `raizes` or lies under one.
  static bool Abrange(const std::vector<fs::path>& raizes, const fs::path& caminho);
  void SumirSeMarcado(const fs::path& caminho) noexcept;

  SistemaArquivos& base_;
  std::optional<uint64_t> restante_;
  std::vector<fs::path> leituraNegada_, apagarNegado_, renomearNegado_, sumir_;
};

}  // namespace lumavox::teste
