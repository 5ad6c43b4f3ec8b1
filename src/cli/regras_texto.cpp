#include "cli/regras_texto.h"

#include <toml++/toml.h>

#include <cstdio>
#include <map>
#include <stdexcept>

#include "base/arquivos.h"
#include "base/datas.h"
#include "base/erro.h"
#include "base/numeros.h"
#include "rules/descricoes.h"
#include "rules/regras.h"
#include "rules/tags.h"
#include "stores/codec.h"

namespace lumavox::cli {

const std::array<std::string_view, kLinhasPorRegra> kChavesLinhas{
    "ativo", "id", "descricao", "exemplo", "var1", "var2", "var3",
    "var4",  "var5", "var6",   "var7",    "var8", "var9", "var10"};

bool RegraLida::Ativo() const { return Maiusculas(linhas[0].texto) == u"A"; }

namespace {

// The engine drops one CR before the LF; a line whose CR the file's CRLF ending already
// accounts for is decoded as it stands.
Texto EntradaDoDecodificador(const Texto& bruto, bool crDoFimDeLinha) {
  if (!crDoFimDeLinha && !bruto.empty() && bruto.back() == u'\r') return bruto.substr(0, bruto.size() - 1);
  return bruto;
}

Texto CodificarComPrefixo(const LinhaCodificada& l) {
  Texto linha = CodificarLinha(l.texto);
  linha[0] = l.prefixo;
  return linha;
}

// The line as it was written when that still decodes to the text (an edited text is
// encoded afresh), else the text encoded with its leading character.
Texto Escrita(const LinhaCodificada& l, bool crDoFimDeLinha) {
  if (l.bruto) {
    try {
      if (DecodificarLinha(EntradaDoDecodificador(*l.bruto, crDoFimDeLinha)) == l.texto) return *l.bruto;
    } catch (const ErroExecucao&) {
    }
  }
  return CodificarComPrefixo(l);
}

LinhaCodificada LerLinha(const Texto& bruto, bool crDoFimDeLinha) {
  LinhaCodificada l;
  l.texto = DecodificarLinha(EntradaDoDecodificador(bruto, crDoFimDeLinha));
  if (!bruto.empty()) l.prefixo = bruto[0];
  if (CodificarComPrefixo(l) != bruto) l.bruto = bruto;
  return l;
}

bool SoAscii(std::string_view bytes) {
  for (char c : bytes)
    if (static_cast<unsigned char>(c) >= 0x80) return false;
  return true;
}

// ---- TOML writing ----

std::string Aspas(std::u16string_view texto) {
  std::string saida = "\"";
  for (char c : ParaUtf8(texto)) {
    const auto u = static_cast<unsigned char>(c);
    switch (c) {
      case '"': saida += "\\\""; break;
      case '\\': saida += "\\\\"; break;
      case '\n': saida += "\\n"; break;
      case '\r': saida += "\\r"; break;
      case '\t': saida += "\\t"; break;
      default:
        if (u < 0x20 || u == 0x7f) {
          char escape[8];
          std::snprintf(escape, sizeof escape, "\\u%04X", u);
          saida += escape;
        } else {
          saida += c;
        }
    }
  }
  return saida + "\"";
}

// ---- TOML reading ----

[[noreturn]] void ErroNo(const std::string& origem, const toml::node& no, const std::string& causa) {
  throw std::runtime_error(origem + ":" + std::to_string(no.source().begin.line) + ": " + causa);
}

Texto TextoDe(const std::string& origem, const toml::node& no, std::string_view chave) {
  const auto* s = no.as_string();
  if (!s) ErroNo(origem, no, std::string(chave) + " deve ser um texto entre aspas");
  return DeUtf8(s->get());
}

int IndiceDaChave(std::string_view chave) {
  for (size_t i = 0; i < kChavesLinhas.size(); ++i)
    if (kChavesLinhas[i] == chave) return static_cast<int>(i);
  return -1;
}

RegraLida LerRegraToml(const std::string& origem, const toml::table& t, int numero) {
  RegraLida r;
  r.numero = numero;
  r.linhaOrigem = static_cast<int>(t.source().begin.line);
  std::optional<bool> ativo;
  std::optional<Texto> ativoTexto;
  bool temId = false;
  for (const auto& [chave, no] : t) {
    const std::string_view k = chave.str();
    const int indice = IndiceDaChave(k);
    if (k == "ativo") {
      if (!no.is_boolean()) ErroNo(origem, no, "ativo deve ser true ou false");
      ativo = no.as_boolean()->get();
    } else if (indice > 0) {
      r.linhas[static_cast<size_t>(indice)].texto = TextoDe(origem, no, k);
      temId |= indice == 1;
    } else if (k == "ativo_texto") {
      ativoTexto = TextoDe(origem, no, k);
    } else if (k == "prefixo" || k == "codificado") {
      const toml::table* sub = no.as_table();
      if (!sub) ErroNo(origem, no, std::string(k) + " deve ser uma tabela, como { id = \"1\" }");
      for (const auto& [linha, valor] : *sub) {
        const int i = IndiceDaChave(linha.str());
        if (i < 0) ErroNo(origem, valor, "linha desconhecida em " + std::string(k) + ": " + std::string(linha.str()));
        const Texto v = TextoDe(origem, valor, linha.str());
        LinhaCodificada& destino = r.linhas[static_cast<size_t>(i)];
        if (k == "codificado") {
          destino.bruto = v;
        } else {
          if (v.size() != 1) ErroNo(origem, valor, "prefixo deve ter um caractere");
          destino.prefixo = v[0];
        }
      }
    } else {
      ErroNo(origem, no, "chave desconhecida na regra: " + std::string(k));
    }
  }
  if (!ativo) ErroNo(origem, t, "regra " + std::to_string(numero) + " sem ativo");
  if (!temId) ErroNo(origem, t, "regra " + std::to_string(numero) + " sem id");
  // A station's own spelling of the flag stays while it says the same thing.
  const bool textoConcorda = ativoTexto && (Maiusculas(*ativoTexto) == u"A") == *ativo;
  r.linhas[0].texto = textoConcorda ? *ativoTexto : (*ativo ? u"A" : u"I");
  // An edited line loses its odd encoding but keeps the leading character it had.
  for (LinhaCodificada& l : r.linhas)
    if (l.bruto && !l.bruto->empty() && l.prefixo == u'0') l.prefixo = (*l.bruto)[0];
  return r;
}

ConjuntoLido LerConjuntoToml(const std::string& origem, const toml::table& t, int conjunto) {
  ConjuntoLido c;
  c.conjunto = conjunto;
  for (const auto& [chave, no] : t) {
    const std::string_view k = chave.str();
    if (k == "fim_de_linha") {
      const Texto v = TextoDe(origem, no, k);
      if (v != u"CRLF" && v != u"LF") ErroNo(origem, no, "fim_de_linha deve ser \"CRLF\" ou \"LF\"");
      c.crlf = v == u"CRLF";
    } else if (k == "ultima_linha_sem_fim") {
      if (!no.is_boolean()) ErroNo(origem, no, "ultima_linha_sem_fim deve ser true ou false");
      c.ultimaSemFim = no.as_boolean()->get();
    } else if (k == "linhas_incompletas") {
      const toml::array* a = no.as_array();
      if (!a) ErroNo(origem, no, "linhas_incompletas deve ser uma lista de textos");
      for (const toml::node& linha : *a) c.incompletas.push_back(TextoDe(origem, linha, k));
      if (c.incompletas.size() >= kLinhasPorRegra)
        ErroNo(origem, no, "linhas_incompletas deve ter menos de 14 linhas");
    } else if (k == "regra") {
      const toml::array* a = no.as_array();
      if (!a || !a->is_array_of_tables()) ErroNo(origem, no, "regra deve ser uma lista de tabelas [[" +
                                                                 std::string("conjunto") + std::to_string(conjunto) + ".regra]]");
      for (const toml::node& regra : *a) {
        if (c.regras.size() >= static_cast<size_t>(kRegrasPorConjunto))
          ErroNo(origem, regra, "mais de 256 regras no conjunto " + std::to_string(conjunto));
        c.regras.push_back(LerRegraToml(origem, *regra.as_table(), static_cast<int>(c.regras.size()) + 1));
      }
    } else {
      ErroNo(origem, no, "chave desconhecida no conjunto: " + std::string(k));
    }
  }
  return c;
}

}  // namespace

ConjuntoLido LerArquivoRegras(const fs::path& arquivo, int conjunto) {
  const std::string bytes = LerBytes(arquivo);
  const Texto texto = SoAscii(bytes) ? Texto(bytes.begin(), bytes.end()) : DecodificarBytes(bytes);

  std::vector<Texto> brutas;
  bool terminada = true;
  for (size_t inicio = 0; inicio < texto.size();) {
    const size_t fim = texto.find(u'\n', inicio);
    if (fim == Texto::npos) {
      brutas.push_back(texto.substr(inicio));
      terminada = false;
      break;
    }
    brutas.push_back(texto.substr(inicio, fim - inicio));
    inicio = fim + 1;
  }
  ConjuntoLido c;
  c.conjunto = conjunto;
  c.ultimaSemFim = !terminada;
  const size_t terminadas = brutas.size() - (terminada ? 0 : 1);
  // CRLF when every ended line ends so; a lone LF line in such a file keeps its own form.
  bool todasCr = true;
  for (size_t i = 0; i < terminadas; ++i) todasCr &= !brutas[i].empty() && brutas[i].back() == u'\r';
  c.crlf = todasCr;

  const size_t completas = brutas.size() / kLinhasPorRegra * kLinhasPorRegra;
  for (size_t i = 0; i < brutas.size(); ++i) {
    const bool crDoFim = c.crlf && i < terminadas;
    Texto bruto = brutas[i];
    if (crDoFim) bruto.pop_back();
    LinhaCodificada linha;
    try {
      linha = LerLinha(bruto, crDoFim);
    } catch (const ErroExecucao& e) {
      throw ErroExecucao(e.Codigo(), arquivo.filename().string() + " linha " + std::to_string(i + 1) + ": " + e.what());
    }
    if (i >= completas) {
      c.incompletas.push_back(std::move(bruto));
      continue;
    }
    if (i % kLinhasPorRegra == 0) {
      c.regras.emplace_back();
      c.regras.back().numero = static_cast<int>(c.regras.size());
      c.regras.back().linhaOrigem = static_cast<int>(i + 1);
    }
    c.regras.back().linhas[i % kLinhasPorRegra] = std::move(linha);
  }
  return c;
}

std::string BytesDoConjunto(const ConjuntoLido& c) {
  const size_t linhasDeRegras = c.regras.size() * kLinhasPorRegra;
  const size_t total = linhasDeRegras + c.incompletas.size();
  std::string bytes;
  for (size_t i = 0; i < total; ++i) {
    const bool terminada = !(c.ultimaSemFim && i + 1 == total);
    const Texto linha = i < linhasDeRegras
                            ? Escrita(c.regras[i / kLinhasPorRegra].linhas[i % kLinhasPorRegra], c.crlf && terminada)
                            : c.incompletas[i - linhasDeRegras];
    bytes += ParaUtf8(linha);
    if (terminada) bytes += c.crlf ? "\r\n" : "\n";
  }
  return bytes;
}

void GravarArquivoRegras(const fs::path& pasta, const ConjuntoLido& c) {
  const fs::path destino = pasta / ("lxie" + std::to_string(c.conjunto) + ".rdb");
  const fs::path temporario = pasta / ("lxie" + std::to_string(c.conjunto) + ".rdb.novo");
  EscreverBytes(temporario, BytesDoConjunto(c));
  std::error_code ec;
  fs::rename(temporario, destino, ec);
  if (ec) {
    fs::remove(temporario, ec);
    throw ErroExecucao(CodigoErro::PermissaoNegada, "não foi possível gravar " + destino.string());
  }
}

std::string CabecalhoToml() {
  return "# Regras da estação: uma tabela [[conjuntoN.regra]] por regra, na ordem do arquivo\n"
         "# lxieN.rdb (conjunto 1: nível até 35; 0: 36 a 64; 2: 65 ou mais).\n"
         "# ativo, id, descricao, exemplo e var1..var10 são as 14 linhas da regra.\n"
         "# ativo_texto, prefixo e codificado guardam a forma exata de linhas fora do padrão;\n"
         "# ao editar o texto de uma linha, a forma guardada dela é deixada de lado.\n";
}

std::string ConjuntoParaToml(const ConjuntoLido& c) {
  const std::string nome = "conjunto" + std::to_string(c.conjunto);
  std::string t = "\n[" + nome + "]\n";
  t += std::string("fim_de_linha = \"") + (c.crlf ? "CRLF" : "LF") + "\"\n";
  if (c.ultimaSemFim) t += "ultima_linha_sem_fim = true\n";
  if (!c.incompletas.empty()) {
    t += "# Linhas de uma regra incompleta no fim do arquivo: o motor não as aplica.\n";
    t += "linhas_incompletas = [\n";
    for (const Texto& l : c.incompletas) t += "  " + Aspas(l) + ",\n";
    t += "]\n";
  }
  for (const RegraLida& r : c.regras) {
    t += "\n# regra " + std::to_string(r.numero) + "\n[[" + nome + ".regra]]\n";
    t += std::string("ativo = ") + (r.Ativo() ? "true" : "false") + "\n";
    for (size_t i = 1; i < kLinhasPorRegra; ++i)
      t += std::string(kChavesLinhas[i]) + " = " + Aspas(r.linhas[i].texto) + "\n";
    const Texto& textoAtivo = r.linhas[0].texto;
    if (textoAtivo != u"A" && textoAtivo != u"I") t += "ativo_texto = " + Aspas(textoAtivo) + "\n";
    std::string prefixos, codificados;
    for (size_t i = 0; i < kLinhasPorRegra; ++i) {
      const LinhaCodificada& l = r.linhas[i];
      const std::string chave(kChavesLinhas[i]);
      if (l.bruto) {
        codificados += (codificados.empty() ? "" : ", ") + chave + " = " + Aspas(*l.bruto);
      } else if (l.prefixo != u'0') {
        prefixos += (prefixos.empty() ? "" : ", ") + chave + " = " + Aspas(Texto(1, l.prefixo));
      }
    }
    if (!prefixos.empty()) t += "prefixo = { " + prefixos + " }\n";
    if (!codificados.empty()) t += "codificado = { " + codificados + " }\n";
  }
  return t;
}

std::vector<ConjuntoLido> LerTomlRegras(std::string_view texto, const std::string& origem) {
  toml::table doc;
  try {
    doc = toml::parse(texto, origem);
  } catch (const toml::parse_error& e) {
    throw std::runtime_error(origem + ":" + std::to_string(e.source().begin.line) + ": " +
                             std::string(e.description()));
  }
  std::map<int, ConjuntoLido> conjuntos;
  for (const auto& [chave, no] : doc) {
    const std::string_view k = chave.str();
    int conjunto = -1;
    if (k == "conjunto0") conjunto = 0;
    if (k == "conjunto1") conjunto = 1;
    if (k == "conjunto2") conjunto = 2;
    if (conjunto < 0) ErroNo(origem, no, "chave desconhecida: " + std::string(k) + " (use conjunto0, conjunto1, conjunto2)");
    if (!no.is_table()) ErroNo(origem, no, std::string(k) + " deve ser uma tabela [" + std::string(k) + "]");
    conjuntos[conjunto] = LerConjuntoToml(origem, *no.as_table(), conjunto);
  }
  std::vector<ConjuntoLido> lista;
  for (auto& [n, c] : conjuntos) lista.push_back(std::move(c));
  return lista;
}

// ---- The check ----

namespace {

std::string Var(int n, const Texto& valor) { return "var" + std::to_string(n) + " \"" + ParaUtf8(valor) + "\""; }

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

}  // namespace

std::vector<Problema> ConferirConjunto(const ConjuntoLido& c) {
  std::vector<Problema> problemas;
  for (const RegraLida& r : c.regras) {
    auto Relatar = [&](bool grave, std::string mensagem) {
      problemas.push_back({c.conjunto, r.numero, r.Id(), grave, std::move(mensagem)});
    };
    const BuscaRegra busca = ProcurarRegra(r.Id());
    if (!busca.conhecida) Relatar(true, "número de regra desconhecido: o motor a registra sem aplicar nada");
    else if (!busca.procedimento) Relatar(false, "regra sem procedimento: sempre registrada como não realizada");

    for (int n = 1; n <= 10; ++n)
      if (!r.Var(n).empty() && r.Var(n)[0] == u'*' && !FaixaValida(r.Var(n)))
        Relatar(true, Var(n, r.Var(n)) + ": valor por nível (*a-b) que não se lê como números inteiros");

    // The rule's description says which variables are filters and which its period; a number
    // that is not performed reads none.
    const DescricaoRegra* descricao = ProcurarDescricao(r.Id());
    if (!descricao || !descricao->periodo.Existe()) continue;
    for (int n = 1; n <= kVariaveisPorRegra; ++n) {
      if (!descricao->filtros.Contem(n)) continue;
      const Texto& filtro = r.Var(n);
      if (filtro.empty() || TerminaComGeral(filtro)) continue;
      if (IndiceCampo(filtro) == kCampoDesconhecido)
        Relatar(true, Var(n, filtro) + ": filtro sem campo conhecido (use Campo:valor, como Genero:Rock)");
    }

    const PeriodoRegra& periodo = descricao->periodo;
    const int d = periodo.data;
    const Texto& data = r.Var(d);
    if (!data.empty()) {
      const auto valor = ConverterDataHora(data);
      if (!valor) Relatar(true, Var(d, data) + ": data do período inválida");
      else if (valor->segundos >= 0 && valor->segundos < kSegundosPorDia) Relatar(true, Var(d, data) + ": data do período sem dia: a regra nunca vale");
    }
    std::optional<DataHora> horas[2];
    const int variaveisDasHoras[2] = {periodo.inicio, periodo.fim};
    for (int k = 0; k < 2; ++k) {
      const int n = variaveisDasHoras[k];
      const Texto& hora = r.Var(n);
      if (hora.empty()) continue;
      const auto valor = ConverterDataHora(hora);
      if (!valor) Relatar(true, Var(n, hora) + ": hora do período inválida");
      else if (valor->segundos < 0 || valor->segundos >= kSegundosPorDia) Relatar(true, Var(n, hora) + ": hora do período com data: a regra nunca vale");
      else horas[k] = valor;
    }
    if (r.Var(periodo.inicio).empty() != r.Var(periodo.fim).empty())
      Relatar(false, "período com só uma das horas: o horário é ignorado");
    else if (horas[0] && horas[1] && *horas[0] > *horas[1])
      Relatar(false, "hora inicial depois da final: o período não passa da meia-noite e nunca vale");
  }
  if (!c.incompletas.empty())
    problemas.push_back({c.conjunto, 0, {}, false,
                         c.incompletas.size() == 1
                             ? "1 linha no fim não forma uma regra: o motor a ignora"
                             : std::to_string(c.incompletas.size()) + " linhas no fim não formam uma regra: o motor as ignora"});
  return problemas;
}

}  // namespace lumavox::cli
