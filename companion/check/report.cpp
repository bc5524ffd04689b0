#include "companion/check/report.hpp"

#include "companion/check/work.hpp"

namespace check {

namespace {

// In the order of the enumeration.
constexpr CellWord words[] = {
    {' ', "not in the plot file", "not_written"},
    {'.', "does not change", "constant"},
    {'+', "present", "present"},
    {'-', "missing, the first output time is shown", "missing"},
    {'S', "too short", "too_short"},
    {'H', "malformed header", "malformed_header"},
    {'T', "header names another type", "other_type"},
    {'C', "header names another number of components", "other_components"},
    {'N', "header names another number of values", "other_count"},
    {'X', "cannot be read", "unreadable"}};

} // namespace

const CellWord& wordOf(CellState state) {
    return words[static_cast<std::size_t>(state)];
}

std::string joined(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) list += (list.empty() ? "" : ", ") + name;
    return list;
}

std::string rangesText(const std::vector<std::int32_t>& numbers) {
    std::string text;
    for (std::size_t i = 0; i < numbers.size();) {
        std::size_t last = i;
        while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
        text += (text.empty() ? "" : ", ") + std::to_string(numbers[i]);
        if (last > i) text += (last == i + 1 ? ", " : " to ") + std::to_string(numbers[last]);
        i = last + 1;
    }
    return text;
}

void addMessages(Work& work, const Outcome& outcome, const Finding& finding) {
    for (std::size_t i = 0; i < outcome.messages.size(); ++i) {
        Finding added = finding;
        added.text = outcome.messages[i];
        added.endsRun = outcome.ended && i + 1 == outcome.messages.size();
        work.report.findings.push_back(std::move(added));
    }
}

bool tryStep(Work& work, const Finding& finding, const std::function<void()>& step) {
    const Outcome outcome = attempt(step);
    addMessages(work, outcome, finding);
    return !outcome.ended;
}

} // namespace check
