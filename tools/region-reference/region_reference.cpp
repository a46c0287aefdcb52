// SPDX-License-Identifier: MIT
// Writes the reference transcript of region scripts, run on the platform's own region functions.
//
// Built for Windows (see regenerate_region_corpus.sh) and run there or under a compatible
// runtime. Reads a script on standard input: "case NAME" lines start a case with empty slots,
// "#" lines are comments, every other line is a command of region_script.h. Each line is echoed,
// and each command is followed by the lines it printed.
#include <windows.h>

#include "region_script.h"

#include <cstdio>
#include <iostream>
#include <string>

int main()
{
    RegionScript script;
    std::string line;
    while (std::getline(std::cin, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (line.empty()) continue;
        std::printf("%s\n", line.c_str());
        if (line[0] == '#') continue;
        if (line.rfind("case ", 0) == 0) {
            script.reset();
            continue;
        }
        try {
            for (const std::string& out : script.run(line)) std::printf("%s\n", out.c_str());
        } catch (const std::exception& e) {
            std::fprintf(stderr, "error: %s in: %s\n", e.what(), line.c_str());
            return 1;
        }
        std::fflush(stdout);
    }
    return 0;
}
