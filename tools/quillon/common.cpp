// SPDX-License-Identifier: MIT
#include "common.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include <sys/stat.h>
#include <unistd.h>

namespace tool {

std::string_view trim(std::string_view s)
{
    const auto first = s.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return s.substr(first, s.find_last_not_of(" \t\r\n") - first + 1);
}

std::vector<std::string_view> split(std::string_view s, char separator)
{
    std::vector<std::string_view> parts;
    for (std::size_t start = 0;;) {
        const auto end = s.find(separator, start);
        parts.push_back(trim(s.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start)));
        if (end == std::string_view::npos) return parts;
        start = end + 1;
    }
}

std::vector<std::string_view> joinFields(const std::vector<std::string>& arguments)
{
    std::vector<std::string_view> fields;
    for (const auto& a : arguments)
        for (auto f : split(a, ',')) fields.push_back(f);
    return fields;
}

namespace {
BadInput malformed(std::string_view text, const char* kind)
{
    return BadInput("malformed " + std::string(kind) + " '" + std::string(text) + "'");
}

// strtod and strtof with the whole text consumed; decimal, hexadecimal ("0x1.8p+3"), inf and nan.
template <class F, class Convert>
F parseReal(std::string_view text, const char* kind, Convert convert)
{
    const std::string s(trim(text));
    if (s.empty()) throw malformed(text, kind);
    char* end = nullptr;
    errno = 0;
    const F value = convert(s.c_str(), &end);
    if (end != s.c_str() + s.size()) throw malformed(text, kind);
    if (errno == ERANGE && std::isinf(value))
        throw BadInput(std::string(kind) + " out of range: '" + s + "'");
    return value;
}
} // namespace

int parseInt(std::string_view text)
{
    const auto s = trim(text);
    int value = 0;
    const char* begin = s.data() + (s.size() > 1 && s[0] == '+' ? 1 : 0);
    const auto [end, error] = std::from_chars(begin, s.data() + s.size(), value);
    if (error == std::errc::result_out_of_range) throw BadInput("integer out of range: '" + std::string(s) + "'");
    if (s.empty() || error != std::errc() || end != s.data() + s.size()) throw malformed(text, "integer");
    return value;
}

float parseFloat(std::string_view text) { return parseReal<float>(text, "number", std::strtof); }
double parseDouble(std::string_view text) { return parseReal<double>(text, "number", std::strtod); }

double parseAngle(std::string_view text)
{
    auto s = trim(text);
    if (s.size() > 3 && s.substr(s.size() - 3) == "deg") return parseReal<double>(s.substr(0, s.size() - 3), "angle", std::strtod) * (M_PI / 180.0);
    return parseReal<double>(s, "angle", std::strtod);
}

std::pair<char, std::string_view> parseAxisValue(std::string_view text, std::string_view option)
{
    const auto colon = text.find(':');
    if (colon == std::string_view::npos)
        throw BadInput(std::string(option) + " takes AXIS:VALUE, such as x:1.5; got '" + std::string(text) + "'");
    const auto axis = trim(text.substr(0, colon));
    const char a = axis.size() == 1 ? static_cast<char>(axis[0] | 0x20) : '?';
    if (a != 'x' && a != 'y' && a != 'z')
        throw BadInput("unknown axis '" + std::string(axis) + "' in " + std::string(option) + " (expected x, y or z)");
    return {a, text.substr(colon + 1)};
}

std::string expectedNames(const std::vector<std::string_view>& names)
{
    std::string out;
    for (std::size_t k = 0; k < names.size(); ++k)
        out += (k == 0 ? "" : k + 1 == names.size() ? " or " : ", ") + std::string(names[k]);
    return out;
}

namespace {
template <class F>
std::string formatReal(F v, bool exact)
{
    char buffer[64];
    if (exact) {
        std::snprintf(buffer, sizeof buffer, "%a", static_cast<double>(v));
        return buffer;
    }
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, v);
    return std::string(buffer, result.ptr);
}
template <class F>
std::string jsonReal(F v, bool exact)
{
    return exact || !std::isfinite(v) ? jsonString(formatReal(v, exact)) : formatReal(v, false);
}
} // namespace

std::string format(int v, bool) { return std::to_string(v); }
std::string format(float v, bool exact) { return formatReal(v, exact); }
std::string format(double v, bool exact) { return formatReal(v, exact); }
std::string json(int v, bool) { return std::to_string(v); }
// A float as the double of the same value, so that a JSON reader, which reads doubles, gets the
// stored value exactly ("0.8660253882408142", where the text output shows "0.8660254").
std::string json(float v, bool exact) { return jsonReal(static_cast<double>(v), exact); }
std::string json(double v, bool exact) { return jsonReal(v, exact); }

std::string jsonString(std::string_view s)
{
    std::string out = "\"";
    for (const char c : s) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", c);
            out += escape;
        } else {
            out += c;
        }
    }
    return out + "\"";
}

void writeFileAtomically(const std::string& path, const std::string& content)
{
    const auto slash = path.rfind('/');
    std::string temporary = (slash == std::string::npos ? std::string() : path.substr(0, slash + 1)) + ".quillon-XXXXXX";
    const int fd = mkstemp(temporary.data());
    if (fd < 0) throw BadInput("cannot write " + path + ": " + std::strerror(errno));
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(fd, 0666 & ~mask); // as an ordinary new file, not mkstemp's 0600
    std::size_t done = 0;
    while (done < content.size()) {
        const auto n = ::write(fd, content.data() + done, content.size() - done);
        if (n <= 0) break;
        done += static_cast<std::size_t>(n);
    }
    const int error = done < content.size() ? errno : 0;
    if (::close(fd) != 0 || error != 0 || std::rename(temporary.c_str(), path.c_str()) != 0) {
        const int saved = error ? error : errno;
        std::remove(temporary.c_str());
        throw BadInput("cannot write " + path + ": " + std::strerror(saved));
    }
}

namespace {
std::string temporaryBeside(const std::string& path)
{
    const auto slash = path.rfind('/');
    return (slash == std::string::npos ? std::string() : path.substr(0, slash + 1)) + ".quillon-XXXXXX";
}
} // namespace

Output::Output(const std::string& path) : path_(path)
{
    if (path.empty()) {
        file_ = stdout;
        return;
    }
    temporary_ = temporaryBeside(path);
    const int fd = mkstemp(temporary_.data());
    if (fd < 0) throw BadInput("cannot write " + path + ": " + std::strerror(errno));
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(fd, 0666 & ~mask); // as an ordinary new file, not mkstemp's 0600
    file_ = ::fdopen(fd, "w");
    if (!file_) {
        const int saved = errno;
        ::close(fd);
        std::remove(temporary_.c_str());
        throw BadInput("cannot write " + path + ": " + std::strerror(saved));
    }
}

Output::~Output()
{
    if (file_ && file_ != stdout) {
        std::fclose(file_);
        std::remove(temporary_.c_str());
    }
}

void Output::write(std::string_view text)
{
    if (std::fwrite(text.data(), 1, text.size(), file_) != text.size())
        throw BadInput("cannot write " + (path_.empty() ? std::string("standard output") : path_) + ": " + std::strerror(errno));
}

void Output::commit()
{
    if (file_ == stdout) {
        if (std::fflush(stdout) != 0) throw BadInput(std::string("cannot write standard output: ") + std::strerror(errno));
        return;
    }
    std::FILE* file = file_;
    file_ = nullptr;
    const bool written = std::fflush(file) == 0 && !std::ferror(file);
    const int error = errno;
    if (std::fclose(file) != 0 || !written || std::rename(temporary_.c_str(), path_.c_str()) != 0) {
        const int saved = !written ? error : errno;
        std::remove(temporary_.c_str());
        throw BadInput("cannot write " + path_ + ": " + std::strerror(saved));
    }
}

LineReader::LineReader(const std::string& path) : name_(path == "-" ? "standard input" : path)
{
    if (path == "-") {
        file_ = stdin;
        return;
    }
    errno = 0;
    file_ = std::fopen(path.c_str(), "r");
    if (!file_) throw BadInput("cannot read " + path + ": " + std::strerror(errno ? errno : ENOENT));
}

LineReader::~LineReader()
{
    std::free(buffer_);
    if (file_ && file_ != stdin) std::fclose(file_);
}

bool LineReader::next(std::string_view& line)
{
    for (;;) {
        errno = 0;
        const ssize_t n = ::getline(&buffer_, &capacity_, file_);
        if (n < 0) {
            if (std::ferror(file_)) throw BadInput("cannot read " + name_ + ": " + std::strerror(errno ? errno : EIO));
            return false;
        }
        ++number_;
        line = trim(std::string_view(buffer_, static_cast<std::size_t>(n)));
        if (!line.empty() && line[0] != '#') return true;
    }
}

std::string LineReader::where() const { return name_ + ", line " + std::to_string(number_); }

} // namespace tool
