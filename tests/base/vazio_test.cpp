#include <gtest/gtest.h>
TEST(Vazio, Nada) {}
