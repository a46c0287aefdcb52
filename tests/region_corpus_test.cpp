// Every case of the reference corpus, run on the region functions, must print exactly what the
// platform printed: the same return values, headers and rectangles in the same order.
#include <quillon/Region>

#include "region-reference/region_script.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace {

struct CorpusCase {
    std::string name;
    std::vector<std::string> transcript; // commands, each followed by what it printed
};

std::vector<CorpusCase> loadCorpus()
{
    std::string path = __FILE__;
    path = path.substr(0, path.find_last_of("/\\") + 1) + "data/region_corpus.txt";
    std::ifstream in(path);
    std::vector<CorpusCase> cases;
    std::string line;
    while (std::getline(in, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty() || line[0] == '#') continue;
        if (line.rfind("case ", 0) == 0)
            cases.push_back(CorpusCase{line.substr(5), {}});
        else if (!cases.empty())
            cases.back().transcript.push_back(line);
    }
    return cases;
}

// Runs the commands of one case and returns the transcript they make here.
std::vector<std::string> replay(const CorpusCase& c)
{
    RegionScript script;
    std::vector<std::string> got;
    for (const std::string& line : c.transcript) {
        if (line.rfind("= ", 0) == 0) continue;
        got.push_back(line);
        for (std::string& out : script.run(line)) got.push_back(std::move(out));
    }
    return got;
}

TEST(RegionCorpus, EveryCaseGivesThePlatformsResults)
{
    const std::vector<CorpusCase> cases = loadCorpus();
    ASSERT_GE(cases.size(), 300u) << "the corpus in tests/data could not be read";
    int matched = 0;
    for (const CorpusCase& c : cases) {
        const std::vector<std::string> got = replay(c);
        if (got == c.transcript) {
            ++matched;
            continue;
        }
        std::size_t i = 0;
        while (i < got.size() && i < c.transcript.size() && got[i] == c.transcript[i]) ++i;
        ADD_FAILURE() << "case \"" << c.name << "\" differs at line " << i + 1 << "\n  platform: "
                      << (i < c.transcript.size() ? c.transcript[i] : "(end)")
                      << "\n  here:     " << (i < got.size() ? got[i] : "(end)")
                      << (i > 0 ? "\n  after:    " + c.transcript[i - 1] : "");
    }
    EXPECT_EQ(matched, static_cast<int>(cases.size()));
}

} // namespace
