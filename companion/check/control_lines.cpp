#include "companion/check/control_lines.hpp"

#include "meshrake/plot_control/control_reading.hpp"
#include "meshrake/plot_control/control_text.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/text/StringHelpers.hpp"

namespace check {

namespace {

// Lower case and 60 characters, as the reader compares it.
std::string foldedOf(std::string_view line) {
    std::string folded(StringHelpers::cut(line, plot_control::lineLimit));
    StringHelpers::lcase(folded);
    return folded;
}

std::vector<ControlLine> linesOf(Work& work, const std::string& file) {
    std::vector<ControlLine> lines;
    int number = 0;
    tryStep(work, {.kind = "control_file", .file = file}, [&] {
        const int unit = file_units::openTextRead(file);
        for (std::string line; plot_control::nextControlLine(unit, line, number);)
            lines.push_back({file, number, line, foldedOf(line), {}, false});
        file_units::freeUnit(unit);
    });
    return lines;
}

} // namespace

std::vector<ControlLine> readControlLines(Work& work, const std::string& file) {
    std::vector<ControlLine> all;
    for (ControlLine& line : linesOf(work, file)) {
        if (!plot_control::isInclude(line.text)) {
            all.push_back(std::move(line));
            continue;
        }
        const std::string name = plot_control::includedFile(line.text);
        bool exists = false;
        const Outcome outcome = attempt([&] { exists = file_units::exists(name); });
        if (exists) {
            const std::vector<ControlLine> included = linesOf(work, name);
            all.insert(all.end(), included.begin(), included.end());
            continue;
        }
        work.report.findings.push_back({.kind = "include",
                                        .file = line.file,
                                        .line = line.number,
                                        .text = outcome.ended
                                                    ? outcome.messages.back()
                                                    : "the file \"" + name + "\" does not exist",
                                        .endsRun = true});
    }
    return all;
}

} // namespace check
