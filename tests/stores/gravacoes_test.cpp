#include "stores/gravacoes.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <memory>

#include "apoio/estacao.h"

namespace lumavox {
namespace {

using teste::EstacaoTeste;

class Gravacoes : public ::testing::Test {
 protected:
  Gravacoes() {
    estacao.Musica(1, {{"Artista", "Ána Ção"}, {"Ritmo", "Lenta;"}}).Musica(2, {{"Artista", "Bia"}}).Musica(3);
    estacao.GravarAcervo();
    Acervo a;
    a.CaminhoApp = estacao.Pasta();
    CarregarColecao(ArquivosReais(), a, estacao.Pasta(), nullptr, &gravacao);
    insumos.lxdb = {1, 2, 3, 4, 5};
    insumos.mre = {1, 9, 0, 4, 5};
  }

  EstacaoTeste estacao;
  GravacaoAcervo gravacao;
  InsumosGravacao insumos;
};

bool Igual(const GravacaoAcervo& a, const GravacaoAcervo& b) {
  return a.total == b.total && a.codigos == b.codigos && a.vibes == b.vibes && a.textos == b.textos &&
         a.tamanhos == b.tamanhos && a.camposNaSobra == b.camposNaSobra && a.codigoNaSobra == b.codigoNaSobra &&
         a.arquivoNaSobra == b.arquivoNaSobra;
}

// Only the whole record of these very inputs, made by this build, is ever taken: any damaged
// byte, a file cut short or grown, other inputs or another build's record is no record.
TEST_F(Gravacoes, SoORegistroIntactoDosMesmosInsumosEDoMesmoProgramaVale) {
  const std::string bytes = SerializarGravacao(gravacao, insumos, "id");
  auto lida = LerGravacao(bytes, insumos, "id");
  ASSERT_TRUE(lida);
  EXPECT_TRUE(Igual(*lida, gravacao));
  // Latin-1 texts are kept a byte each; one character beyond it keeps them all as they are.
  GravacaoAcervo larga = gravacao;
  larga.textos[0] = u'Ő';
  const std::string bytesLargos = SerializarGravacao(larga, insumos, "id");
  EXPECT_GT(bytesLargos.size(), bytes.size() + larga.textos.size() / 2);
  auto lidaLarga = LerGravacao(bytesLargos, insumos, "id");
  ASSERT_TRUE(lidaLarga);
  EXPECT_TRUE(Igual(*lidaLarga, larga));

  for (size_t i = 0; i < bytes.size(); i += 7) {
    std::string danificado = bytes;
    danificado[i] = static_cast<char>(danificado[i] ^ (1 << (i % 8)));
    ASSERT_FALSE(LerGravacao(danificado, insumos, "id")) << "byte " << i;
  }
  for (size_t n = 0; n < bytes.size(); n += 13) ASSERT_FALSE(LerGravacao(bytes.substr(0, n), insumos, "id")) << n;
  EXPECT_FALSE(LerGravacao(bytes + '\0', insumos, "id"));

  InsumosGravacao outros = insumos;
  outros.lxdb.mudadoNs += 1;
  EXPECT_FALSE(LerGravacao(bytes, outros, "id"));
  outros = insumos;
  outros.mre.inode += 1;
  EXPECT_FALSE(LerGravacao(bytes, outros, "id"));
  EXPECT_FALSE(LerGravacao(bytes, insumos, "outro"));
  EXPECT_FALSE(LerGravacao(bytes, insumos, ""));

  // A record whose checksum is right but whose shape is not: counts that do not add up.
  GravacaoAcervo torta = gravacao;
  torta.tamanhos.pop_back();
  EXPECT_FALSE(LerGravacao(SerializarGravacao(torta, insumos, "id"), insumos, "id"));
  torta = gravacao;
  torta.textos += u"x";
  EXPECT_FALSE(LerGravacao(SerializarGravacao(torta, insumos, "id"), insumos, "id"));
  torta = gravacao;
  torta.total = static_cast<int16_t>(kTotalSlots + 1);
  EXPECT_FALSE(LerGravacao(SerializarGravacao(torta, insumos, "id"), insumos, "id"));
}

TEST_F(Gravacoes, PastaGuardaLeEPodaSemNuncaFalhar) {
  const fs::path pasta = estacao.Caminho("cache/lumavox");
  GuardaGravacoes guarda(ArquivosReais(), pasta, "id");
  EXPECT_FALSE(guarda.Buscar(insumos));  // no folder yet
  guarda.Guardar(insumos, gravacao);
  auto lida = guarda.Buscar(insumos);
  ASSERT_TRUE(lida);
  EXPECT_TRUE(Igual(*lida, gravacao));
  EXPECT_FALSE(GuardaGravacoes(ArquivosReais(), pasta, "outro").Buscar(insumos));
  // A build without an identity neither reads nor writes records.
  GuardaGravacoes semIdentidade(ArquivosReais(), pasta, "");
  EXPECT_FALSE(semIdentidade.Buscar(insumos));

  // A garbage file in the record's place is no record, and the next write replaces it.
  estacao.GravarTexto(fs::relative(guarda.Arquivo(insumos), estacao.Pasta()).string(), "lixo");
  EXPECT_FALSE(guarda.Buscar(insumos));
  guarda.Guardar(insumos, gravacao);
  EXPECT_TRUE(guarda.Buscar(insumos));

  // Past the limit the oldest records go; a temporary file left an hour ago goes too, and
  // files of other names are never touched.
  const auto antigo = fs::file_time_type::clock::now() - std::chrono::hours(2);
  fs::last_write_time(guarda.Arquivo(insumos), antigo);
  estacao.GravarTexto("cache/lumavox/acervo-x.lxg-tmp", "meio");
  fs::last_write_time(pasta / "acervo-x.lxg-tmp", antigo);
  estacao.GravarTexto("cache/lumavox/notas.lxg", "de alguém");
  fs::last_write_time(pasta / "notas.lxg", antigo);
  for (uint64_t i = 0; i < GuardaGravacoes::kMaximoArquivos; ++i) {
    InsumosGravacao outros = insumos;
    outros.lxdb.inode = 100 + i;
    guarda.Guardar(outros, gravacao);
  }
  EXPECT_FALSE(fs::exists(guarda.Arquivo(insumos)));
  EXPECT_FALSE(fs::exists(pasta / "acervo-x.lxg-tmp"));
  EXPECT_TRUE(fs::exists(pasta / "notas.lxg"));
  size_t registros = 0;
  for (const auto& e : fs::directory_iterator(pasta)) registros += e.path().filename().string().starts_with("acervo-");
  EXPECT_EQ(registros, GuardaGravacoes::kMaximoArquivos);

  // A folder that cannot be made (a file stands in its way) just keeps no records.
  estacao.GravarTexto("bloqueio", "");
  GuardaGravacoes bloqueada(ArquivosReais(), estacao.Caminho("bloqueio/lumavox"), "id");
  bloqueada.Guardar(insumos, gravacao);
  EXPECT_FALSE(bloqueada.Buscar(insumos));
}

TEST(PastaGravacoes, VariaveisDoUsuarioEDoServico) {
  auto Com = [](const char* cache, const char* servico, const char* xdg, const char* home) {
    auto Definir = [](const char* nome, const char* v) { v ? setenv(nome, v, 1) : unsetenv(nome); };
    Definir("LUMAVOX_CACHE", cache);
    Definir("CACHE_DIRECTORY", servico);
    Definir("XDG_CACHE_HOME", xdg);
    Definir("HOME", home);
    return PastaGravacoesDoUsuario();
  };
  const char* home = std::getenv("HOME");
  const std::string homeAntes = home ? home : "";
  EXPECT_EQ(Com("/c", "/s", "/x", "/h"), fs::path("/c"));
  EXPECT_EQ(Com("", "/s", "/x", "/h"), std::nullopt);
  EXPECT_EQ(Com(nullptr, "/s:/t", "/x", "/h"), fs::path("/s"));
  EXPECT_EQ(Com(nullptr, nullptr, "/x", "/h"), fs::path("/x/lumavox"));
  EXPECT_EQ(Com(nullptr, nullptr, "relativo", "/h"), fs::path("/h/.cache/lumavox"));
  EXPECT_EQ(Com(nullptr, nullptr, nullptr, nullptr), std::nullopt);
  Com(nullptr, nullptr, nullptr, home ? homeAntes.c_str() : nullptr);
}

}  // namespace
}  // namespace lumavox
