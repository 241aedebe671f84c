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

// Stacks form a tree, whose size follows the number of different stacks.
class Folded : public Sink {
public:
    Folded(Output& output, const Style& style)
        : m_output(output), m_frame([name = style.m_name](std::string_view function) {
              std::string frame = name(function);
              std::replace(frame.begin(), frame.end(), ';', ',');  // the format's own
              return frame;
          }) {}

    void Enter(const Thread& thread, const Call& call) override {
        Top& top = m_tops[thread];
        if (top.m_node == c_none) {
            const auto [root, isNew] = m_roots.try_emplace(thread.m_id, m_nodes.size());
            top.m_node = isNew ? Add({thread.m_id, nullptr, c_none, 0, true, false}) : root->second;
        }
        top.m_isCut = false;
        if (++top.m_depth <= c_deepest) {
            top.m_node = Inner(top.m_node, call.m_function, true);
        }
    }
    void Leave(const Thread& thread, const Call& call) override {
        Top& top = m_tops[thread];
        const std::size_t node =
            call.HasNoExit() ? WithoutExit(top.m_node, call.m_cutDepth) : top.m_node;
        m_nodes[node].m_own += call.Own();
        m_nodes[node].m_isInnermost |= call.HasNoExit() && !top.m_isCut;
        top.m_isCut = call.HasNoExit();
        if (--top.m_depth < c_deepest) {
            top.m_node = m_nodes[top.m_node].m_outer;
        }
    }
    void EndRun(const Run& /*run*/) override { m_tops.Clear(); }
    void Finish() override {
        std::stable_sort(m_written.begin(), m_written.end(),
                         [this](std::size_t left, std::size_t right) {
                             return m_nodes[left].m_thread < m_nodes[right].m_thread;
                         });
        for (const std::size_t node : m_written) {
            if (m_nodes[node].m_own > 0 || m_nodes[node].m_isInnermost) {
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
        bool m_isCut = false;  // the call that was left last had no exit
    };

    struct Node {
        std::int64_t m_thread;
        const Name* m_function;  // none in the node of the thread itself
        std::size_t m_outer;
        std::int64_t m_own;
        bool m_hasExit;
        bool m_isInnermost;  // of a stack that had come to no end: written even without a time
    };
    struct Key {
        std::size_t m_outer;
        const Name* m_function;
        bool m_hasExit;
        bool operator==(const Key& other) const {
            return m_outer == other.m_outer && m_function == other.m_function &&
                   m_hasExit == other.m_hasExit;
        }
    };
    struct Hash {
        std::size_t operator()(const Key& key) const {
            return std::hash<const void*>()(key.m_function) + key.m_outer * 0x9E3779B1U +
                   (key.m_hasExit ? 1 : 0);
        }
    };

    std::size_t Add(const Node& node) {
        m_written.push_back(m_nodes.size());
        m_nodes.push_back(node);
        return m_nodes.size() - 1;
    }
    std::size_t Inner(std::size_t outer, const Name* function, bool hasExit) {
        const auto [inner, isNew] = m_inner.try_emplace({outer, function, hasExit}, 0);
        if (isNew) {
            inner->second = Add({m_nodes[outer].m_thread, function, outer, 0, hasExit, false});
        }
        return inner->second;
    }
    // The nodes from the thread's own to this one, outermost first.
    std::vector<std::size_t> Stack(std::size_t node) const {
        std::vector<std::size_t> stack;
        for (; m_nodes[node].m_function != nullptr; node = m_nodes[node].m_outer) {
            stack.push_back(node);
        }
        std::reverse(stack.begin(), stack.end());
        return stack;
    }
    // The same stack, whose calls from `cutDepth` on are known to have no exit.
    std::size_t WithoutExit(std::size_t node, std::size_t cutDepth) {
        const std::vector<std::size_t> stack = Stack(node);
        std::size_t at = stack.empty() ? node : m_nodes[stack.front()].m_outer;
        for (std::size_t frame = 0; frame < stack.size(); ++frame) {
            at = Inner(at, m_nodes[stack[frame]].m_function, frame < cutDepth);
        }
        return at;
    }
    void WriteStack(std::size_t node) {
        m_output << m_nodes[node].m_thread;
        for (const std::size_t frame : Stack(node)) {
            m_output << ";" << m_frame(m_nodes[frame].m_function)
                     << (m_nodes[frame].m_hasExit ? "" : " (no exit)");
        }
        m_output << " " << m_nodes[node].m_own << "\n";
    }
    Output& m_output;
    std::vector<Node> m_nodes;
    std::vector<std::size_t> m_written;  // the nodes in the order in which they are written
    std::unordered_map<Key, std::size_t, Hash> m_inner;
    ByThread<Top> m_tops;
    std::map<std::int64_t, std::size_t> m_roots;  // threads' own nodes, by their ids
    Made m_frame;
};

}  // namespace

std::unique_ptr<Sink> MakeFolded(Output& output, const Style& style) {
    return std::make_unique<Folded>(output, style);
}

}  // namespace timeline
