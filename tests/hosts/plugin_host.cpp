// plugin_host PLUGIN: a program with hidden visibility and a plug-in that is opened for itself
// alone share one trace with one level, one log and one version.
#include <dlfcn.h>
#include <quor/log.h>
#include <quor/trace.h>
#include <quor/trace_file.h>
#include <quor/ver_info.h>

#include <cstring>
#include <iostream>

#include "plugin.h"

int main(int, char** argv) {
    quor::TraceFile::Init("/dev/null", "");
    quor::TraceFile::GetInstance().Start(quor::Medium);
    void* const plugin = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    void* const symbol = plugin != nullptr ? dlsym(plugin, "Look") : nullptr;
    if (symbol == nullptr) {
        std::cerr << dlerror() << '\n';
        return 2;
    }
    decltype(&Look) look = nullptr;
    std::memcpy(&look, &symbol, sizeof(look));
    const Seen seen = look();
    return seen.trace == &quor::TraceFile::GetInstance() && seen.log == &quor::Log::GetInstance() &&
                   seen.version == &quor::VerInfo::GetInstance() && seen.medium && !seen.high
               ? 0
               : 1;
}
