#include "keystore/KeychainHelper.h"
#include "platform/virtual/VirtualPlatform.h"

#include <gtest/gtest.h>

namespace glintar::keystore {

TEST(KeychainHelperTest, KeysAreReplacedReadAndRemovedEachUnderItsName) {
    platform::VirtualPlatform machine;
    const KeychainHelper keys(machine.platform());
    EXPECT_EQ(keys.read("apiKey_coingecko"), std::nullopt);
    EXPECT_EQ(keys.delete_("apiKey_coingecko"), platform::SecretStatus::NotFound);
    keys.save("one", "apiKey_coingecko");
    EXPECT_EQ(keys.save("two", "apiKey_coingecko"), platform::SecretStatus::Done);
    keys.save("other", "apiKey_binance");
    EXPECT_EQ(keys.read("apiKey_coingecko"), "two");
    EXPECT_EQ(machine.secrets.find("apiKey_coingecko", "GlintarUser").bytes, "two");
    keys.delete_("apiKey_coingecko");
    EXPECT_EQ(keys.read("apiKey_coingecko"), std::nullopt);
    EXPECT_EQ(keys.read("apiKey_binance"), "other");
}

TEST(KeychainHelperTest, WhatCannotBeReadAsTextIsNoKey) {
    platform::VirtualPlatform machine;
    const KeychainHelper keys(machine.platform());
    keys.save("\xff\xfe", "apiKey_x");
    EXPECT_EQ(keys.read("apiKey_x"), "\xff\xfe");
    EXPECT_EQ(keys.apiKeyOf("x"), "");
    machine.secrets.failure = platform::SecretStatus::Locked;
    EXPECT_EQ(keys.read("apiKey_x"), std::nullopt);
    EXPECT_EQ(keys.save("new", "apiKey_x"), platform::SecretStatus::Locked);
    EXPECT_EQ(keys.delete_("apiKey_x"), platform::SecretStatus::Locked);
}

}  // namespace glintar::keystore
