#include "engine/registro.h"

#include "base/numeros.h"
#include "state/estado.h"

namespace lumavox {

namespace {

Texto Num(long long n) { return DeUtf8(std::to_string(n)); }
std::string Chave(const char* prefixo, long long a) { return prefixo + std::to_string(a); }

const char16_t* Rotulo(TipoLog tipo) {
  switch (tipo) {
    case TipoLog::Negada: return u"REGRA NEGADA: ";
    case TipoLog::NaoRealizada: return u"REGRA SCRIPT NÃO REALIZADO: ";
    case TipoLog::Erro: return u"REGRA COM ERRO: ";
    default: return u" -> REGRA: ";
  }
}

NoLog Entrada(DataHora momento, std::string chave, Texto texto, TipoLog tipo) {
  NoLog no;
  no.chave = std::move(chave);
  no.texto = std::move(texto);
  no.tipo = tipo;
  no.momento = momento;
  return no;
}

DataHora Agora(const Estado& e) { return e.ambiente ? e.ambiente->Agora() : DataHora{}; }

NoLog& Pai(Estado& e) {
  // Entries written before any selection started still need a parent to hang from.
  if (!e.log.Atual()) e.log.NovaSelecao(Entrada(Agora(e), Chave("P", e.selecao.MusicasEscolhidas), u"", TipoLog::Inicio));
  return *e.log.Atual();
}

}  // namespace

Texto MontarDescricao(const Estado& e) {
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  const Texto& d = r.Descricao;
  Texto saida;
  saida.reserve(d.size() + 32);
  for (size_t i = 0; i < d.size();) {
    // Text up to the next "X" is copied as it is; only an "X" can start a variable.
    const size_t x = d.find(u'X', i);
    if (x == Texto::npos) {
      saida.append(d, i, Texto::npos);
      break;
    }
    saida.append(d, i, x - i);
    i = x;
    if (d.compare(i, 3, u"X10") == 0) {
      const Texto& v = r.Valor(10);
      saida += v.empty() ? Texto(u"X10") : v;
      i += 3;
    } else if (d[i] == u'X' && i + 1 < d.size() && d[i + 1] >= u'1' && d[i + 1] <= u'9') {
      const Texto& v = r.Valor(d[i + 1] - u'0');
      saida += v.empty() ? d.substr(i, 2) : v;
      i += 2;
    } else {
      saida.push_back(d[i]);
      ++i;
    }
  }
  return saida;
}

void RegistrarLog(Estado& e, TipoLog tipo, int32_t valor, int16_t contagem, const std::string& erro) {
  const Selecao& s = e.selecao;
  const Acervo& a = e.acervo();
  const long long n = s.MusicasEscolhidas;
  const DataHora agora = Agora(e);
  switch (tipo) {
    case TipoLog::Inicio: {
      Texto texto = u"NOVA SELEÇÃO " + Num(n) + u" - " + DeUtf8(FormatarIso(s.DataHoraReferencia)) +
                    u" - NIVEL " + Num(e.execucao.NivelAtual);
      e.log.NovaSelecao(Entrada(agora, Chave("P", n), std::move(texto), tipo));
      return;
    }
    case TipoLog::Restantes: {
      const long restantes = a.TotalMusicas - s.MusicasExcluidas;
      NoLog no = Entrada(agora, Chave("M", n), u"MUSICAS RESTANTES: " + Num(restantes) + u" / " + Num(a.TotalMusicas), tipo);
      // Up to TotalMusicas inclusive: the same slots the draw walks.
      const long ultimo = a.TotalMusicas < kUltimoSlot ? a.TotalMusicas : kUltimoSlot;
      no.musicas.reserve(static_cast<size_t>(restantes > 0 ? restantes : 0));
      for (long i = 0; i <= ultimo; ++i)
        if (s.MusicaCandidata.SemVerificar(i))
          no.musicas.push_back({a.AcervoCodigos.SemVerificar(i), static_cast<int16_t>(i)});
      Pai(e).filhos.push_back(std::move(no));
      return;
    }
    case TipoLog::EntregaFalhou: {
      NoLog no = Entrada(agora, Chave("F", n), u"ENTREGA FALHOU: " + Num(valor) + u" - " + DeUtf8(erro), tipo);
      no.codigo = valor;
      no.erro = erro;
      Pai(e).filhos.push_back(std::move(no));
      return;
    }
    case TipoLog::Escolhida: {
      NoLog no = Entrada(agora, Chave("E", n), Num(n) + u" / " + Num(a.TotalMusicas - s.MusicasExcluidas) + u" -> " + Num(valor), tipo);
      no.codigo = valor;
      Pai(e).filhos.push_back(std::move(no));
      return;
    }
    default: break;
  }

  // Rule entries.
  const RegrasCatalogo& r = e.catalogo.RegraAtual;
  const std::string sufixo = std::to_string(n) + "_" + std::to_string(s.RegraNumero);
  // The marker between the number and the label is always empty.
  Texto texto = Num(s.RegraNumero) + Texto() + Rotulo(tipo) + r.ID + u" - " + u" (" + Num(s.NivelRitmo) + u"," +
                Num(contagem) + u"," + Num(a.TotalMusicas) + u") - " + MontarDescricao(e);
  if (tipo == TipoLog::Erro) texto += u" - " + DeUtf8(erro);
  NoLog no = Entrada(agora, "R" + sufixo, std::move(texto), tipo);
  no.id = r.ID;
  no.regraNumero = s.RegraNumero;
  no.erro = erro;
  if (tipo == TipoLog::Aplicada) {
    ParaCadaSoNoPrimeiro(&s.MusicaCandidata.SemVerificar(0), &s.MusicaMantida.SemVerificar(0), kTotalSlots,
                         [&](long i) { no.musicas.push_back({a.AcervoCodigos.SemVerificar(i), static_cast<int16_t>(i)}); });
  }
  Pai(e).filhos.push_back(std::move(no));
}

}  // namespace lumavox
