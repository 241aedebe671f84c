#include <quor/internal/cancellation_off.h>

namespace quor::internal {

__thread CancellationState t_cancellation{};

}  // namespace quor::internal
