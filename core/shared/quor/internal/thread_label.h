#ifndef QUOR_INTERNAL_THREAD_LABEL_H
#define QUOR_INTERNAL_THREAD_LABEL_H

#include <atomic>

namespace quor::internal {

constexpr unsigned c_threadLabelRoom = 16;

// How every line of a thread begins: "[01234: ", with the kernel's id of the thread.
struct ThreadLabel {
    unsigned process;  // the process this was made in
    unsigned length;
    char text[c_threadLabelRoom];
};

extern __thread ThreadLabel t_threadLabel;

// A word that differs in every process. Null until the first line, and if the kernel has no means
// to tell processes apart.
extern std::atomic<std::atomic<unsigned>*> g_processWord;

void RenewLabelOfThread();

// Returns the calling thread's label. Asks the kernel once per thread and process: system calls are
// expensive. The label is right in a forked child, and in one that was cloned behind the C
// library's back. A child that shares this memory (CLONE_VM) needs a thread area of its own, which
// the C library demands as well.
inline const ThreadLabel& LabelOfThread() {
    const std::atomic<unsigned>* const word = g_processWord;
    const ThreadLabel& label = t_threadLabel;
    if (word == nullptr || label.process == 0 || label.process != word->load()) {
        RenewLabelOfThread();
    }
    return label;
}

}  // namespace quor::internal

#endif
