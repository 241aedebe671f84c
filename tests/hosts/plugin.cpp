// A plug-in with hidden visibility: what it sees of the library's single things.
#include "plugin.h"

#include <quor/log.h>
#include <quor/trace.h>
#include <quor/trace_file.h>
#include <quor/ver_info.h>

Seen Look() {
    return {&quor::TraceFile::GetInstance(), &quor::Log::GetInstance(),
            &quor::VerInfo::GetInstance(), quor::TraceGateOpen(quor::Medium),
            quor::TraceGateOpen(quor::High)};
}
