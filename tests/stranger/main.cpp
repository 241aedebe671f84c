#include <quor/any.h>
#include <quor/log.h>
#include <quor/trace.h>
#include <quor/trace_file.h>

#include <iostream>

int main() {
    quor::TraceFile::Init("stranger.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);
    QUOR_TRACE(quor::Low, "A stranger was here");
    const quor::Any answer = 42;
    std::cout << answer << std::endl;
}
