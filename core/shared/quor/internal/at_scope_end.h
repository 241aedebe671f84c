#ifndef QUOR_INTERNAL_AT_SCOPE_END_H
#define QUOR_INTERNAL_AT_SCOPE_END_H

namespace quor::internal {

// Calls a function, which must not throw, when its scope is left in whatever way.
template <typename Function>
class AtScopeEnd {
public:
    explicit AtScopeEnd(const Function& function) : m_function(function) {}
    AtScopeEnd(const AtScopeEnd&) = delete;
    AtScopeEnd& operator=(const AtScopeEnd&) = delete;
    ~AtScopeEnd() { m_function(); }

private:
    const Function m_function;
};

}  // namespace quor::internal

#endif
