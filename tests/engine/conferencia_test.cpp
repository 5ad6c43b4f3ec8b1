#include "engine/conferencia.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <tuple>
#include <nlohmann/json.hpp>

#include "apoio/estacao.h"
#include "apoio/linha_comando.h"
#include "cli/demo.h"
#include "stores/banco_sqlite.h"

namespace lumavox {
namespace {

using teste::EstacaoTeste;

constexpr int kMusicas = 60;
const DataHora kAgora = MontarDataHora(2026, 3, 14, 9, 30, 0);

constexpr long kFim = 33L * kMusicas + 1;  // the line after the 60 songs

// A station with nothing to point at: songs 1..quantas with media, rule 01 filtering a value
// they hold. The collection file is written unless more songs are to follow.
void SongsDe(EstacaoTeste& e, int quantas, std::string_view subpasta = "", bool gravar = true) {
  for (int i = 0; i < quantas; ++i)
    e.Musica(i + 1, {{"Genero", i % 2 ? "Rock;" : "Pop;"}, {"Nota", "10"}, {"Artista", "Ana"}});
  if (gravar) e.GravarAcervo(subpasta);
}
void RegrasDe(EstacaoTeste& e, std::string_view filtro = "Genero:Rock;", std::string_view subpasta = "") {
  e.Regra(0, true, "01", "", {std::string(filtro)});
  e.GravarRegras(subpasta);
}
void Limpa(EstacaoTeste& e, std::string_view subpasta = "") {
  SongsDe(e, kMusicas, subpasta);
  RegrasDe(e, "Genero:Rock;", subpasta);
}

std::vector<Constatacao> Conferir(const EstacaoTeste& e) { return ConferirEstacao(ArquivosReais(), e.Pasta(), kAgora); }

std::string Listar(const std::vector<Constatacao>& lista) {
  std::string t;
  for (const Constatacao& c : lista) t += FormatarConstatacao(c) + "\n";
  return t;
}

using Est = EstacaoTeste;
struct Caso {
  const char* nome;
  std::function<void(Est&)> montar;
  NivelConstatacao nivel;
  const char* arquivo;
  std::optional<long> linha;
  const char* trecho;
};
const auto E = NivelConstatacao::Erro;
const auto A = NivelConstatacao::Aviso;
const auto kSem = std::nullopt;

const Caso kCasos[] = {
    // The collection.
    {"codigo repetido",
     [](Est& e) { SongsDe(e, kMusicas, "", false); e.Musica(5, {{"Genero", "Rock;"}}).GravarAcervo(); RegrasDe(e); },
     A, "lxdb.rdb", kFim, "o código 5 repete o da música da linha 133"},
    {"codigo nao numerico", [](Est& e) { Limpa(e); e.GravarTexto("lxdb.rdb", e.Ler("lxdb.rdb") + Est::Linhas({"abc"})); },
     E, "lxdb.rdb", kFim, "o código da música não é um número inteiro"},
    // The playlist table.
    {"linha ignorada", [](Est& e) { Limpa(e); e.GravarTexto("pl.rdb", "08:00 12:00 manha\r\n"); },
     A, "pl.rdb", 1, "linha ignorada pelo motor"},
    {"periodo pela meia-noite",
     [](Est& e) { Limpa(e); Limpa(e, "noite"); e.GravarTexto("pl.rdb", "22:00:00 02:00:00 noite\r\n"); },
     E, "pl.rdb", 1, "o início 22:00:00 vem depois do fim 02:00:00"},
    {"pasta que nao existe", [](Est& e) { Limpa(e); e.GravarTexto("pl.rdb", "08:00:00 12:00:00 manha\r\n"); },
     E, "pl.rdb", 1, "a pasta \"manha\" não existe"},
    {"mais de 30 playlists",
     [](Est& e) {
       Limpa(e);
       Limpa(e, "a");
       std::string pl;
       for (int i = 10; i <= 40; ++i) pl += "00:" + std::to_string(i) + ":00 00:" + std::to_string(i) + ":30 a\r\n";
       e.GravarTexto("pl.rdb", pl);
     },
     E, "pl.rdb", 31, "31ª playlist"},
    // The rules.
    {"valor de filtro de um caractere", [](Est& e) { SongsDe(e, kMusicas); RegrasDe(e, "Genero:Rock;X"); },
     A, "lxie0.rdb", 1, "o valor \"X\" tem um só caractere"},
    {"valor por nivel que estoura",
     [](Est& e) { SongsDe(e, kMusicas); e.Regra(1, true, "12", "", {"*0-2000", "Genero:Geral*"}).GravarRegras(); },
     E, "lxie1.rdb", 1, "nos níveis 0 a 18 a conta do ajuste por nível estoura"},
    {"arquivo de regras ausente", [](Est& e) { Limpa(e); std::filesystem::remove(e.Caminho("lxie2.rdb")); },
     E, "lxie2.rdb", kSem, "arquivo de regras ausente"},
    // The history.
    {"banco de log ilegivel", [](Est& e) { Limpa(e); e.GravarTexto("lumavox.db", "isto não é um banco"); },
     E, "lumavox.db", kSem, "o motor não consegue abrir o banco de log"},
    {"tocadas de codigos sem musica",
     [](Est& e) { Limpa(e); BancoLogs(e.Caminho("lumavox.db")).Registrar({{7, kAgora, 0}, {777777, kAgora, 0}, {777777, kAgora, 5}}); },
     A, "lumavox.db", kSem, "2 registros do log que o motor lê são de 1 código que nenhum acervo da estação tem"},
    // Each pitfall of the other checks once.
    {"sem midia", [](Est& e) { SongsDe(e, kMusicas, "", false); e.Musica(999, {}, false).GravarAcervo(); RegrasDe(e); },
     A, "lxdb.rdb", kFim, "sem o arquivo mre/0000999.mre"},
    {"registro parcial", [](Est& e) { Limpa(e); e.GravarTexto("lxdb.rdb", e.Ler("lxdb.rdb") + Est::Linhas({"61", "Ana", "Álbum"})); },
     A, "lxdb.rdb", kFim, "3 linhas no fim não completam uma música"},
    {"valor de um caractere no acervo",
     [](Est& e) { SongsDe(e, kMusicas, "", false); e.Musica(70, {{"Nota", "5"}}).GravarAcervo(); RegrasDe(e, "Nota:10;"); },
     A, "lxdb.rdb", kFim, "1 música tem em Nota um valor de um só caractere (como \"5\""},
    {"periodo escondido por outra linha",
     [](Est& e) { Limpa(e); Limpa(e, "a"); e.GravarTexto("pl.rdb", "09:00:00 10:00:00 a\r\n08:00:00 12:00:00 a\r\n"); },
     E, "pl.rdb", 1, "a linha 2 vem depois e cobre todo este período"},
    {"marca que parece ativa",
     [](Est& e) {
       Limpa(e);
       e.GravarTexto("lxie0.rdb", Est::Linhas({"A", "01", "", "", "Genero:Rock;", "", "", "", "", "", "", "", "", "",
                                               "A ", "04", "", "", "10", "", "", "", "", "", "", "", "", ""}));
     },
     E, "lxie0.rdb", 15, "a marca de ativa \"A \" parece ativa"},
    {"periodo que nunca vale",
     [](Est& e) { SongsDe(e, kMusicas); e.Regra(0, true, "01", "", {"Genero:Rock;", "", "22:00", "02:00"}).GravarRegras(); },
     A, "lxie0.rdb", 1, "hora inicial depois da final"},
    {"data que ja passou",
     [](Est& e) { SongsDe(e, kMusicas); e.Regra(0, true, "01", "", {"Genero:Rock;", "01/01/2000"}).GravarRegras(); },
     A, "lxie0.rdb", 1, "a data já passou"},
    {"tabela de agenda com linha ruim", [](Est& e) { Limpa(e); e.GravarTexto("lxtb0.rdb", Est::Linhas({"1", "x-y"})); },
     E, "lxtb0.rdb", 2, "o motor para de ler a tabela aqui"},
    {"pasta de playlist com poucas musicas",
     [](Est& e) { Limpa(e); SongsDe(e, 10, "a"); RegrasDe(e, "Genero:Rock;", "a"); e.GravarTexto("pl.rdb", "08:00:00 12:00:00 a\r\n"); },
     E, "a/lxdb.rdb", kSem, "só 10 músicas"},
};

class UmaConstatacao : public ::testing::TestWithParam<Caso> {};

TEST_P(UmaConstatacao, NoArquivoENaLinhaDela) {
  const Caso& c = GetParam();
  EstacaoTeste estacao;
  c.montar(estacao);
  const std::vector<Constatacao> lista = Conferir(estacao);
  ASSERT_EQ(lista.size(), 1u) << Listar(lista);
  EXPECT_EQ(std::tie(lista[0].nivel, lista[0].arquivo, lista[0].linha),
            std::make_tuple(c.nivel, std::string(c.arquivo), c.linha)) << Listar(lista);
  EXPECT_NE(lista[0].mensagem.find(c.trecho), std::string::npos) << lista[0].mensagem;
}

INSTANTIATE_TEST_SUITE_P(Conferencia, UmaConstatacao, ::testing::ValuesIn(kCasos), [](const auto& i) {
  std::string nome = i.param.nome;
  std::replace_if(nome.begin(), nome.end(), [](char c) { return c == ' ' || c == '-'; }, '_');
  return nome;
});

// Every case above finds its one fault on a clean station; the demo station has none either.
TEST(Conferencia, DemoNaoTemNadaENadaMudaNaPasta) {
  EstacaoTeste demo;
  cli::GerarEstacaoDemo(demo.Pasta(), cli::OpcoesDemo{});
  const auto antes = demo.Conteudo();
  EXPECT_EQ(Listar(Conferir(demo)), "");
  EXPECT_EQ(demo.Conteudo(), antes);
}

TEST(Conferencia, LinhaDeComandoEmTextoEJsonSaiCom1SoComErro) {
  EstacaoTeste estacao;
  SongsDe(estacao, 50);
  RegrasDe(estacao, "Genero:Jazz;");
  const auto texto = teste::RodarCli({"conferir", "--dir", estacao.Pasta().string()});
  EXPECT_EQ(texto.codigo, 1);
  EXPECT_EQ(texto.saida.rfind("erro: lxdb.rdb: só 50 músicas", 0), 0u) << texto.saida;
  EXPECT_NE(texto.saida.find("estação conferida: 1 erro, 1 aviso\n"), std::string::npos) << texto.saida;

  const auto json = teste::RodarCli({"conferir", "--dir", estacao.Pasta().string(), "--json"});
  EXPECT_EQ(json.codigo, 1);
  const auto doc = nlohmann::ordered_json::parse(json.saida);
  ASSERT_EQ(doc.size(), 2u);
  EXPECT_EQ(doc[0].dump(), "{\"nivel\":\"erro\",\"arquivo\":\"lxdb.rdb\",\"linha\":null,\"mensagem\":" +
                               doc[0]["mensagem"].dump() + "}");
  EXPECT_EQ(doc[1]["linha"], 1);

  SongsDe(estacao, kMusicas);
  EXPECT_EQ(teste::RodarCli({"conferir", "--dir", estacao.Pasta().string()}).codigo, 0);
}

}  // namespace
}  // namespace lumavox
