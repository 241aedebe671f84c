#include <algorithm>

#include "tables.h"
#include "text.h"

namespace timeline {
namespace {

// Texts that hold numbers may all differ; the table must not grow with the file.
constexpr std::size_t c_mostTexts = 10'000;

}  // namespace

void SwallowedTable::Tell(const Message& message) {
    if (!IsSwallowed(message)) {
        return;
    }
    std::string text = std::string(KindName(message.m_kind)) + ": " + OneLine(message.m_text);
    if (!message.m_place.empty()) {
        text += ", in " + PlaceName(message.m_place, m_name);
    }
    if (m_rows.size() >= c_mostTexts && m_rows.count(text) == 0) {
        text = "other texts";
    }
    Row& row = m_rows[text];
    if (row.m_count++ == 0) {
        row.m_first = message.m_moment;
    }
    row.m_last = message.m_moment;
}

void SwallowedTable::EndRun(const Run& run, Output& output) {
    std::vector<std::pair<std::string, Row>> rows(m_rows.begin(), m_rows.end());
    std::stable_sort(rows.begin(), rows.end(), [](const auto& left, const auto& right) {
        return left.second.m_count > right.second.m_count;
    });
    if (!rows.empty()) {
        const std::size_t width = WhenText(run.m_end, run).size();
        output << "Swallowed\n     count  " << Left("first", width) << "  " << Left("last", width)
               << "  what\n";
    }
    for (const auto& [text, row] : rows) {
        output << Right(std::to_string(row.m_count), 10) << "  " << WhenText(row.m_first, run)
               << "  " << WhenText(row.m_last, run) << "  " << text << "\n";
    }
    m_rows.clear();
}

}  // namespace timeline
