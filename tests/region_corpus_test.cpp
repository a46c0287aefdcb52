// SPDX-License-Identifier: MIT
// Every case of the reference corpus, run on the region functions, must print exactly what the
// platform printed: the same return values, headers and rectangles in the same order.
#include <quillon/Region>

#include "region-reference/region_script.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

namespace {

struct CorpusCase {
    std::string name;
    std::vector<std::string> transcript; // commands, each followed by what it printed
};

std::vector<CorpusCase> loadCorpus(const char* file)
{
    std::string path = __FILE__;
    path = path.substr(0, path.find_last_of("/\\") + 1) + "data/" + file;
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

// A command of a case whose recorded answer is not the one expected here: the case, the command,
// what the recording holds for it (checked, so that a new recording is looked at again) and what
// is printed here. A case's entries apply, in their order, to the next line that is their command.
struct Replacement {
    const char* caseName;
    const char* command;
    std::vector<std::string> recorded;
    std::vector<std::string> here;
};

// Where the platform's answer is unsafe, the region layer gives the safe one instead:
//  - ExtCreateRegion with a byte count too small for the rectangles its header announces reads
//    past the caller's buffer there; here it fails.
//  - A polygon of one point before other polygons throws the platform's scan off: it gives
//    rectangles that are no region (a left beyond its right, rectangles outside the bounding box,
//    in a larger case a hundred million of them). Here a lone point adds nothing, as it does
//    where it comes last.
const std::vector<Replacement>& safeAnswers()
{
    static const std::vector<Replacement> answers = {
        {"ext headers", "extraw 3 32 1 1 0 1 2 11 12", {"= 1"}, {"= 0"}},
        {"ext headers", "data 3",
         {"= size 48 48", "= got 48 hdr 32 1 1 16 1 2 11 12 small 0", "= rects 1 2 11 12"},
         {"= size 0 0"}},
        {"ext headers", "extraw 5 32 1 2 48 0 0 10 10 20 20 30 30", {"= 1"}, {"= 0"}},
        {"ext headers", "data 5",
         {"= size 64 64", "= got 64 hdr 32 1 2 32 0 0 30 30 small 0", "= rects 0 0 10 10 20 20 30 30"},
         {"= size 0 0"}},
        {"polypolygon heights mode 1", "data 9",
         {"= size 256 256", "= got 256 hdr 32 1 14 224 0 0 17 9 small 0",
          "= rects 0 0 10 1 20 0 0 1 9 1 17 2 0 2 8 3 13 2 0 3 3 3 7 4 0 4 4 5 6 4 7 5 13 4 0 5 5 5 17 6 "
          "0 6 4 7 21 6 0 7 3 7 0 8 2 8 0 9"},
         {"= size 304 304", "= got 304 hdr 32 1 17 272 0 0 30 10 small 0",
          "= rects 0 0 10 1 20 0 30 1 0 1 9 2 21 1 30 2 0 2 8 3 22 2 29 3 0 3 7 4 23 3 28 4 0 4 6 5 23 4 28 5 "
          "0 5 5 6 24 5 27 6 0 6 4 7 25 6 26 7 0 7 3 8 0 8 2 9 0 9 1 10"}},
        {"polypolygon heights mode 2", "data 9",
         {"= size 224 224", "= got 224 hdr 32 1 12 192 0 0 17 10 small 0",
          "= rects 0 0 10 1 20 0 0 2 9 1 17 2 0 2 8 3 13 2 0 4 0 4 7 5 13 4 0 6 5 5 17 6 0 6 4 7 21 6 0 8 3 7 "
          "0 9 2 8 0 10"},
         {"= size 304 304", "= got 304 hdr 32 1 17 272 0 0 30 10 small 0",
          "= rects 0 0 10 1 20 0 30 1 0 1 9 2 21 1 30 2 0 2 8 3 22 2 29 3 0 3 7 4 23 3 28 4 0 4 6 5 23 4 28 5 "
          "0 5 5 6 24 5 27 6 0 6 4 7 25 6 26 7 0 7 3 8 0 8 2 9 0 9 1 10"}},
    };
    return answers;
}

// What "data" prints for a region of one rectangle.
std::vector<std::string> oneRectangle(const std::string& ltrb)
{
    return {"= size 48 48", "= got 48 hdr 32 1 1 16 " + ltrb + " small 0", "= rects " + ltrb};
}

// Where the recording is not the platform's answer. The recorder runs under Wine, whose OffsetRgn
// moves a region past the platform's coordinate range, -2^27 to 2^27 - 1, and wraps its
// coordinates past 32 bits. The platform refuses such a move: ERROR, and the region stays where
// it was, as it does here. On Windows, where these tests run under Wine too, the cases are left out.
const std::vector<Replacement>& platformAnswers()
{
    static const std::vector<Replacement> answers = {
        {"offset to the limits", "offset 0 2147483642 -2147483643", {"= 2"}, {"= 0"}},
        {"offset to the limits", "data 0", oneRectangle("2147483637 -2147483648 2147483647 -2147483638"),
         oneRectangle("-5 -5 5 5")},
        {"offset to the limits", "box 0", {"= 2 2147483637 -2147483648 2147483647 -2147483638"},
         {"= 2 -5 -5 5 5"}},
        {"offset to the limits", "pt 0 2147483646 -2147483648", {"= 1"}, {"= 0"}},
        {"offset to the limits", "offset 0 -2147483643 2147483642", {"= 2"}, {"= 0"}},
        {"offset to the limits", "data 0", oneRectangle("-6 -6 4 4"), oneRectangle("-5 -5 5 5")},
        {"offset past the limits", "offset 0 2147483642 0", {"= 2"}, {"= 0"}},
        {"offset past the limits", "data 0", oneRectangle("2147483642 0 -2147483644 10"),
         oneRectangle("0 0 10 10")},
        {"offset past the limits", "box 0", {"= 2 2147483642 0 -2147483644 10"}, {"= 2 0 0 10 10"}},
        {"offset past the limits", "offset 1 -2147483648 0", {"= 2"}, {"= 0"}},
        {"offset past the limits", "data 1", oneRectangle("2147483643 0 -2147483638 10"),
         oneRectangle("-5 0 10 10")},
        {"offset past the limits", "offset 2 2147483647 0", {"= 2"}, {"= 0"}},
        {"offset past the limits", "data 2", oneRectangle("-2147483644 -5 -2147483634 5"),
         oneRectangle("5 -5 15 5")},
        {"offset past the limits", "box 2", {"= 2 -2147483644 -5 -2147483634 5"}, {"= 2 5 -5 15 5"}},
        {"offset past the limits", "rin 2 0 0 100 100", {"= 0"}, {"= 1"}},
    };
    return answers;
}

#if defined(_WIN32)
bool hasPlatformAnswers(const CorpusCase& c)
{
    for (const Replacement& a : platformAnswers())
        if (c.name == a.caseName) return true;
    return false;
}
#endif

// The recorded transcript with the replacements put in (on Windows, where the platform's own
// functions run, the unsafe answers as they are); fails the test if a listed command printed
// something else than listed, or a listed command was not met.
std::vector<std::string> expectedHere(const CorpusCase& c)
{
    std::vector<const Replacement*> todo; // this case's entries, in order
    for (const auto* list : {&safeAnswers(), &platformAnswers()})
        for (const Replacement& a : *list)
            if (c.name == a.caseName) todo.push_back(&a);
    std::size_t next = 0;
    std::vector<std::string> out;
    const auto& t = c.transcript;
    for (std::size_t i = 0; i < t.size(); ++i) {
        out.push_back(t[i]);
        if (next == todo.size() || t[i] != todo[next]->command) continue;
        const Replacement& a = *todo[next++];
        std::vector<std::string> printed;
        while (i + 1 < t.size() && t[i + 1].rfind("= ", 0) == 0) printed.push_back(t[++i]);
        EXPECT_EQ(printed, a.recorded) << c.name << ": " << a.command;
#if defined(_WIN32) // the platform's own functions give the platform's answer
        out.insert(out.end(), printed.begin(), printed.end());
#else
        out.insert(out.end(), a.here.begin(), a.here.end());
#endif
    }
    EXPECT_EQ(next, todo.size()) << c.name << ": a listed command was not met";
    return out;
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

#if defined(_WIN32) && !defined(_WIN64)
// A 32-bit process gets null from the platform's polygon functions where a polygon spans tens of
// millions of rows (its scan conversion's memory follows the height and passes the 32-bit address
// space; the 64-bit one succeeds); the recording made in a 32-bit process holds those cases.
void takeThirtyTwoBitAnswers(std::vector<CorpusCase>& cases)
{
    const std::vector<CorpusCase> answers = loadCorpus("region_corpus_i686.txt");
    ASSERT_FALSE(answers.empty()) << "the 32-bit recording in tests/data could not be read";
    for (const CorpusCase& a : answers) {
        auto c = std::find_if(cases.begin(), cases.end(), [&](const CorpusCase& x) { return x.name == a.name; });
        ASSERT_NE(c, cases.end()) << "the 32-bit recording's case \"" << a.name << "\" is not in the corpus";
        c->transcript = a.transcript;
    }
}
#endif

TEST(RegionCorpus, EveryCaseGivesThePlatformsResults)
{
    std::vector<CorpusCase> cases = loadCorpus("region_corpus.txt");
    ASSERT_GE(cases.size(), 300u) << "the corpus in tests/data could not be read";
#if defined(_WIN32) && !defined(_WIN64)
    takeThirtyTwoBitAnswers(cases);
#endif
    int matched = 0, leftOut = 0;
    for (const CorpusCase& c : cases) {
#if defined(_WIN32)
        if (hasPlatformAnswers(c)) {
            ++leftOut;
            continue;
        }
#endif
        const std::vector<std::string> got = replay(c);
        const std::vector<std::string> want = expectedHere(c);
        if (got == want) {
            ++matched;
            continue;
        }
        std::size_t i = 0;
        while (i < got.size() && i < want.size() && got[i] == want[i]) ++i;
        ADD_FAILURE() << "case \"" << c.name << "\" differs at line " << i + 1 << "\n  expected: "
                      << (i < want.size() ? want[i] : "(end)")
                      << "\n  here:     " << (i < got.size() ? got[i] : "(end)")
                      << (i > 0 ? "\n  after:    " + want[i - 1] : "");
    }
    EXPECT_EQ(matched + leftOut, static_cast<int>(cases.size()));
}

} // namespace
