// Values that are secrets for what they are called.

#include <string>

#include <gtest/gtest.h>

#include "console/report/redaction/Redaction.h"

namespace kelvane::console {
namespace {

std::string redacted(const std::string& text) { return Redaction().applied(text); }

TEST(NamedSecrets, OfAddresses) {
  EXPECT_EQ(redacted("https://x.example/?a=1&token=abc&b=2#c"),
            "https://x.example/?a=1&token=[credentials-1]&b=2#c");
  EXPECT_EQ(redacted("?X-Amz-Credential=ab/c&X-Amz-Date=7&X-Amz-Signature=5f"),
            "?X-Amz-Credential=[credentials-1]&X-Amz-Date=7&X-Amz-Signature=[credentials-2]");
  for (const char* name : {"client_secret", "refresh_token", "sig", "key", "Access-Token", "apikey",
                           "X-Api-Key", "PASSWORD", "auth", "db_password", "signature"}) {
    const std::string text = std::string("?a=1&") + name + "=";
    EXPECT_EQ(redacted(text + "abc"), text + "[credentials-1]");
  }
}

TEST(NamedSecrets, OfJson) {
  EXPECT_EQ(redacted(R"({"password": "s3 cret, \"x\"", "log_id": "17"})"),
            R"({"password": "[credentials-1]", "log_id": "17"})");
  EXPECT_EQ(redacted(R"({"token":5,"log_id":"17"})"), R"({"token":[credentials-1],"log_id":"17"})");
  EXPECT_EQ(redacted("{'pwd': 'abc'}"), "{'pwd': '[credentials-1]'}");
}

TEST(NamedSecrets, OfObjectsInTheLog) {
  EXPECT_EQ(redacted("    password = abc;\n    \"client_secret\" = \"a b\";\n    size = 7;"),
            "    password = [credentials-1];\n    \"client_secret\" = \"[credentials-2]\";\n"
            "    size = 7;");
}

TEST(NamedSecrets, OfPropertyLists) {
  EXPECT_EQ(redacted("<key>password</key>\n<string>abc</string><key>x</key><string>y</string>"),
            "<key>password</key>\n<string>[credentials-1]</string><key>x</key><string>y</string>");
  EXPECT_EQ(redacted("<password>abc</password> <user>x</user>"),
            "<password>[credentials-1]</password> <user>x</user>");
}

TEST(NamedSecrets, OfOptions) {
  EXPECT_EQ(redacted("engine --token=abc --password 'd e' --verbose"),
            "engine --token=[credentials-1] --password '[credentials-2]' --verbose");
  EXPECT_EQ(redacted("the token that was sent"), "the token that was sent");
}

TEST(NamedSecrets, OfHeadersAreShownWithoutTheCredential) {
  EXPECT_EQ(redacted("Authorization: Bearer abc.def-1 was sent"),
            "Authorization: Bearer [credentials-1] was sent");
  EXPECT_EQ(redacted("-H \"Proxy-Authorization: Basic YTpi\" x"),
            "-H \"Proxy-Authorization: Basic [credentials-1]\" x");
  EXPECT_EQ(redacted("Authorization: abc"), "Authorization: [credentials-1]");
  EXPECT_EQ(redacted("sent Bearer abc"), "sent Bearer [credentials-1]");
}

TEST(NamedSecrets, NeverTakeTheRestOfTheLine) {
  EXPECT_EQ(redacted("password=abc is what the service refused"),
            "password=[credentials-1] is what the service refused");
  EXPECT_EQ(redacted("password=\"abc is what the service refused"),
            "password=\"[credentials-1] is what the service refused");
}

TEST(NamedSecrets, WhatIsNoneStays) {
  const std::string text =
      "password: (null), token = null; key: true \"secret\" = (\n) auth={} monkey=7 keys=8 "
      "passed: 3 signed=4 \"pass\" \"\", tokenless";
  EXPECT_EQ(redacted(text), text);
}

TEST(NamedSecrets, AreReplacedWhereverElseTheyStand) {
  Redaction redaction;
  redaction.learn("\"password\": \"s3cret\"");
  EXPECT_EQ(redaction.applied("refused s3cret"), "refused [credentials-1]");
}

TEST(NamedSecrets, AWwnInAFormOfItsOwn) {
  Redaction redaction;
  redaction.learn("wwn = \"enclosure 7\";");
  EXPECT_EQ(redaction.applied("wwn = \"enclosure 7\"; enclosure 7 failed, \"WWN\": \"A1\""),
            "wwn = \"[wwn-1]\"; [wwn-1] failed, \"WWN\": \"[wwn-2]\"");
}

TEST(NamedSecrets, AreKnownByTheNameOfTheWholeText) {
  Redaction redaction;
  redaction.learn("s3cret", "password");
  EXPECT_EQ(redaction.applied("s3cret", "password"), "[credentials-1]");
  EXPECT_EQ(redaction.applied("is s3cret"), "is [credentials-1]");
  EXPECT_EQ(redaction.applied("plain", "file_path"), "plain");
}

}  // namespace
}  // namespace kelvane::console
