#include "cli/regras_texto.h"

#include <toml++/toml.h>

#include <cstdio>
#include <map>
#include <stdexcept>

#include "base/texto.h"

namespace lumavox::cli {

const std::array<std::string_view, kLinhasPorRegra> kChavesLinhas{
    "ativo", "id", "descricao", "exemplo", "var1", "var2", "var3",
    "var4",  "var5", "var6",   "var7",    "var8", "var9", "var10"};

namespace {

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

}  // namespace lumavox::cli
