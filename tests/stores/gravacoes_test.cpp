#include "stores/gravacoes.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>

#include "apoio/estacao.h"

namespace lumavox {
namespace {

using teste::EstacaoTeste;

class Gravacoes : public ::testing::Test {
 protected:
  Gravacoes() {
    estacao.Musica(1, {{"Artista", "Ána Ção"}, {"Ritmo", "Lenta;"}}).Musica(2, {{"Artista", "Bia"}});
    estacao.Musica(3).GravarAcervo();
    Acervo a;
    a.CaminhoApp = estacao.Pasta();
    CarregarColecao(ArquivosReais(), a, estacao.Pasta(), nullptr, &gravacao);
  }

  EstacaoTeste estacao;
  GravacaoAcervo gravacao;
  InsumosGravacao insumos{{1, 2, 3, 4, 5}, {1, 9, 0, 4, 5}};
};

bool Igual(const GravacaoAcervo& a, const GravacaoAcervo& b) {
  return a.total == b.total && a.codigos == b.codigos && a.vibes == b.vibes && a.textos == b.textos &&
         a.tamanhos == b.tamanhos && a.camposNaSobra == b.camposNaSobra && a.codigoNaSobra == b.codigoNaSobra &&
         a.arquivoNaSobra == b.arquivoNaSobra;
}

// Only the whole record of these very inputs, made by this build, is ever taken: any damaged
// byte, a file cut short or grown, or other inputs is no record (another build's: the folder test).
TEST_F(Gravacoes, SoORegistroIntactoDosMesmosInsumosEDoMesmoProgramaVale) {
  const std::string bytes = SerializarGravacao(gravacao, insumos, "id");
  // Texts are kept narrower while they fit Latin-1: one character beyond it must survive too.
  GravacaoAcervo larga = gravacao;
  larga.textos[0] = u'Ő';
  for (const GravacaoAcervo* g : {&gravacao, &larga})
    EXPECT_TRUE(Igual(LerGravacao(SerializarGravacao(*g, insumos, "id"), insumos, "id").value(), *g));

  std::vector<std::string> ruins{bytes + '\0'};
  for (size_t i = 0; i < bytes.size(); i += 7) {
    ruins.push_back(bytes);
    ruins.back()[i] = static_cast<char>(bytes[i] ^ (1 << (i % 8)));
  }
  for (size_t n = 0; n < bytes.size(); n += 13) ruins.push_back(bytes.substr(0, n));
  // Records whose checksum is right but whose shape is not: counts that do not add up.
  GravacaoAcervo tortas[2] = {gravacao, gravacao};
  tortas[0].tamanhos.pop_back();
  tortas[1].total = static_cast<int16_t>(kTotalSlots + 1);
  for (const GravacaoAcervo& t : tortas) ruins.push_back(SerializarGravacao(t, insumos, "id"));
  for (size_t i = 0; i < ruins.size(); ++i) ASSERT_FALSE(LerGravacao(ruins[i], insumos, "id")) << i;

  InsumosGravacao outros[2] = {insumos, insumos};
  outros[0].lxdb.mudadoNs += 1;
  outros[1].mre.inode += 1;
  for (const InsumosGravacao& o : outros) EXPECT_FALSE(LerGravacao(bytes, o, "id"));
}

TEST_F(Gravacoes, PastaGuardaLeEPodaSemNuncaFalhar) {
  const fs::path pasta = estacao.Caminho("cache/lumavox");
  GuardaGravacoes guarda(ArquivosReais(), pasta, "id");
  guarda.Guardar(insumos, gravacao);
  // Another build's records, or any for a build without an identity, are not read.
  for (const char* id : {"outro", ""})
    EXPECT_FALSE(GuardaGravacoes(ArquivosReais(), pasta, id).Buscar(insumos)) << id;

  // A garbage file in the record's place is no record, and the next write replaces it.
  estacao.GravarTexto(fs::relative(guarda.Arquivo(insumos), estacao.Pasta()).string(), "lixo");
  EXPECT_FALSE(guarda.Buscar(insumos));
  guarda.Guardar(insumos, gravacao);
  EXPECT_TRUE(Igual(guarda.Buscar(insumos).value(), gravacao));

  // Past the limit the oldest records go; files of other names are never touched.
  const auto antigo = fs::file_time_type::clock::now() - std::chrono::hours(2);
  fs::last_write_time(guarda.Arquivo(insumos), antigo);
  estacao.GravarTexto("cache/lumavox/notas.lxg", "meio");
  fs::last_write_time(pasta / "notas.lxg", antigo);
  for (uint64_t i = 0; i < GuardaGravacoes::kMaximoArquivos; ++i) {
    InsumosGravacao outros = insumos;
    outros.lxdb.inode = 100 + i;
    guarda.Guardar(outros, gravacao);
  }
  EXPECT_FALSE(fs::exists(guarda.Arquivo(insumos)));
  EXPECT_TRUE(fs::exists(pasta / "notas.lxg"));
  EXPECT_EQ(estacao.Nomes("cache/lumavox").size(), GuardaGravacoes::kMaximoArquivos + 1);  // and notas.lxg

  // A folder that cannot be made (a file stands in its way) just keeps no records.
  estacao.GravarTexto("bloqueio", "");
  GuardaGravacoes bloqueada(ArquivosReais(), estacao.Caminho("bloqueio/lumavox"), "id");
  bloqueada.Guardar(insumos, gravacao);
  EXPECT_FALSE(bloqueada.Buscar(insumos));
}

// Where a user's or a service's records live: an empty LUMAVOX_CACHE turns them off, and a
// relative XDG_CACHE_HOME is ignored rather than taken from the working folder.
TEST(PastaGravacoes, VariaveisDoUsuarioEDoServico) {
  const char* const nomes[] = {"LUMAVOX_CACHE", "CACHE_DIRECTORY", "XDG_CACHE_HOME", "HOME"};
  auto Com = [&](std::array<const char*, 4> valores) {
    for (size_t i = 0; i < 4; ++i) valores[i] ? setenv(nomes[i], valores[i], 1) : unsetenv(nomes[i]);
    return PastaGravacoesDoUsuario();
  };
  const char* home = std::getenv("HOME");
  const std::string homeAntes = home ? home : "";
  const std::pair<std::array<const char*, 4>, std::optional<fs::path>> casos[] = {
      {{"/c", "/s", "/x", "/h"}, "/c"},
      {{"", "/s", "/x", "/h"}, std::nullopt},
      {{nullptr, "/s:/t", "/x", "/h"}, "/s"},
      {{nullptr, nullptr, "/x", "/h"}, "/x/lumavox"},
      {{nullptr, nullptr, "relativo", "/h"}, "/h/.cache/lumavox"},
      {{nullptr, nullptr, nullptr, nullptr}, std::nullopt}};
  for (size_t i = 0; i < std::size(casos); ++i) EXPECT_EQ(Com(casos[i].first), casos[i].second) << i;
  Com({nullptr, nullptr, nullptr, home ? homeAntes.c_str() : nullptr});
}

}  // namespace
}  // namespace lumavox
