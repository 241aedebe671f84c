#include <quor/trace.h>
#include <quor/trace_file.h>
#include <sys/wait.h>
#include <unistd.h>

int main() {
    quor::TraceFile::Init("children.trace", ".");
    quor::TraceFile::GetInstance().Start(quor::Low);
    const pid_t child = fork();
    if (child == 0) {
        QUOR_TRACE(quor::Low, "the child, under its own id");
        _exit(0);  // exit() would write the parent's trailer
    }
    waitpid(child, nullptr, 0);
    QUOR_TRACE(quor::Low, "the parent goes on");
}
