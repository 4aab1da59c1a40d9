#include "base/environment.h"

#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ovrin {
namespace {

using ::testing::Optional;

TEST(EnvironmentTest, ChildrenInheritNoKey) {
    ::setenv("OTHER_SERVICE_API_KEY", "sk-secret", 1);
    ::setenv("OTHER_SERVICE_BASE_URL", "http://localhost", 1);
    Environment::withholdSecretsFromChildren();
    EXPECT_EQ(std::system("test -z \"$OTHER_SERVICE_API_KEY\" && test -n \"$OTHER_SERVICE_BASE_URL\""), 0);
    EXPECT_THAT(Environment::ofProcess().value("OTHER_SERVICE_API_KEY"), Optional(std::string("sk-secret")));
}

}  // namespace
}  // namespace ovrin
