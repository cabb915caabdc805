// The fuzzer's seed corpus (tests/fuzz/corpus) replayed as the fuzzer runs
// it: every seed is a session whose fault or stop comes, and that the judges
// pass. A seed whose fault no longer comes (a prompt moved) seeds nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "faulted_session.h"

TEST(FuzzCorpusTest, EverySeedIsAFaultedSessionThatTheJudgesPass)
{
    std::vector<std::filesystem::path> seeds;
    for (const auto &entry : std::filesystem::directory_iterator(Q7_FUZZ_CORPUS_DIR))
        seeds.push_back(entry.path());
    std::sort(seeds.begin(), seeds.end());
    ASSERT_GE(seeds.size(), 10u);
    for (const auto &seed : seeds) {
        SCOPED_TRACE(seed.filename().string());
        std::ifstream file(seed, std::ios::binary);
        const std::string input((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        const FaultedSession session = RunFaultedSession(reinterpret_cast<const uint8_t *>(input.data()), input.size());
        EXPECT_TRUE(session.faulted);
        EXPECT_EQ(session.finding, "") << session.output.substr(
            session.output.size() > 3000 ? session.output.size() - 3000 : 0);
    }
}
