// SPDX-License-Identifier: MIT
// quillon: the library's command-line tool. Bad input gives one line on standard error and exit
// status 2; a file it was asked to write appears only when the command succeeds.
#include "common.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <iostream>

namespace {

constexpr const char* kCommands[] = {"map", "matrix", "region", "info", "demo"};

// Edit distance with a swap of two neighbours counted as one edit ("--mvoe" is one from "--move").
std::size_t distance(std::string_view a, std::string_view b)
{
    std::vector<std::vector<std::size_t>> d(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) d[i][0] = i;
    for (std::size_t j = 0; j <= b.size(); ++j) d[0][j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i)
        for (std::size_t j = 1; j <= b.size(); ++j) {
            d[i][j] = std::min({d[i - 1][j] + 1, d[i][j - 1] + 1, d[i - 1][j - 1] + (a[i - 1] != b[j - 1])});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) d[i][j] = std::min(d[i][j], d[i - 2][j - 2] + 1);
        }
    return d[a.size()][b.size()];
}

// The known name closest to the given one, if one is close (at most two edits, or the given
// word begins it); otherwise nothing.
std::string closest(std::string_view given, const std::vector<std::string>& known)
{
    std::string best;
    std::size_t bestDistance = 3; // at most two edits
    for (const auto& k : known) {
        const bool prefix = given.size() >= 3 && k.compare(0, given.size(), given) == 0;
        const std::size_t d = prefix ? 1 : distance(given, k);
        if (d < bestDistance) best = k, bestDistance = d;
    }
    return best;
}

// " (did you mean X?)", or nothing.
std::string suggestion(std::string_view given, const std::vector<std::string>& known)
{
    const std::string best = closest(given, known);
    return best.empty() ? "" : " (did you mean " + best + "?)";
}

struct KnownOption {
    std::string name, value; // "--move", "AXIS:AMOUNT" (empty for a flag)
};

std::vector<KnownOption> optionsOf(const CLI::App& command)
{
    std::vector<KnownOption> known;
    for (const CLI::Option* option : command.get_options([](const CLI::Option*) { return true; })) {
        if (!option->nonpositional()) continue;
        const bool flag = option->get_expected_max() == 0;
        const std::string value = flag ? "" : option->get_type_name().empty() ? "VALUE" : option->get_type_name();
        for (const auto& l : option->get_lnames()) known.push_back({"--" + l, value});
        for (const auto& s : option->get_snames()) known.push_back({"-" + s, value});
    }
    return known;
}

bool hasPositionals(const CLI::App& command)
{
    for (const CLI::Option* option : command.get_options([](const CLI::Option*) { return true; }))
        if (!option->nonpositional()) return true;
    return false;
}

// A word that is meant as an option, not a value: "-1,2,3" and "-.5,0,0" are points, "-" is
// standard input.
bool looksLikeOption(std::string_view word)
{
    return word.size() >= 2 && word[0] == '-' && !(word[1] >= '0' && word[1] <= '9') && word[1] != '.';
}

// Checks the words after a command name against the command's options before the parser sees
// them, so that every mistake is told in the tool's own words. Gives the words back with the
// arguments after a "--", so that the parser takes "-.5,0,0" for a point too.
std::vector<std::string> checkWords(const CLI::App& app, const CLI::App& command, const std::vector<std::string>& words)
{
    const auto known = optionsOf(command);
    std::vector<std::string> names;
    for (const auto& k : known) names.push_back(k.name);
    const bool positionals = hasPositionals(command);
    std::vector<std::string> options, arguments;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& w = words[i];
        if (w == "--") {
            arguments.insert(arguments.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
            break;
        }
        if (!looksLikeOption(w)) {
            arguments.push_back(w);
            continue;
        }
        const auto equals = w.find('=');
        const std::string name = w.substr(0, w.rfind("--", 0) == 0 ? equals : std::min<std::size_t>(2, w.size()));
        const auto k = std::find_if(known.begin(), known.end(), [&](const KnownOption& o) { return o.name == name; });
        if (k == known.end()) {
            std::string hint = name.size() > 2 ? suggestion(name, names) : "";
            // Perhaps an option of another command: "quillon --mvoe" means "quillon map --move".
            for (const CLI::App* other : app.get_subcommands([](const CLI::App*) { return true; }))
                if (hint.empty() && name.size() > 2 && other != &command) {
                    std::vector<std::string> theirs;
                    for (const auto& o : optionsOf(*other)) theirs.push_back(o.name);
                    const std::string best = closest(name, theirs);
                    if (!best.empty()) hint = " (did you mean " + other->get_name() + " " + best + "?)";
                }
            throw tool::BadInput("unknown option '" + name + "'" + (hint.empty() ? " for " + command.get_name() : hint));
        }
        options.push_back(w);
        const bool attached = w.rfind("--", 0) == 0 ? equals != std::string::npos : w.size() > 2;
        if (k->value.empty() || attached) continue;
        if (i + 1 == words.size() || (looksLikeOption(words[i + 1]) && words[i + 1].rfind("--", 0) == 0))
            throw tool::BadInput("option " + name + " needs a value (" + k->value + ")");
        options.push_back(words[++i]);
    }
    if (!arguments.empty() && !positionals)
        throw tool::BadInput(command.get_name() + " takes no arguments; got '" + arguments[0] + "'");
    if (!arguments.empty()) {
        options.push_back("--");
        options.insert(options.end(), arguments.begin(), arguments.end());
    }
    return options;
}

} // namespace

int main(int argc, char** argv)
{
    CLI::App app{"quillon: exact 4x4 transforms over float, double and guarddouble"};
    app.name("quillon");
    app.require_subcommand(1);
    app.set_version_flag("--version,-V", std::string("quillon ") + QUILLON_VERSION);
    app.footer("Commands: map, matrix, region, info, demo; each has --help.\n"
               "A bare quillon runs the demo (quillon --svg FILE also draws its picture). Each command has\n"
               "--json; bad input gives one line on standard error and exit status 2, and writes no file.");
    tool::addMapCommand(app);
    tool::addMatrixCommand(app);
    tool::addRegionCommand(app);
    tool::addInfoCommand(app);
    tool::addDemoCommand(app);
    try {
        std::vector<std::string> args(argv + 1, argv + argc);
        const std::vector<std::string> topLevel = {"--help", "-h", "--version", "-V"};
        // A bare quillon, or one given only the demo's options, runs the demo.
        if (args.empty() || (looksLikeOption(args[0]) && std::find(topLevel.begin(), topLevel.end(), args[0]) == topLevel.end()))
            args.insert(args.begin(), "demo");
        if (std::find(topLevel.begin(), topLevel.end(), args[0]) == topLevel.end()) {
            CLI::App* command = nullptr;
            for (CLI::App* c : app.get_subcommands([](CLI::App*) { return true; }))
                if (c->check_name(args[0])) command = c;
            if (!command) {
                const std::vector<std::string> names(std::begin(kCommands), std::end(kCommands));
                throw tool::BadInput("unknown command '" + args[0] + "'" + suggestion(args[0], names) +
                                     " (commands: map, matrix, region, info, demo)");
            }
            std::vector<std::string> words = checkWords(app, *command, std::vector<std::string>(args.begin() + 1, args.end()));
            words.insert(words.begin(), args[0]);
            args = std::move(words);
        }
        std::reverse(args.begin(), args.end()); // CLI11 takes the words last first
        app.parse(args);
    } catch (const CLI::Success& e) { // --help, --version
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        std::string message = e.what();
        if (!message.empty()) message[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(message[0])));
        std::fflush(stdout);
        std::cerr << "quillon: " << message << "\n";
        return 2;
    } catch (const tool::BadInput& e) {
        std::fflush(stdout);
        std::cerr << "quillon: " << e.what() << "\n";
        return 2;
    } catch (const std::exception& e) {
        std::fflush(stdout);
        std::cerr << "quillon: " << e.what() << "\n";
        return 1;
    }
    return 0;
}
