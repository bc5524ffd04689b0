#include "tests/companion/check_runs.hpp"

#include <algorithm>

namespace check_runs {

std::vector<std::string> findingsOf(const check::Report& report) {
    std::vector<std::string> lines;
    for (const check::Finding& finding : report.findings) {
        std::string line = std::string(finding.kind) + " " + finding.file;
        if (finding.line > 0) line += ":" + std::to_string(finding.line);
        for (const std::int32_t time : finding.times) line += " " + std::to_string(time);
        lines.push_back(line + (finding.endsRun ? "! " : " ") + finding.text);
    }
    return lines;
}

bool saysThatItEnds(const check::Report& report) {
    return std::ranges::any_of(report.findings, &check::Finding::endsRun);
}

} // namespace check_runs
