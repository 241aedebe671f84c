#include <algorithm>
#include <functional>
#include <map>
#include <unordered_map>
#include <vector>

#include "output.h"
#include "sinks.h"
#include "text.h"

namespace timeline {
namespace {

// The format keeps ";" for itself.
std::string Frame(std::string_view function) {
    std::string frame = Printable(function);
    std::replace(frame.begin(), frame.end(), ';', ',');
    return frame;
}

// Stacks form a tree, whose size follows the number of different stacks.
class Folded : public Sink {
public:
    explicit Folded(Output& output) : m_output(output) {}

    void Enter(std::int64_t thread, const Call& call) override {
        const auto [top, isNew] = m_tops.try_emplace(thread);
        if (isNew) {
            top->second.m_node = Add({thread, nullptr, c_none, 0});
        }
        if (++top->second.m_depth > c_deepest) {
            return;
        }
        std::size_t& node = top->second.m_node;
        const auto [inner, isNewStack] = m_inner.try_emplace({node, call.m_function}, 0);
        if (isNewStack) {
            inner->second = Add({thread, call.m_function, node, 0});
        }
        node = inner->second;
    }
    void Leave(std::int64_t thread, const Call& call) override {
        Top& top = m_tops[thread];
        m_nodes[top.m_node].m_own += call.m_end - call.m_begin - call.m_inner;
        if (--top.m_depth < c_deepest) {
            top.m_node = m_nodes[top.m_node].m_outer;
        }
    }
    void Finish() override {
        std::stable_sort(m_written.begin(), m_written.end(),
                         [this](std::size_t left, std::size_t right) {
                             return m_nodes[left].m_thread < m_nodes[right].m_thread;
                         });
        for (const std::size_t node : m_written) {
            if (m_nodes[node].m_own > 0) {
                WriteStack(node);
            }
        }
    }

private:
    static constexpr std::size_t c_none = SIZE_MAX;
    // Of a deeper stack this much is written: lines of ever longer stacks would fill the disk.
    static constexpr std::size_t c_deepest = 1000;

    struct Top {
        std::size_t m_node = c_none;
        std::size_t m_depth = 0;
    };

    struct Node {
        std::int64_t m_thread;
        const std::string* m_function;  // none in the node of the thread itself
        std::size_t m_outer;
        std::int64_t m_own;
    };
    struct Key {
        std::size_t m_outer;
        const std::string* m_function;
        bool operator==(const Key& other) const {
            return m_outer == other.m_outer && m_function == other.m_function;
        }
    };
    struct Hash {
        std::size_t operator()(const Key& key) const {
            return std::hash<const void*>()(key.m_function) + key.m_outer * 0x9E3779B1U;
        }
    };

    std::size_t Add(const Node& node) {
        m_written.push_back(m_nodes.size());
        m_nodes.push_back(node);
        return m_nodes.size() - 1;
    }
    void WriteStack(std::size_t node) {
        std::vector<const std::string*> stack;
        for (std::size_t at = node; m_nodes[at].m_function != nullptr; at = m_nodes[at].m_outer) {
            stack.push_back(m_nodes[at].m_function);
        }
        m_output << m_nodes[node].m_thread;
        for (auto function = stack.rbegin(); function != stack.rend(); ++function) {
            m_output << ";" << m_frame(*function);
        }
        m_output << " " << m_nodes[node].m_own << "\n";
    }
    Output& m_output;
    std::vector<Node> m_nodes;
    std::vector<std::size_t> m_written;  // the nodes in the order in which they are written
    std::unordered_map<Key, std::size_t, Hash> m_inner;
    std::map<std::int64_t, Top> m_tops;
    Made<Frame> m_frame;
};

}  // namespace

std::unique_ptr<Sink> MakeFolded(Output& output) {
    return std::make_unique<Folded>(output);
}

}  // namespace timeline
