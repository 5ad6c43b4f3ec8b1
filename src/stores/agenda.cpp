#include "stores/agenda.h"

#include <array>
#include <optional>

#include "base/erro.h"
#include "base/numeros.h"
#include "stores/codec.h"

namespace lumavox {

namespace {

struct FaixaSlots {
  long de = 0;
  long ate = 0;
};

std::u16string_view SemBrancos(std::u16string_view t) {
  while (!t.empty() && (t.front() == u' ' || t.front() == u'\t')) t.remove_prefix(1);
  while (!t.empty() && (t.back() == u' ' || t.back() == u'\t')) t.remove_suffix(1);
  return t;
}

// Plain digits only: a header is never a general number ("1,5" or "+3" are not slots).
std::optional<long> Digitos(std::u16string_view t) {
  if (t.empty() || t.size() > 6) return std::nullopt;
  long v = 0;
  for (char16_t c : t) {
    if (c < u'0' || c > u'9') return std::nullopt;
    v = v * 10 + (c - u'0');
  }
  return v;
}

// "N" or "N-M", both ends inclusive, within 0..359.
FaixaSlots LerCabecalho(std::u16string_view linha) {
  const std::u16string_view t = SemBrancos(linha);
  const size_t traco = t.find(u'-');
  std::optional<long> de = Digitos(SemBrancos(t.substr(0, traco)));
  std::optional<long> ate =
      traco == std::u16string_view::npos ? de : Digitos(SemBrancos(t.substr(traco + 1)));
  if (!de || !ate)
    throw ErroExecucao(CodigoErro::TiposIncompativeis,
                       "Type mismatch: \"" + ParaUtf8(linha) + "\" não é slot nem faixa de slots");
  if (*ate >= kSlotsAgenda || *de > *ate)
    throw ErroExecucao(CodigoErro::ForaDoIntervalo, "Subscript out of range: faixa de slots \"" +
                                                        ParaUtf8(linha) + "\" fora de 0..359");
  return {*de, *ate};
}

class LeitorTabela {
 public:
  LeitorTabela(TabelasAgenda& agenda, long lugar) : agenda_(agenda), lugar_(lugar) {}

  void Linha(Texto&& texto) {
    if (!numeroLido_) {
      agenda_.TabelasNumero[lugar_] = TextoParaInteiro32(texto);
      numeroLido_ = true;
    } else if (!faixa_) {
      // Blank lines between blocks are only spacing.
      if (!texto.empty()) faixa_ = LerCabecalho(texto);
    } else if (texto.empty()) {
      FecharBloco();
    } else {
      if (filtros_ == kFiltrosAgenda)
        throw ErroExecucao(CodigoErro::ForaDoIntervalo,
                           "Subscript out of range: mais de 6 filtros num slot");
      bloco_[static_cast<size_t>(filtros_++)] = std::move(texto);
    }
  }

  // The last block may end with the file instead of an empty line.
  void Fim() {
    if (faixa_) FecharBloco();
  }

 private:
  void FecharBloco() {
    for (long slot = faixa_->de; slot <= faixa_->ate; ++slot)
      for (long k = 0; k < kFiltrosAgenda; ++k)
        agenda_.TabelasGrade(lugar_, slot, k) =
            k < filtros_ ? bloco_[static_cast<size_t>(k)] : Texto();
    faixa_.reset();
    filtros_ = 0;
  }

  TabelasAgenda& agenda_;
  long lugar_;
  bool numeroLido_ = false;
  std::optional<FaixaSlots> faixa_;
  std::array<Texto, kFiltrosAgenda> bloco_;
  long filtros_ = 0;
};

}  // namespace

fs::path ArquivoTabelaAgenda(const fs::path& pasta, long lugar) {
  return pasta / ("lxtb" + std::to_string(lugar) + ".rdb");
}

void CarregarTabelaAgenda(SistemaArquivos& arquivos, TabelasAgenda& agenda, long lugar,
                          const fs::path& arquivo) {
  (void)agenda.TabelasNumero[lugar];  // a place past 0..5 raises before the file is read
  LeitorTabela leitor(agenda, lugar);
  long linha = 0;
  bool noLeitor = false;
  try {
    ParaCadaLinhaCodificada(arquivos, arquivo, [&](Texto&& texto) {
      ++linha;
      noLeitor = true;
      leitor.Linha(std::move(texto));
      noLeitor = false;
    });
  } catch (const ErroExecucao& e) {
    // A line that does not decode fails before it is handed over: it is the one after the last
    // line read. A file that cannot be read has no line to name.
    std::string onde = arquivo.filename().string();
    long naLinha = 0;
    if (noLeitor)
      naLinha = linha;
    else if (e.Codigo() == CodigoErro::ChamadaInvalida)
      naLinha = linha + 1;
    if (naLinha == 0) throw ErroExecucao(e.Codigo(), onde + ": " + e.what());
    throw ErroNaLinha(e.Codigo(), onde + ", linha " + std::to_string(naLinha) + ": " + e.what(),
                      naLinha);
  }
  leitor.Fim();
}

std::vector<std::string> CarregarTabelasAgenda(SistemaArquivos& arquivos, TabelasAgenda& agenda,
                                               const fs::path& pasta) {
  std::vector<std::string> falhas;
  for (long lugar = 0; lugar < kLugaresAgenda; ++lugar) {
    const fs::path arquivo = ArquivoTabelaAgenda(pasta, lugar);
    // Most stations have no tables: a missing file is an empty place, not a failure.
    if (!arquivos.ArquivoExiste(arquivo)) continue;
    try {
      CarregarTabelaAgenda(arquivos, agenda, lugar, arquivo);
    } catch (const std::exception& e) {
      falhas.emplace_back(e.what());
    }
  }
  return falhas;
}

}  // namespace lumavox
