// SPDX-License-Identifier: MIT
// quillon info: the version record and the exported names, read from the module file that this
// process has loaded. The file is parsed here, with nothing but <elf.h>: the section
// .quillon.version holds the record as "Name=Value" strings, each ended by a NUL, and the dynamic
// symbol table holds the exported names, which are demangled and listed once each (constructor
// and destructor variants demangle to the same name).
#include "common.h"

#include <CLI/CLI.hpp>

#if defined(_WIN32)

namespace tool {
void addInfoCommand(CLI::App& app)
{
    app.add_subcommand("info", "Version record and exported names of the module (not on Windows)")->callback([] {
        throw Failure("info is not supported on Windows: read the version resource and export table of Quillon.dll");
    });
}
} // namespace tool

#else

#include <cxxabi.h>
#include <dlfcn.h>
#include <elf.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>

namespace tool {
namespace {

struct ModuleInfo {
    std::string path;
    std::vector<std::pair<std::string, std::string>> record;
    std::vector<std::string> exports;
};

// The file's bytes, read with every offset checked: a damaged file is reported, never followed.
class Image {
public:
    explicit Image(std::string path) : path_(std::move(path))
    {
        std::ifstream in(path_, std::ios::binary);
        if (!in) throw Failure("cannot read the module " + path_);
        bytes_.assign(std::istreambuf_iterator<char>(in), {});
    }
    template <class S>
    S at(std::uint64_t offset, std::uint64_t index = 0) const
    {
        const std::uint64_t start = offset + index * sizeof(S);
        if (offset > bytes_.size() || start < offset || start > bytes_.size() || bytes_.size() - start < sizeof(S))
            throw damaged();
        S s;
        std::memcpy(&s, bytes_.data() + start, sizeof s);
        return s;
    }
    std::string_view range(std::uint64_t offset, std::uint64_t size) const
    {
        if (offset > bytes_.size() || bytes_.size() - offset < size) throw damaged();
        return std::string_view(bytes_.data() + offset, size);
    }
    // The NUL-terminated string at offset within [table, table + size).
    std::string_view string(std::uint64_t table, std::uint64_t size, std::uint64_t offset) const
    {
        if (offset >= size) throw damaged();
        const auto all = range(table, size).substr(offset);
        const auto end = all.find('\0');
        if (end == std::string_view::npos) throw damaged();
        return all.substr(0, end);
    }
    Failure damaged() const { return Failure("the module " + path_ + " is not a readable ELF file"); }
    std::size_t size() const { return bytes_.size(); }

private:
    std::string path_;
    std::vector<char> bytes_;
};

std::string demangle(const char* name)
{
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> text(abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return status == 0 && text ? std::string(text.get()) : std::string(name);
}

template <class Ehdr, class Shdr, class Sym>
void readElf(const Image& image, ModuleInfo& info)
{
    const auto header = image.at<Ehdr>(0);
    if (header.e_shentsize != sizeof(Shdr)) throw image.damaged();
    const auto section = [&](unsigned k) { return image.at<Shdr>(header.e_shoff, k); };
    const Shdr names = section(header.e_shstrndx);
    bool haveRecord = false;
    for (unsigned k = 0; k < header.e_shnum; ++k) {
        const Shdr s = section(k);
        if (image.string(names.sh_offset, names.sh_size, s.sh_name) == ".quillon.version") {
            haveRecord = true;
            for (auto field : split(image.range(s.sh_offset, s.sh_size), '\0')) {
                const auto equals = field.find('=');
                if (equals != std::string_view::npos)
                    info.record.emplace_back(field.substr(0, equals), field.substr(equals + 1));
            }
        }
        if (s.sh_type != SHT_DYNSYM || s.sh_entsize != sizeof(Sym)) continue;
        const Shdr strings = section(s.sh_link);
        for (std::uint64_t i = 1; i < s.sh_size / sizeof(Sym); ++i) {
            const Sym sym = image.at<Sym>(s.sh_offset, i);
            const unsigned binding = sym.st_info >> 4; // ELF32_ST_BIND and ELF64_ST_BIND alike
            if (sym.st_shndx == SHN_UNDEF || (binding != STB_GLOBAL && binding != STB_WEAK)) continue;
            const std::string name(image.string(strings.sh_offset, strings.sh_size, sym.st_name));
            if (name != "_init" && name != "_fini") info.exports.push_back(demangle(name.c_str()));
        }
    }
    if (!haveRecord) throw Failure("the module " + info.path + " has no .quillon.version section");
    std::sort(info.exports.begin(), info.exports.end());
    info.exports.erase(std::unique(info.exports.begin(), info.exports.end()), info.exports.end());
}

// The file of the loaded module: the one that defines an exported member.
std::string loadedModule()
{
    Dl_info where{};
    void* member = dlsym(RTLD_DEFAULT, "_ZN9TransformIdE13Function_2430Ev"); // Transform<double>::Function_2430()
    if (!member || !dladdr(member, &where) || !where.dli_fname) throw Failure("cannot find the loaded quillon module");
    return std::filesystem::path(where.dli_fname).lexically_normal().string();
}

ModuleInfo readModule()
{
    ModuleInfo info{loadedModule(), {}, {}};
    const Image image(info.path);
    const auto ident = image.range(0, EI_NIDENT);
    if (ident.substr(0, SELFMAG) != ELFMAG) throw image.damaged();
    if (ident[EI_CLASS] == ELFCLASS64)
        readElf<Elf64_Ehdr, Elf64_Shdr, Elf64_Sym>(image, info);
    else if (ident[EI_CLASS] == ELFCLASS32)
        readElf<Elf32_Ehdr, Elf32_Shdr, Elf32_Sym>(image, info);
    else
        throw image.damaged();
    return info;
}

} // namespace

void addInfoCommand(CLI::App& app)
{
    auto asJson = std::make_shared<bool>(false);
    auto* cmd = app.add_subcommand("info", "Version record and exported names, read from the loaded module file");
    cmd->add_flag("--json", *asJson, "Print JSON");
    cmd->callback([asJson] {
        const ModuleInfo info = readModule();
        std::string out;
        if (*asJson) {
            out = "{\n  \"module\": " + jsonString(info.path) + ",\n  \"version\": {";
            for (std::size_t k = 0; k < info.record.size(); ++k)
                out += std::string(k ? "," : "") + "\n    " + jsonString(info.record[k].first) + ": " + jsonString(info.record[k].second);
            out += "\n  },\n  \"exports\": " + jsonArray(info.exports, [](const std::string& s) { return jsonString(s); }) + "\n}\n";
        } else {
            out = "module " + info.path + "\nversion record\n";
            std::size_t width = 0;
            for (const auto& field : info.record) width = std::max(width, field.first.size());
            for (const auto& [name, value] : info.record)
                out += "  " + name + (value.empty() ? "" : std::string(width - name.size() + 2, ' ') + value) + "\n";
            out += std::to_string(info.exports.size()) + " exported names\n";
            for (const auto& name : info.exports) out += "  " + name + "\n";
        }
        std::cout << out;
    });
}

} // namespace tool

#endif
