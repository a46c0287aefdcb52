// SPDX-License-Identifier: MIT
// The quillon tool's readers on arbitrary text: the input read as the tool reads a file (lines,
// blank and # lines skipped), each line as a point of map in every element type and as a rectangle
// of region, each line as one of the options that build a transform with its value ("--turn
// z:30deg", or the option picked by the first byte), and all lines as the arguments of a matrix. Bad text may only end in the tool's own BadInput (any other exception
// escapes and is a finding), and what is read is what is printed: every number the tool would
// print, in shortest decimal or in %a, reads back to the same bits.
#include "../tools/quillon/region.h"
#include "../tools/quillon/steps.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

using namespace tool;

bool sameBits(double a, double b) { return std::isnan(a) ? std::isnan(b) : std::memcmp(&a, &b, sizeof a) == 0; }
bool sameBits(float a, float b) { return std::isnan(a) ? std::isnan(b) : std::memcmp(&a, &b, sizeof a) == 0; }
bool sameBits(int a, int b) { return a == b; }

int readBack(int, const std::string& s) { return parseInt(s); }
float readBack(float, const std::string& s) { return parseFloat(s); }
double readBack(double, const std::string& s) { return parseDouble(s); }

// A value as the tool prints it, both ways, read back to the same bits.
template <class T>
void roundTrip(const T& value)
{
    const auto plain = quillon::Stored<T>::of(value);
    for (bool exact : {false, true}) {
        const std::string text = format(value, exact);
        if (!sameBits(readBack(plain, text), plain)) std::abort();
        (void)json(value, exact);
    }
}

template <class B>
void point(std::string_view line)
{
    try {
        const ThreeDVector<B> p = parsePoint<B>(line);
        roundTrip(p.GetX());
        roundTrip(p.GetY());
        roundTrip(p.GetZ());
    } catch (const BadInput&) {
    }
}

template <class T>
void transform(const Steps& steps, const std::vector<std::string>& arguments)
{
    try {
        const Transform<T> t = buildTransform<T>(steps);
        for (const T& e : elementsOf(t)) roundTrip(e);
        (void)formatMatrix(t, false);
        (void)jsonMatrix(t, true);
    } catch (const BadInput&) {
    }
    try {
        const Transform<T> m = parseMatrix<T>(joinFields(arguments), "a matrix");
        for (const T& e : elementsOf(m)) roundTrip(e);
    } catch (const BadInput&) {
    }
}

// The input as a file the tool reads: one memory file, rewritten for each input.
int inputFile()
{
    static const int fd = memfd_create("tool_parsers", 0);
    return fd;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const int fd = inputFile();
    if (fd < 0 || ftruncate(fd, 0) != 0 || pwrite(fd, bytes, size, 0) != static_cast<ssize_t>(size)) std::abort();
    std::vector<std::string> lines;
    {
        LineReader reader("/proc/self/fd/" + std::to_string(fd));
        for (std::string_view line; reader.next(line);) {
            if (line.empty() || line[0] == '#') std::abort(); // skipped by the reader
            lines.emplace_back(line);
        }
    }
    static const char* const kOptions[] = {"--euler", "--turn", "--scale", "--move", "--matrix"};
    Steps steps;
    for (const std::string& line : lines) {
        point<int>(line);
        point<float>(line);
        point<double>(line);
        point<guardint>(line);
        point<guardfloat>(line);
        point<guarddouble>(line);
        try {
            const Rect r = parseRect(line);
            for (int v : r) roundTrip(v);
        } catch (const BadInput&) {
        }
        // "--turn z:30deg" (or --turn=...), or else the option the first byte picks and the rest.
        bool named = false;
        for (const char* option : kOptions) {
            const std::size_t n = std::strlen(option);
            if (!named && line.size() > n && line.compare(0, n, option) == 0 && (line[n] == ' ' || line[n] == '=')) {
                steps.emplace_back(option, line.substr(n + 1));
                named = true;
            }
        }
        if (!named) steps.emplace_back(kOptions[static_cast<unsigned char>(line[0]) % 5], line.substr(1));
    }
    transform<float>(steps, lines);
    transform<double>(steps, lines);
    transform<guarddouble>(steps, lines);
    return 0;
}
