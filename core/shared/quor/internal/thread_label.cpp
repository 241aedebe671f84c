#include <quor/internal/thread_label.h>

#include <quor/process.h>

#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <new>

namespace quor::internal {
namespace {

// Returns a word that reads 0 in every new process, since the kernel wipes its page on fork. Null
// if the kernel does not do that.
std::atomic<unsigned>* MapProcessWord() {
    const auto size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    void* const page =
        mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (page == MAP_FAILED) {
        return nullptr;
    }
    // An emulator that accepts any advice, and follows none, also accepts one that does not exist.
    if (madvise(page, size, MADV_WIPEONFORK) != 0 || madvise(page, size, -1) == 0) {
        munmap(page, size);
        return nullptr;
    }
    return new (page) std::atomic<unsigned>(0);
}

// In the room that the C library sets aside for libraries loaded late, to be read without a call.
__attribute__((tls_model("initial-exec"))) thread_local ThreadLabel t_label{};

// Null until the first line, and if the kernel does not wipe pages.
std::atomic<std::atomic<unsigned>*> g_processWord(nullptr);

__attribute__((noinline)) void RenewLabel() {
    static std::atomic<unsigned> processes(0);  // grows from parent to child, as fork copies it
    static std::atomic<unsigned>* const word = MapProcessWord();
    g_processWord = word;
    unsigned process = 0;
    if (word != nullptr) {
        const unsigned next = ++processes;
        process = word->compare_exchange_strong(process, next) ? next : process;
    }
    t_label.length =
        static_cast<unsigned>(std::snprintf(t_label.text, c_threadLabelRoom, "[%05d: ", GetTid()));
    t_label.process = process;
}

}  // namespace

const ThreadLabel& LabelOfThread() {
    const std::atomic<unsigned>* const word = g_processWord;
    if (word == nullptr || t_label.process == 0 || t_label.process != word->load()) {
        RenewLabel();
    }
    return t_label;
}

}  // namespace quor::internal
