#include "engine/conferencia.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <system_error>
#include <unordered_map>
#include <unordered_set>

#include "base/erro.h"
#include "base/numeros.h"
#include "engine/despacho.h"
#include "rules/descricoes.h"
#include "rules/regras.h"
#include "rules/tags.h"
#include "state/pedacos.h"
#include "stores/acervo.h"
#include "stores/agenda.h"
#include "stores/historico_banco.h"
#include "stores/historico_mdb.h"
#include "stores/historico_sqlite.h"
#include "stores/playlists.h"

namespace lumavox {

namespace {

constexpr int kNivelMaximo = 100;  // the top of the player's level bar

std::string Var(int n, const Texto& valor) {
  return "var" + std::to_string(n) + " \"" + ParaUtf8(valor) + "\"";
}

bool InteiroDe16Bits(std::u16string_view texto) {
  const auto v = ConverterNumero(texto);
  if (!v) return false;
  const double r = ArredondarPar(*v);
  return r >= -32768 && r <= 32767;
}

// "*a-b" (the last "-" splits) or "*a": both parts must be numbers the level scaling can hold.
bool FaixaValida(std::u16string_view valor) {
  const std::u16string_view resto = valor.substr(1);
  const size_t traco = resto.rfind(u'-');
  if (traco == std::u16string_view::npos) return InteiroDe16Bits(resto);
  return InteiroDe16Bits(resto.substr(0, traco)) && InteiroDe16Bits(resto.substr(traco + 1));
}

// The levels of the player's bar at which the set is in force and the scaling of `valor`
// overflows, as "from, to".
std::optional<std::pair<int, int>> NiveisQueEstouram(std::u16string_view valor, int conjunto) {
  std::optional<std::pair<int, int>> faixa;
  for (int nivel = 0; nivel <= kNivelMaximo; ++nivel) {
    if (ConjuntoDoNivel(nivel) != conjunto) continue;
    try {
      AjustarValorVariavel(valor, static_cast<int16_t>(nivel));
    } catch (const ErroExecucao&) {
      if (!faixa) faixa.emplace(nivel, nivel);
      faixa->second = nivel;
    }
  }
  return faixa;
}

Texto SemBrancosNasPontas(std::u16string_view t) {
  while (!t.empty() && (t.front() == u' ' || t.front() == u'\t')) t.remove_prefix(1);
  while (!t.empty() && (t.back() == u' ' || t.back() == u'\t')) t.remove_suffix(1);
  return Texto(t);
}

// An inactive rule whose flag reads "A" once its blanks are dropped, as "A " or " a".
bool PareceAtiva(const RegraLida& r) {
  return !r.Ativo() && Maiusculas(SemBrancosNasPontas(r.linhas[0].texto)) == u"A";
}

std::string Hora(DataHora d) { return FormatarIso(d).substr(11, 8); }

bool SoHoraDoDia(DataHora d) { return d.segundos >= 0 && d.segundos < kSegundosPorDia; }

// The piece after the last ";" (the whole value without one), which the engine compares only
// when it has two characters or more.
std::u16string_view PedacoFinal(std::u16string_view valor) {
  const size_t p = valor.rfind(u';');
  return p == std::u16string_view::npos ? valor : valor.substr(p + 1);
}

// The values one field of a collection holds, split and upper-cased as the engine compares them.
struct ValoresDoCampo {
  std::unordered_set<Texto> pedacos;
  std::vector<double> numeros;  // Vibe

  bool Tem(std::u16string_view maiusculo, double numero, bool vibe) const {
    if (!vibe) return pedacos.count(Texto(maiusculo)) > 0;
    return std::any_of(numeros.begin(), numeros.end(),
                       [&](double n) { return numero - 0.5 <= n && n <= numero + 0.5; });
  }
};

class Conferencia {
 public:
  Conferencia(SistemaArquivos& arquivos, fs::path caminhoApp, DataHora agora)
      : arquivos_(arquivos), caminhoApp_(std::move(caminhoApp)), agora_(agora) {}

  std::vector<Constatacao> Executar() {
    std::vector<fs::path> pastas{caminhoApp_};
    ConferirPlaylists(pastas);
    std::set<fs::path> vistas;
    for (const fs::path& pasta : pastas)
      if (vistas.insert(pasta.lexically_normal()).second) ConferirPasta(pasta);
    ConferirHistorico();
    std::stable_sort(lista_.begin(), lista_.end(), [](const Constatacao& a, const Constatacao& b) {
      if (a.arquivo != b.arquivo) return a.arquivo < b.arquivo;
      return a.linha.value_or(0) < b.linha.value_or(0);
    });
    return std::move(lista_);
  }

 private:
  void Relatar(NivelConstatacao nivel, const fs::path& arquivo, std::optional<long> linha,
               std::string mensagem) {
    lista_.push_back({nivel, Relativo(arquivo), linha, std::move(mensagem)});
  }
  void Erro(const fs::path& a, std::optional<long> l, std::string m) {
    Relatar(NivelConstatacao::Erro, a, l, std::move(m));
  }
  void Aviso(const fs::path& a, std::optional<long> l, std::string m) {
    Relatar(NivelConstatacao::Aviso, a, l, std::move(m));
  }

  std::string Relativo(const fs::path& arquivo) const {
    const fs::path r = arquivo.lexically_relative(caminhoApp_);
    return r.empty() ? arquivo.generic_string() : r.generic_string();
  }

  // ---- The playlist table ----

  void ConferirPlaylists(std::vector<fs::path>& pastas) {
    TabelaPlaylists t;
    LeituraPlaylists leitura;
    AbrirPlaylists(arquivos_, t, caminhoApp_, &leitura);
    const fs::path pl = caminhoApp_ / "pl.rdb";
    using Motivo = LeituraPlaylists::Motivo;
    for (const auto& [linha, motivo] : leitura.ignoradas)
      Aviso(pl, linha,
            std::string(
                motivo == Motivo::Curta ? "linha ignorada pelo motor: tem 18 caracteres ou menos"
                : motivo == Motivo::HoraInvalida ? "linha ignorada pelo motor: o início (colunas 1 "
                                                   "a 8) ou o fim (colunas 10 a 17) não é uma hora"
                                                 : "linha ignorada pelo motor: sem nome de pasta") +
                "; o formato é \"08:00:00 12:00:00 pasta\"");
    if (leitura.linhaDoExcesso > 0)
      Erro(pl, leitura.linhaDoExcesso,
           "31ª playlist: o motor guarda no máximo 30 e para de ler a tabela aqui; esta linha e as "
           "seguintes nunca valem");

    for (long i = 1; i < t.TotalPlaylists; ++i) {
      const long linha = leitura.linhasDasEntradas[static_cast<size_t>(i - 1)];
      const DataHora inicio = t.PlaylistInicio[i], fim = t.PlaylistFim[i];
      if (!SoHoraDoDia(inicio) || !SoHoraDoDia(fim)) {
        Erro(pl, linha,
             "o início ou o fim traz uma data em vez de só a hora: o período nunca vale e esta "
             "playlist nunca entra");
      } else if (inicio > fim) {
        Erro(
            pl, linha,
            "o início " + Hora(inicio) + " vem depois do fim " + Hora(fim) +
                ": o período não passa da meia-noite e esta playlist nunca entra; divida-a em duas "
                "linhas (" +
                Hora(inicio) + " a 23:59:59 e 00:00:00 a " + Hora(fim) + ")");
      } else {
        for (long j = t.TotalPlaylists - 1; j > i; --j) {
          if (t.PlaylistInicio[j] <= inicio && t.PlaylistFim[j] >= fim) {
            Erro(pl, linha,
                 "a linha " +
                     std::to_string(leitura.linhasDasEntradas[static_cast<size_t>(j - 1)]) +
                     " vem depois e cobre todo este período: ela sempre ganha e esta playlist "
                     "nunca entra");
            break;
          }
        }
      }
      std::error_code ec;
      if (!fs::is_directory(t.Playlists[i], ec)) {
        Erro(pl, linha,
             "a pasta \"" + Relativo(t.Playlists[i]) +
                 "\" não existe: quando esta playlist entra, a carga falha e o motor fica com o "
                 "acervo que já tinha");
        continue;
      }
      pastas.push_back(t.Playlists[i]);
    }
  }

  // ---- One playlist's folder ----

  struct RegistroLido {
    long linha = 0;
    int32_t codigo = 0;
    bool comMidia = false;
  };

  void ConferirPasta(const fs::path& pasta) {
    valores_.clear();
    auto acervo = std::make_unique<Acervo>();
    const bool carregou = ConferirAcervo(pasta, *acervo);
    std::set<int16_t> camposFiltrados;  // fields filtered by values of their own
    std::vector<std::pair<int, ConjuntoLido>> conjuntos;
    for (int n = 0; n <= 2; ++n) {
      const fs::path arquivo = pasta / ("lxie" + std::to_string(n) + ".rdb");
      if (!arquivos_.ArquivoExiste(arquivo)) {
        Erro(arquivo, std::nullopt,
             "arquivo de regras ausente: a carga da playlist para aqui, e este conjunto e os "
             "seguintes ficam "
             "com as regras de antes (ou nenhuma)");
        continue;
      }
      try {
        conjuntos.emplace_back(n, LerArquivoRegras(arquivo, n));
      } catch (const ErroNaLinha& e) {
        Erro(arquivo, e.Linha(),
             std::string("linha que o motor não decodifica (") + e.what() + "): a carga para aqui");
      } catch (const std::exception& e) {
        Erro(arquivo, std::nullopt, std::string("não se lê: ") + e.what());
      }
    }
    for (const auto& [n, c] : conjuntos) {
      const fs::path arquivo = pasta / ("lxie" + std::to_string(n) + ".rdb");
      for (const Problema& p : ConferirConjunto(c)) {
        // A switched-off rule does nothing on air; only a flag that looks switched on matters.
        if (p.numero > 0) {
          const RegraLida& r = c.regras[static_cast<size_t>(p.numero - 1)];
          if (!r.Ativo() && !PareceAtiva(r)) continue;
        }
        std::string m = p.mensagem;
        if (p.numero > 0)
          m = "regra " + std::to_string(p.numero) + " (id \"" + ParaUtf8(p.id) + "\"): " + m;
        Relatar(p.grave ? NivelConstatacao::Erro : NivelConstatacao::Aviso, arquivo, p.linha,
                std::move(m));
      }
      for (const RegraLida& r : c.regras) {
        if (!r.Ativo()) continue;
        const DescricaoRegra* d = ProcurarDescricao(r.Id());
        if (!d || !d->procedimento || !d->periodo.Existe()) continue;
        ConferirDataPassada(arquivo, r, *d);
        for (int v = 1; v <= kVariaveisPorRegra; ++v) {
          if (!d->filtros.Contem(v)) continue;
          const Texto& filtro = r.Var(v);
          const int16_t campo = IndiceCampo(filtro);
          if (filtro.empty() || TerminaComGeral(filtro) || campo == kCampoDesconhecido) continue;
          camposFiltrados.insert(campo);
          if (carregou && acervo->TotalMusicas > 0)
            ConferirFiltro(arquivo, r.linhaOrigem, v, filtro, campo, *acervo);
        }
      }
    }
    ConferirTabelasAgenda(pasta, camposFiltrados);
    if (carregou) ConferirValoresCurtos(pasta, *acervo, camposFiltrados);
  }

  // Loads the collection as the engine does, following the lines to name them.
  bool ConferirAcervo(const fs::path& pasta, Acervo& acervo) {
    const fs::path arquivo = pasta / "lxdb.rdb";
    if (!arquivos_.ArquivoExiste(arquivo)) {
      Erro(arquivo, std::nullopt,
           "acervo ausente: a carga desta playlist falha e o motor fica com o acervo que já tinha");
      return false;
    }
    acervo.CaminhoApp = caminhoApp_;
    acervo.PastaDados = pasta;
    long lidas = 0, slotAnterior = 0;
    registros_.clear();
    try {
      CarregarColecao(arquivos_, acervo, pasta, [&](long s) {
        if (++lidas % 33 != 0) return;
        const bool comMidia = s > slotAnterior;
        registros_.push_back({lidas - 32, acervo.AcervoCodigos[comMidia ? s - 1 : s], comMidia});
        slotAnterior = s;
      });
    } catch (const ErroExecucao& e) {
      const long linha = lidas + 1;
      std::string m;
      if (e.Codigo() == CodigoErro::ForaDoIntervalo)
        m = "o acervo já tem 4001 músicas com mídia, o máximo";
      else if (lidas % 33 == 0 && e.Codigo() != CodigoErro::ChamadaInvalida)
        m = "o código da música não é um número inteiro";
      else
        m = std::string("linha que o motor não decodifica (") + e.what() + ")";
      Erro(arquivo, linha,
           m + ": a carga do acervo para aqui e o motor fica com o acervo que já tinha");
      return false;
    }

    if (const long resto = lidas % 33; resto != 0)
      Aviso(arquivo, lidas - resto + 1,
            std::to_string(resto) +
                (resto == 1 ? " linha no fim não completa" : " linhas no fim não completam") +
                " uma música (cada uma tem 33 linhas): o motor as ignora");
    std::unordered_map<int32_t, long> primeira;
    std::vector<long> linhaDoSlot;
    for (const RegistroLido& r : registros_) {
      if (!r.comMidia) {
        Aviso(arquivo, r.linha,
              "sem o arquivo mre/" + NomeArquivoMusica(r.codigo) +
                  ": o motor descarta esta música sem aviso");
        continue;
      }
      linhaDoSlot.push_back(r.linha);
      conhecidos_.insert(r.codigo);
      const auto [it, nova] = primeira.emplace(r.codigo, r.linha);
      if (!nova)
        Aviso(arquivo, r.linha,
              "o código " + std::to_string(r.codigo) + " repete o da música da linha " +
                  std::to_string(it->second) +
                  ": as buscas por código acham só aquela, e as tocadas desta contam para ela; "
                  "dê a cada música um código só seu");
    }
    const long total = acervo.TotalMusicas;
    if (total == kTotalSlots)
      Erro(arquivo, linhaDoSlot[kUltimoSlot],
           "acervo cheio (4001 músicas): a música desta linha (código " +
               std::to_string(acervo.AcervoCodigos[kUltimoSlot]) +
               ") fica no lugar 4000, que as buscas por código também dão para \"ausente\"; as "
               "comparações de tags "
               "não a veem e, quando uma regra tira as outras, ela sobra sozinha vez após vez; "
               "deixe no máximo "
               "4000 músicas com mídia");
    if (total < kMinimoMusicas)
      Erro(arquivo, std::nullopt,
           "só " + std::to_string(total) + (total == 1 ? " música" : " músicas") +
               " com mídia (o motor precisa de 51): enquanto esta playlist vale, nenhuma música é "
               "escolhida e o "
               "motor espera um minuto a cada tentativa");
    linhaDoSlot_ = std::move(linhaDoSlot);
    return true;
  }

  void ConferirDataPassada(const fs::path& arquivo, const RegraLida& r, const DescricaoRegra& d) {
    const Texto& data = r.Var(d.periodo.data);
    if (data.empty()) return;
    const auto valor = ConverterDataHora(data);
    if (!valor || SoHoraDoDia(*valor) || SoData(*valor) >= SoData(agora_)) return;
    Aviso(arquivo, r.linhaOrigem,
          "regra " + std::to_string(r.numero) + " (id \"" + ParaUtf8(r.Id()) +
              "\"): " + Var(d.periodo.data, data) +
              ": a data já passou; a regra só vale nesse dia e não vale mais");
  }

  const ValoresDoCampo& Valores(const Acervo& acervo, int16_t campo) {
    auto [it, novo] = valores_.try_emplace(campo);
    if (!novo) return it->second;
    PedacosTexto p;
    for (long s = 0; s < acervo.TotalMusicas; ++s) {
      p.Preparar(acervo.AcervoTags(s, campo), TipoDoCampo(campo));
      for (const Pedaco& x : p.Pedacos()) {
        if (campo == kCampoVibe)
          it->second.numeros.push_back(x.numero);
        else
          it->second.pedacos.emplace(p.Vista(x));
      }
    }
    return it->second;
  }

  void ConferirFiltro(const fs::path& arquivo, long linha, int v, const Texto& filtro,
                      int16_t campo, const Acervo& acervo) {
    const Texto valor = ValorDoFiltro(filtro);
    const ValoresDoCampo& valores = Valores(acervo, campo);
    // The pieces as the engine splits them; shown as written, except artists, shown upper-cased.
    std::vector<std::pair<Texto, Texto>> pedacos;  // as written, upper-cased
    if (campo == 0) {
      PedacosTexto p;
      p.Preparar(valor, TipoDoCampo(campo));
      for (const Pedaco& x : p.Pedacos()) pedacos.emplace_back(p.Vista(x), p.Vista(x));
    } else {
      size_t inicio = 0;
      for (size_t fim; (fim = valor.find(u';', inicio)) != Texto::npos; inicio = fim + 1)
        pedacos.emplace_back(valor.substr(inicio, fim - inicio), Texto());
      if (valor.size() - inicio >= 2) pedacos.emplace_back(valor.substr(inicio), Texto());
      for (auto& [escrito, maiusculo] : pedacos) maiusculo = Maiusculas(escrito);
    }
    std::string ausentes;
    for (const auto& [escrito, maiusculo] : pedacos) {
      if (escrito.empty() || valores.Tem(maiusculo, ValorNumerico(escrito), campo == kCampoVibe))
        continue;
      ausentes += (ausentes.empty() ? "\"" : " nem \"") + ParaUtf8(escrito) + "\"";
    }
    const std::string nomeCampo = ParaUtf8(kNomesCampos[static_cast<size_t>(campo)]);
    if (!ausentes.empty())
      Aviso(arquivo, linha,
            Var(v, filtro) + ": nenhuma música desta pasta tem " + nomeCampo + " " + ausentes +
                " (o motor compara cada valor inteiro, sem tirar espaços): essa parte do filtro "
                "nunca acha música");
    if (campo != 0 && PedacoFinal(valor).size() == 1)
      Aviso(arquivo, linha,
            Var(v, filtro) + ": o valor \"" + ParaUtf8(PedacoFinal(valor)) +
                "\" tem um só caractere, e o motor nunca compara o último valor de um filtro "
                "quando ele é tão "
                "curto: nenhuma música passa por ele");
  }

  void ConferirTabelasAgenda(const fs::path& pasta, std::set<int16_t>& camposFiltrados) {
    auto agenda = std::make_unique<TabelasAgenda>();
    for (long lugar = 0; lugar < kLugaresAgenda; ++lugar) {
      const fs::path arquivo = ArquivoTabelaAgenda(pasta, lugar);
      if (!arquivos_.ArquivoExiste(arquivo)) continue;
      try {
        CarregarTabelaAgenda(arquivos_, *agenda, lugar, arquivo);
      } catch (const ErroNaLinha& e) {
        Erro(arquivo, e.Linha(),
             std::string("o motor para de ler a tabela aqui (") + e.what() +
                 "): o resto dela fica vazio");
      } catch (const std::exception& e) {
        Erro(arquivo, std::nullopt, std::string("não se lê: ") + e.what());
      }
    }
    for (long lugar = 0; lugar < kLugaresAgenda; ++lugar)
      for (long slot = 0; slot < kSlotsAgenda; ++slot)
        for (long k = 0; k < kFiltrosAgenda; ++k) {
          const Texto& filtro = agenda->TabelasGrade(lugar, slot, k);
          const int16_t campo = IndiceCampo(filtro);
          if (!filtro.empty() && !TerminaComGeral(filtro) && campo != kCampoDesconhecido)
            camposFiltrados.insert(campo);
        }
  }

  // Songs whose value of a filtered field ends in a piece of one character, which no filter finds.
  void ConferirValoresCurtos(const fs::path& pasta, const Acervo& acervo,
                             const std::set<int16_t>& campos) {
    for (int16_t campo : campos) {
      if (campo == 0) continue;  // artists split by words, not by ";"
      long quantas = 0, primeira = -1;
      for (long s = 0; s < acervo.TotalMusicas; ++s)
        if (PedacoFinal(acervo.AcervoTags(s, campo)).size() == 1 && quantas++ == 0) primeira = s;
      if (quantas == 0) continue;
      const std::string nome = ParaUtf8(kNomesCampos[static_cast<size_t>(campo)]);
      Aviso(pasta / "lxdb.rdb", linhaDoSlot_[static_cast<size_t>(primeira)],
            std::to_string(quantas) + (quantas == 1 ? " música tem" : " músicas têm") + " em " +
                nome + " um valor de um só caractere (como \"" +
                ParaUtf8(PedacoFinal(acervo.AcervoTags(primeira, campo))) +
                "\", nesta linha): o motor nunca compara valores assim, e os filtros de " + nome +
                " das regras não acham essas músicas por ele");
    }
  }

  // ---- The log database ----

  void ConferirHistorico() {
    const bool mdb = arquivos_.ArquivoExiste(caminhoApp_ / kArquivoLogsMdb);
    if (!mdb && !arquivos_.ArquivoExiste(caminhoApp_ / kArquivoLogsSqlite))
      return;  // a new station
    const fs::path arquivo = caminhoApp_ / (mdb ? kArquivoLogsMdb : kArquivoLogsSqlite);
    const std::string semHistorico =
        ": o motor segue sem o histórico dele, e as regras que olham as tocadas não veem nada";
    // With no writer's -wal beside it the file is read as immutable, which creates no file.
    std::unique_ptr<FonteLogs> fonte =
        mdb ? FonteLogsDaPasta(caminhoApp_)
            : std::make_unique<FonteLogsSqlite>(
                  arquivo, !arquivos_.ArquivoExiste(fs::path(arquivo.string() + "-wal")));
    try {
      fonte->Abrir();
    } catch (const std::exception& e) {
      Erro(arquivo, std::nullopt,
           std::string("o motor não consegue abrir o banco de log (") + e.what() + ")" +
               semHistorico);
      return;
    }
    const std::pair<ConsultaLogs, const char*> consultas[] = {
        {ConsultaLogs::Tocadas, "das tocadas"},
        {ConsultaLogs::Tipo4, "das marcas tipo 4"},
        {ConsultaLogs::Tipo5, "das marcas tipo 5"}};
    std::map<int32_t, long> desconhecidos;
    long registros = 0;
    for (const auto& [consulta, nome] : consultas) {
      try {
        auto cursor = fonte->Consultar(consulta);
        LinhaLogs linha;
        while (cursor->Proxima(linha)) {
          const double codigo = NumeroDoValor(linha[1]);
          if (codigo < INT32_MIN || codigo > INT32_MAX ||
              conhecidos_.count(static_cast<int32_t>(codigo)))
            continue;
          ++desconhecidos[static_cast<int32_t>(codigo)];
          ++registros;
        }
      } catch (const std::exception& e) {
        Erro(arquivo, std::nullopt,
             std::string("a consulta ") + nome + " falha (" + e.what() + ")" + semHistorico);
        return;
      }
    }
    if (desconhecidos.empty() || conhecidos_.empty()) return;
    std::string exemplos;
    int n = 0;
    for (const auto& [codigo, vezes] : desconhecidos) {
      if (n++ == 5) {
        exemplos += "…";
        break;
      }
      exemplos += (exemplos.empty() ? "" : ", ") + std::to_string(codigo);
    }
    Aviso(arquivo, std::nullopt,
          std::to_string(registros) + (registros == 1 ? " registro" : " registros") +
              " do log que o motor lê " + (registros == 1 ? "é" : "são") + " de " +
              std::to_string(desconhecidos.size()) +
              (desconhecidos.size() == 1 ? " código" : " códigos") +
              " que nenhum acervo da estação tem (" + exemplos +
              "): as regras não os ligam a música nenhuma; se essas músicas ainda tocam, falta "
              "pô-las no acervo");
  }

  SistemaArquivos& arquivos_;
  fs::path caminhoApp_;
  DataHora agora_;
  std::vector<Constatacao> lista_;
  std::vector<RegistroLido> registros_;
  std::vector<long> linhaDoSlot_;
  std::unordered_set<int32_t> conhecidos_;  // codes of every collection loaded
  std::unordered_map<int16_t, ValoresDoCampo> valores_;
};

}  // namespace

const char* NomeDoNivel(NivelConstatacao nivel) {
  return nivel == NivelConstatacao::Erro ? "erro" : "aviso";
}

std::string FormatarConstatacao(const Constatacao& c) {
  std::string t = std::string(NomeDoNivel(c.nivel)) + ": " + c.arquivo;
  if (c.linha) t += ":" + std::to_string(*c.linha);
  return t + ": " + c.mensagem;
}

bool TemErro(const std::vector<Constatacao>& constatacoes) {
  return std::any_of(constatacoes.begin(), constatacoes.end(),
                     [](const Constatacao& c) { return c.nivel == NivelConstatacao::Erro; });
}

std::vector<Constatacao> ConferirEstacao(SistemaArquivos& arquivos, const fs::path& caminhoApp,
                                         DataHora agora) {
  try {
    return Conferencia(arquivos, caminhoApp, agora).Executar();
  } catch (const std::exception& e) {
    // A check that cannot finish still says so rather than pass for a clean station.
    return {{NivelConstatacao::Erro, ".", std::nullopt,
             std::string("a conferência parou: ") + e.what()}};
  }
}

std::vector<Problema> ConferirConjunto(const ConjuntoLido& c) {
  std::vector<Problema> problemas;
  for (const RegraLida& r : c.regras) {
    auto Relatar = [&](bool grave, std::string mensagem) {
      problemas.push_back(
          {c.conjunto, r.numero, r.Id(), grave, std::move(mensagem), r.linhaOrigem});
    };
    if (r.numero == kRegrasPorConjunto + 1)
      Relatar(true,
              "o conjunto comporta 256 regras: a carga das regras para aqui e esta e as seguintes "
              "não existem para o motor");
    const BuscaRegra busca = ProcurarRegra(r.Id());
    if (!busca.conhecida)
      Relatar(true, "número de regra desconhecido: o motor a registra sem aplicar nada");
    else if (!busca.procedimento)
      Relatar(false, "regra sem procedimento: sempre registrada como não realizada");

    if (PareceAtiva(r))
      Relatar(
          true,
          "a marca de ativa \"" + ParaUtf8(r.linhas[0].texto) +
              "\" parece ativa, mas o motor só aceita \"A\" sem espaços: a regra fica desligada");

    for (int n = 1; n <= 10; ++n) {
      const Texto& v = r.Var(n);
      if (v.empty() || v[0] != u'*') continue;
      if (!FaixaValida(v)) {
        Relatar(true, Var(n, v) + ": valor por nível (*a-b) que não se lê como números inteiros");
      } else if (const auto niveis = NiveisQueEstouram(v, c.conjunto)) {
        Relatar(true, Var(n, v) + ": nos níveis " + std::to_string(niveis->first) + " a " +
                          std::to_string(niveis->second) +
                          " a conta do ajuste por nível estoura e a regra não é aplicada; aproxime "
                          "os dois números "
                          "(a diferença deve caber em 936)");
      }
    }

    // The rule's description says which variables are filters and which its period; a number
    // that is not performed reads none.
    const DescricaoRegra* descricao = ProcurarDescricao(r.Id());
    if (!descricao || !descricao->periodo.Existe()) continue;
    for (int n = 1; n <= kVariaveisPorRegra; ++n) {
      if (!descricao->filtros.Contem(n)) continue;
      const Texto& filtro = r.Var(n);
      if (filtro.empty() || TerminaComGeral(filtro)) continue;
      if (IndiceCampo(filtro) == kCampoDesconhecido)
        Relatar(true, Var(n, filtro) +
                          ": filtro sem campo conhecido (use Campo:valor, como Genero:Rock)");
    }

    const PeriodoRegra& periodo = descricao->periodo;
    const int d = periodo.data;
    const Texto& data = r.Var(d);
    if (!data.empty()) {
      const auto valor = ConverterDataHora(data);
      if (!valor)
        Relatar(true, Var(d, data) + ": data do período inválida");
      else if (SoHoraDoDia(*valor))
        Relatar(true, Var(d, data) + ": data do período sem dia: a regra nunca vale");
    }
    std::optional<DataHora> horas[2];
    const int variaveisDasHoras[2] = {periodo.inicio, periodo.fim};
    for (int k = 0; k < 2; ++k) {
      const int n = variaveisDasHoras[k];
      const Texto& hora = r.Var(n);
      if (hora.empty()) continue;
      const auto valor = ConverterDataHora(hora);
      if (!valor)
        Relatar(true, Var(n, hora) + ": hora do período inválida");
      else if (!SoHoraDoDia(*valor))
        Relatar(true, Var(n, hora) + ": hora do período com data: a regra nunca vale");
      else
        horas[k] = valor;
    }
    if (r.Var(periodo.inicio).empty() != r.Var(periodo.fim).empty())
      Relatar(false, "período com só uma das horas: o horário é ignorado");
    else if (horas[0] && horas[1] && *horas[0] > *horas[1])
      Relatar(false,
              "hora inicial depois da final: o período não passa da meia-noite e nunca vale");
  }
  if (!c.incompletas.empty())
    problemas.push_back({c.conjunto,
                         0,
                         {},
                         false,
                         c.incompletas.size() == 1
                             ? "1 linha no fim não forma uma regra: o motor a ignora"
                             : std::to_string(c.incompletas.size()) +
                                   " linhas no fim não formam uma regra: o motor as ignora",
                         static_cast<int>(c.regras.size() * kLinhasPorRegra + 1)});
  return problemas;
}

}  // namespace lumavox
