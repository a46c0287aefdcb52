// SPDX-License-Identifier: MIT
// The quillon tool: what its commands share. Reading numbers and axis letters from text, writing
// them back (shortest round-trip decimal, or hexadecimal floating point for bit-exact comparison),
// a small JSON writer, the table of element types, and the one way a command fails.
#ifndef QUILLON_TOOL_COMMON_H
#define QUILLON_TOOL_COMMON_H

#include <quillon/Transform>

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace CLI {
class App;
}

namespace tool {

// Bad input from the user: the tool prints "quillon: " and the message, and exits with status 2.
struct BadInput : std::runtime_error {
    using std::runtime_error::runtime_error;
};
// Anything else that stops a command, such as a module file that cannot be read: status 1.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// ---- Reading ----

std::string_view trim(std::string_view s);
std::vector<std::string_view> split(std::string_view s, char separator);
int parseInt(std::string_view text);
float parseFloat(std::string_view text);
double parseDouble(std::string_view text);
// Radians, or degrees with the suffix "deg" (converted as d * (pi / 180) in double).
double parseAngle(std::string_view text);
// "x:VALUE" (or y, z, either case): the axis letter, lower case, and the text of the value.
std::pair<char, std::string_view> parseAxisValue(std::string_view text, std::string_view option);
// The numbers in a list of arguments, each of which may hold several separated by commas.
std::vector<std::string_view> joinFields(const std::vector<std::string>& arguments);

// ---- Writing ----

// Shortest decimal that reads back to the same value, or with exact %a; integers as they are.
std::string format(int v, bool exact);
std::string format(float v, bool exact);
std::string format(double v, bool exact);
// The same as a JSON value: a number where it can be one, otherwise a string ("nan", "0x1p+0").
std::string json(int v, bool exact);
std::string json(float v, bool exact);
std::string json(double v, bool exact);
std::string jsonString(std::string_view s);
template <class Range, class F>
std::string jsonArray(const Range& items, F&& item)
{
    std::string out = "[";
    for (const auto& v : items) out += (out.size() > 1 ? ", " : "") + item(v);
    return out + "]";
}

// Writes the whole content to path through a temporary file in the same folder and a rename, so
// that a failure leaves no partial file behind.
void writeFileAtomically(const std::string& path, const std::string& content);

// A command's text output, written as it is made: to standard output, or to a file (--output)
// that appears only when the command succeeds. The file is written as a temporary beside it and
// renamed by commit(); an output destroyed without commit() removes its temporary.
class Output {
public:
    explicit Output(const std::string& path); // empty: standard output
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;
    ~Output();
    void write(std::string_view text);
    void commit();

private:
    std::string path_, temporary_;
    std::FILE* file_ = nullptr;
};

// The lines of a file, or of standard input for "-", one at a time; blank lines and lines starting
// with # are skipped. A line that cannot be read is bad input.
class LineReader {
public:
    explicit LineReader(const std::string& path);
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;
    ~LineReader();
    // The next line with content, trimmed; false at the end.
    bool next(std::string_view& line);
    // "standard input, line 3" or "rects.csv, line 3": where the last line came from.
    std::string where() const;

private:
    std::string name_;
    std::FILE* file_ = nullptr;
    char* buffer_ = nullptr;
    std::size_t capacity_ = 0;
    long number_ = 0;
};

// The source of a command's items: its arguments, or else --file (or a lone "-": standard input),
// or else standard input. Arguments together with --file are bad input: one of them would be
// ignored. Calls f(text, where) for each item, in order.
template <class F>
void forEachItem(const std::vector<std::string>& arguments, const std::string& file, const char* what, F&& f)
{
    if (!arguments.empty() && !file.empty())
        throw BadInput(std::string(what) + "s come from the arguments or from --file, not both; got " +
                       std::to_string(arguments.size()) + " argument" + (arguments.size() == 1 ? "" : "s") +
                       " and --file " + file);
    if (arguments.size() > 1 && std::find(arguments.begin(), arguments.end(), "-") != arguments.end())
        throw BadInput("'-' (standard input) cannot stand beside other " + std::string(what) + "s");
    if (!arguments.empty() && arguments[0] != "-") {
        for (const auto& a : arguments) f(std::string_view(a), std::string(what) + " '" + a + "'");
        return;
    }
    LineReader lines(file.empty() ? "-" : file);
    for (std::string_view line; lines.next(line);) f(line, lines.where());
}

// ---- Element types ----

// One row of the element table: the name on the command line and how a value is read from text
// (what is printed is the plain value it holds, quillon::Stored).
template <class T>
struct Scalar;
template <>
struct Scalar<int> {
    static constexpr const char* name = "int";
    static int parse(std::string_view s) { return parseInt(s); }
};
template <>
struct Scalar<float> {
    static constexpr const char* name = "float";
    static float parse(std::string_view s) { return parseFloat(s); }
};
template <>
struct Scalar<double> {
    static constexpr const char* name = "double";
    static double parse(std::string_view s) { return parseDouble(s); }
};
template <>
struct Scalar<guardint> {
    static constexpr const char* name = "guardint";
    static guardint parse(std::string_view s) { return guardint(parseInt(s)); }
};
// The floating guard classes read a double and take it through their own constructor, so a
// magnitude beyond the limit becomes the limit.
template <>
struct Scalar<guardfloat> {
    static constexpr const char* name = "guardfloat";
    static guardfloat parse(std::string_view s) { return guardfloat(parseDouble(s)); }
};
template <>
struct Scalar<guarddouble> {
    static constexpr const char* name = "guarddouble";
    static guarddouble parse(std::string_view s) { return guarddouble(parseDouble(s)); }
};

template <class... T>
struct Types {};
using TransformTypes = Types<float, double, guarddouble>;
using VectorTypes = Types<int, float, double, guardint, guardfloat, guarddouble>;

std::string expectedNames(const std::vector<std::string_view>& names);

// Calls f(std::type_identity<T>{}) for the element type of the list named by name; an unknown
// name is bad input.
template <class... T, class F>
void withType(Types<T...>, std::string_view name, std::string_view option, F&& f)
{
    const bool found = ((name == Scalar<T>::name ? (f(std::type_identity<T>{}), true) : false) || ...);
    if (!found)
        throw BadInput("unknown element type '" + std::string(name) + "' for " + std::string(option) +
                       " (expected " + expectedNames({Scalar<T>::name...}) + ")");
}

template <class T>
std::string format(const T& v, bool exact) { return format(quillon::Stored<T>::of(v), exact); }
template <class T>
std::string json(const T& v, bool exact) { return json(quillon::Stored<T>::of(v), exact); }

// ---- Matrices ----

template <class T>
std::vector<T> elementsOf(const Transform<T>& t)
{
    std::vector<T> e(16);
    t.Function_2416(e.data());
    return e;
}

// Sixteen numbers of element type T, row by row; any other count is bad input.
template <class T>
Transform<T> parseMatrix(const std::vector<std::string_view>& fields, std::string_view what)
{
    if (fields.size() != 16)
        throw BadInput(std::string(what) + " needs 16 numbers, row by row; got " + std::to_string(fields.size()));
    std::vector<T> e;
    for (auto f : fields) e.push_back(Scalar<T>::parse(f));
    return Transform<T>(e.data());
}

// Four rows "[ a  b  c  d ]", each line starting with indent, the columns right-aligned.
template <class T>
std::string formatMatrix(const Transform<T>& t, bool exact, std::string_view indent = "  ")
{
    std::vector<std::string> cells;
    std::size_t width = 0;
    for (const T& v : elementsOf(t)) {
        cells.push_back(format(v, exact));
        width = std::max(width, cells.back().size());
    }
    std::string out;
    for (int r = 0; r < 4; ++r) {
        out += std::string(indent) + "[";
        for (int c = 0; c < 4; ++c) out += " " + std::string(width - cells[r * 4 + c].size() + 1, ' ') + cells[r * 4 + c];
        out += " ]\n";
    }
    return out;
}

// The matrix as a JSON array of four rows.
template <class T>
std::string jsonMatrix(const Transform<T>& t, bool exact)
{
    const auto e = elementsOf(t);
    std::string out = "[";
    for (int r = 0; r < 4; ++r) {
        std::vector<T> row(e.begin() + r * 4, e.begin() + r * 4 + 4);
        out += (r ? ", " : "") + jsonArray(row, [&](const T& v) { return json(v, exact); });
    }
    return out + "]";
}

// ---- Points ----

// X,Y,Z, the fields read from left to right, so that an error names the first bad one.
template <class B>
ThreeDVector<B> parsePoint(std::string_view text)
{
    const auto f = split(text, ',');
    if (f.size() != 3)
        throw BadInput("expected three numbers X,Y,Z, got " + std::to_string(f.size()));
    const B x = Scalar<B>::parse(f[0]);
    const B y = Scalar<B>::parse(f[1]);
    const B z = Scalar<B>::parse(f[2]);
    return ThreeDVector<B>(x, y, z);
}

// ---- Commands ----

// Each adds its subcommand. map streams: it reads and writes one point at a time. The others read
// all their input before they write anything.
void addMapCommand(CLI::App& app);
void addMatrixCommand(CLI::App& app);
void addInfoCommand(CLI::App& app);
void addRegionCommand(CLI::App& app);
void addDemoCommand(CLI::App& app);

} // namespace tool

#endif
