#include "model/local_service.h"

#include <string>

#include <gtest/gtest.h>

namespace ovrin {
namespace {

TEST(LocalService, IsOneOfThisMachineOrTheNetworkAtHome) {
    for (const char* url : {"http://localhost:11434/v1", "http://LOCALHOST./v1", "http://api.localhost",
                            "http://127.0.0.1:8080/v1", "http://127.1", " http://10.1.2.3/v1 ", "http://172.16.0.1",
                            "http://172.31.255.255", "https://192.168.1.20:8000", "http://[::1]:1234/v1",
                            "http://[fd00::1]", "http://[fe80::1%25eth0]/v1", "http://Studio.local:1234/v1"}) {
        EXPECT_TRUE(isLocalService(url)) << url;
    }
    for (const char* url :
         {"https://api.example.com/v1", "http://localhost.example.com", "http://127.0.0.1.example.com", "http://local",
          "http://notlocal", "http://11.0.0.1", "http://172.15.0.1", "http://172.32.0.1", "http://192.169.0.1",
          "http://0.0.0.0", "http://[2001:db8::1]", "http://[::ffff:8.8.8.8]", "http://user@127.0.0.1@example.com",
          "http://example.com/127.0.0.1", "127.0.0.1:8080", ""}) {
        EXPECT_FALSE(isLocalService(url)) << url;
    }
}

TEST(LocalService, GetsTheKeyThatStandsForNoneOnlyWhereNothingAuthenticates) {
    ModelAPIConfiguration configuration{.connectionURL = "http://127.0.0.1:8080/v1",
                                        .apiKey = " ",
                                        .model = "m",
                                        .customHeaders = {},
                                        .maxOutputTokens = 1};
    EXPECT_EQ(withLocalKey(configuration).apiKey, "local");
    configuration.customHeaders = {{"authorization", "Basic x"}};
    EXPECT_EQ(withLocalKey(configuration), configuration);
    configuration.customHeaders = {};
    configuration.apiKey = "k";
    EXPECT_EQ(withLocalKey(configuration), configuration);
    configuration.apiKey.clear();
    configuration.connectionURL = "https://api.example.com/v1";
    EXPECT_EQ(withLocalKey(configuration), configuration);
}

}  // namespace
}  // namespace ovrin
