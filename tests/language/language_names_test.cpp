#include "language/language_names.h"

#include <gtest/gtest.h>

namespace ovrin {
namespace {

TEST(DisplayLanguageName, KnowsOfferedAndOtherLanguages) {
    EXPECT_EQ(displayLanguageName("zh-Hans-CN"), "简体中文");
    EXPECT_EQ(displayLanguageName("en-US"), "English");
    EXPECT_EQ(displayLanguageName("it"), "Italian");
    EXPECT_EQ(displayLanguageName("pt-BR"), "Brazilian Portuguese");
    EXPECT_EQ(displayLanguageName("XX-nope!"), "xx");
}

}  // namespace
}  // namespace ovrin
