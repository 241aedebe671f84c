#include <algorithm>

#include "tables.h"
#include "text.h"

namespace timeline {

void SlowTable::Leave(const Thread& thread, const Call& call) {
    if (call.m_function->m_number >= m_rows.size()) {
        m_rows.resize(call.m_function->m_number + 1);
    }
    Row& row = m_rows[call.m_function->m_number];
    const std::int64_t duration = call.Duration();
    row.m_total += call.m_isRecursive ? 0 : duration;
    row.m_own += call.Own();
    row.m_sum += static_cast<double>(duration);
    row.m_withoutExit += call.HasNoExit() ? 1 : 0;
    if (row.m_calls++ == 0 || duration > row.m_longest.Duration()) {
        row.m_function = call.m_function;
        row.m_longest = call;
        row.m_longestThread = thread.m_id;
    }
}

void SlowTable::EndRun(const Run& run, const Style& style, Output& output, Made& names) {
    std::vector<const Row*> rows;
    for (const Row& row : m_rows) {
        if (row.m_calls > 0) {
            rows.push_back(&row);
        }
    }
    // Names decide between equals, so that the table stays the same.
    std::sort(rows.begin(), rows.end(), [&style](const Row* left, const Row* right) {
        return std::make_pair(-Key(*left, style.m_sort),
                              std::string_view(left->m_function->m_text)) <
               std::make_pair(-Key(*right, style.m_sort),
                              std::string_view(right->m_function->m_text));
    });
    if (!rows.empty()) {
        output << "Slow\n     calls         own us       total us        mean us     longest us"
                  "  thread of it  "
               << Left("from", WhenText(run.m_end, run).size()) << "  function\n";
    }
    std::size_t shown = 0;
    for (const Row* const row : rows) {
        if (style.m_top > 0 && shown == style.m_top) {
            output << "  and " << static_cast<std::int64_t>(rows.size() - shown) << " more\n";
            break;
        }
        ++shown;
        const auto mean = static_cast<std::int64_t>(row->m_sum / static_cast<double>(row->m_calls));
        output << Right(std::to_string(row->m_calls), 10);
        for (const std::int64_t time :
             {row->m_own, row->m_total, mean, row->m_longest.Duration()}) {
            output << " " << Right(Micro(time), 14);
        }
        output << " " << Right(std::to_string(row->m_longestThread), 13) << "  "
               << WhenText(row->m_longest.m_begin, run) << "  " << names(row->m_function);
        if (row->m_withoutExit > 0) {
            output << " (" << row->m_withoutExit << " without exit)";
        }
        output << "  " << Printable(*row->m_longest.m_position.m_file) << ":"
               << row->m_longest.m_position.m_line << "\n";
    }
    m_rows.clear();
}

double SlowTable::Key(const Row& row, Style::Sort_e sort) {
    switch (sort) {
        case Style::eOwn:
            return static_cast<double>(row.m_own);
        case Style::eTotal:
            return static_cast<double>(row.m_total);
        case Style::eCalls:
            return static_cast<double>(row.m_calls);
        case Style::eMean:
            return row.m_sum / static_cast<double>(row.m_calls);
        case Style::eLongest:
            break;
    }
    return static_cast<double>(row.m_longest.Duration());
}

}  // namespace timeline
