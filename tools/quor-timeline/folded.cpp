#include <algorithm>
#include <map>

#include "sinks.h"

namespace timeline {
namespace {

// Stacks form a tree, whose size follows the number of different stacks.
class Folded : public Sink {
public:
    explicit Folded(std::ostream& output) : m_output(output) {}

    void Enter(long thread, const Call& call) override {
        Node*& top = m_tops.try_emplace(thread, nullptr).first->second;
        top = top == nullptr ? &m_threads[thread] : top;
        Node& inner = top->m_inner[call.m_function];
        inner.m_outer = top;
        top = &inner;
    }
    void Leave(long thread, const Call& call) override {
        Node*& top = m_tops[thread];
        top->m_own += call.m_end - call.m_begin - call.m_inner;
        top = top->m_outer;
    }
    void Run(long /*process*/) override { m_tops.clear(); }
    void Finish() override {
        for (const auto& [thread, node] : m_threads) {
            Write(std::to_string(thread), node);
        }
    }

private:
    struct Node {
        std::int64_t m_own = 0;
        Node* m_outer = nullptr;
        std::map<const std::string*, Node> m_inner;
    };

    // The format keeps ";" for itself.
    static std::string Frame(const std::string& function) {
        std::string frame = Printable(function);
        std::replace(frame.begin(), frame.end(), ';', ',');
        return frame;
    }
    void Write(const std::string& path, const Node& node) {
        if (node.m_own > 0) {
            m_output << path << ' ' << node.m_own << '\n';
        }
        for (const auto& [function, inner] : node.m_inner) {
            Write(path + ";" + Frame(*function), inner);
        }
    }

    std::ostream& m_output;
    std::map<long, Node> m_threads;
    std::map<long, Node*> m_tops;
};

}  // namespace

std::unique_ptr<Sink> MakeFolded(std::ostream& output) {
    return std::make_unique<Folded>(output);
}

}  // namespace timeline
