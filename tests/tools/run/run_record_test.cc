// SPDX-License-Identifier: MIT
#include "tools/run/run_record.h"

#include <gtest/gtest.h>

#include "lib/molva.h"

namespace {

using namespace mardle::tools;

TEST(RunRecord, HasItsFieldsInOrder) {
  RunRecord record;
  record.options = {"-crfun=3"};
  record.nclusters = 4;
  record.seed = 7;
  record.threads = 2;
  record.import_options = {{"--digits"}};
  record.files = {{"source", "../a", FileHash{5, "00ff"}, 2},
                  {"source", "-", std::nullopt, std::nullopt}};
  EXPECT_EQ(RecordText(record), std::string("{\n"
                                            "  \"format\": 1,\n"
                                            "  \"program\": \"mardle\",\n"
                                            "  \"version\": \"") +
                                    MOLVA_Version() +
                                    "\",\n"
                                    "  \"options\": [\n"
                                    "    \"-crfun=3\"\n"
                                    "  ],\n"
                                    "  \"clusters\": 4,\n"
                                    "  \"seed\": 7,\n"
                                    "  \"threads\": 2,\n"
                                    "  \"import\": [\n"
                                    "    \"--digits\"\n"
                                    "  ],\n"
                                    "  \"files\": [\n"
                                    "    {\n"
                                    "      \"role\": \"source\",\n"
                                    "      \"path\": \"../a\",\n"
                                    "      \"count\": 2,\n"
                                    "      \"size\": 5,\n"
                                    "      \"sha256\": \"00ff\"\n"
                                    "    },\n"
                                    "    {\n"
                                    "      \"role\": \"source\",\n"
                                    "      \"path\": \"-\"\n"
                                    "    }\n"
                                    "  ]\n"
                                    "}\n");
}

TEST(RunRecord, NamesThatAreNoUtf8AreMended) {
  RunRecord record;
  record.files = {{"matrix", "b\xe4.mat", std::nullopt, std::nullopt}};
  EXPECT_NE(RecordText(record).find("\"b\xef\xbf\xbd.mat\""), std::string::npos);
  EXPECT_EQ(RecordText(record).find("import"), std::string::npos);
  EXPECT_EQ(RecordText(record).find("sampled"), std::string::npos);
}

TEST(RunRecord, TellsTheSampledForm) {
  RunRecord record;
  record.sampled = {62, 9};
  EXPECT_NE(RecordText(record).find("\"sampled\": {\n    \"rows\": 62,\n    \"passes\": 9\n  },\n"
                                    "  \"files\": []"),
            std::string::npos);
}

}  // namespace
