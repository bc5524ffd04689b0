#include "companion/check/control.hpp"

#include "companion/check/control_lines.hpp"
#include "companion/check/known_lines.hpp"
#include "companion/check/nearest_words.hpp"
#include "meshrake/model/file_names.hpp"
#include "meshrake/model/run_state.hpp"
#include "meshrake/plot_control/control_reading.hpp"
#include "meshrake/plot_control/control_source.hpp"
#include "meshrake/plot_control/control_template.hpp"
#include "meshrake/plot_data/data_set.hpp"
#include "tvncommon/io/file_units.hpp"
#include "tvncommon/io/io_layer.hpp"
#include "tvncommon/text/StringHelpers.hpp"
#include "tvncommon/text/free_form.hpp"

#include <algorithm>

namespace check {

using model::Domain;
using plot_control::LineUse;

namespace {

// The control text of the run that is examined. The functions of the source have no other argument.
struct ControlText {
    std::vector<ControlLine> lines;
    std::size_t next = 0;       // line to read next
    bool inInstruction = false; // the lines that are read hold values
    int compared = 0;           // lines for which the nearest instruction was searched
};
ControlText text;

int readLine(std::string& line) {
    if (text.next == text.lines.size()) return io_layer::endOfFile;
    ControlLine& read = text.lines[text.next++];
    read.isValue |= text.inInstruction;
    line = read.text;
    return io_layer::ok;
}

void rewind() {
    text.next = 0;
}

void noteUse(LineUse use) {
    text.lines[text.next - 1].use = use;
    text.inInstruction = use == LineUse::instruction;
}

void valuesRead() {
    text.inInstruction = false;
}

constexpr plot_control::ControlSource source{readLine, rewind, noteUse, valuesRead};

void addFinding(Work& work, std::string_view kind, const ControlLine& line, std::string sentence,
                bool endsRun = false) {
    work.report.findings.push_back({.kind = kind,
                                    .file = line.file,
                                    .line = line.number,
                                    .text = std::move(sentence),
                                    .endsRun = endsRun});
}

std::string quoted(std::string_view words) {
    return "\"" + std::string(words) + "\"";
}

// Continues after a value that could not be read. If the value is missing, its line is read again
// as an instruction. Otherwise further lines of values are skipped.
void passValues() {
    const std::size_t at = text.next - 1;
    if (text.lines[at].isValue && known_lines::isKnown(text.lines[at].folded)) {
        text.lines[at].isValue = false;
        text.next = at;
        return;
    }
    double value = 0;
    for (; text.next < text.lines.size(); ++text.next) {
        if (free_form::readReal(text.lines[text.next].text, value) != io_layer::ok) return;
        text.lines[text.next].isValue = true;
    }
}

// The instruction whose values the line at `at` should have.
std::string instructionBefore(std::size_t at) {
    while (at > 0 && text.lines[at].use != LineUse::instruction) --at;
    return quoted(text.lines[at].text);
}

// What is wrong with the values that were read last.
std::string valueText(const std::string& message) {
    if (!message.starts_with("Error reading")) return message;
    const std::size_t at = text.next - 1;
    const std::string instruction = instructionBefore(at);
    if (!text.lines[at].isValue) return "the values of " + instruction + " are missing";
    return quoted(text.lines[at].text) + " is not a value of " + instruction;
}

// Calls `read`, and `rest` for the rest of its section after each value that cannot be read.
void readSection(Work& work, const std::function<void()>& read, const std::function<void()>& rest) {
    for (bool first = true;; first = false) {
        text.inInstruction = false;
        const Outcome outcome = attempt(first ? read : rest);
        // A failure that is not one of a value comes after the section.
        if (!outcome.ended || !text.inInstruction || text.next == 0)
            return addMessages(work, outcome, {.kind = "control_file"});
        addFinding(work, "value", text.lines[text.next - 1], valueText(outcome.messages.back()),
                   true);
        passValues();
    }
}

// "; the nearest instruction is ..." or nothing. A line cannot end with a comment, so that a line
// with one is compared without it. A file of another kind may have any number of
// lines, so that not all of them are compared with all instructions.
std::string nearestText(const std::string& folded, const std::vector<std::string>& lines) {
    constexpr int mostCompared = 1000;
    if (++text.compared > mostCompared) return "";
    const std::string_view words = std::string_view(folded).substr(0, folded.find('!'));
    const std::string found = nearest(StringHelpers::trimRight(words), lines);
    return found.empty() ? "" : "; the nearest instruction is " + quoted(found);
}

void reportUnrecognized(Work& work, const ControlLine& line, const std::string& why,
                        const std::vector<std::string>& known) {
    const std::string place = known_lines::properSection(line.folded);
    addFinding(work, "unknown_instruction", line,
               quoted(line.text) + " " + why + " and is skipped" +
                   (place.empty() ? nearestText(line.folded, known) : ": " + place));
}

bool isInProblem(Work& work, std::string_view tag) {
    for (const Domain* domain : run::processingOrder(work.domains))
        if (domain->exists && domain->name == tag) return true;
    return false;
}

bool isDamaged(const Work& work, std::string_view tag) {
    return std::ranges::find(work.report.domains, tag, &DomainReport::tag) !=
           work.report.domains.end();
}

void reportSkippedBlock(Work& work, const ControlLine& line, std::string_view tag) {
    if (isInProblem(work, tag))
        addFinding(work, "second_block", line,
                   "an earlier block is that of the domain, so this one is skipped");
    else if (!isDamaged(work, tag))
        addFinding(work, "no_such_domain", line,
                   "the problem has no domain " + std::string(tag) + ", so the block is skipped");
}

struct SectionTexts {
    std::string name;
    const std::vector<std::string>& known;
    bool isFirst = false;
};

// Reports the lines of a section from `begin` on that have no effect, and that it has no end.
void reportSection(Work& work, std::size_t begin, const SectionTexts& section) {
    for (std::size_t i = begin; i < text.lines.size(); ++i) {
        const ControlLine& line = text.lines[i];
        if (line.isValue || line.isAnywhere) continue;
        if (line.use == LineUse::sectionEnd) return;
        if (const std::string_view tag = known_lines::blockTag(line.folded); !tag.empty()) {
            addFinding(work, "no_end", line,
                       section.name + " has no \"end\" before this line" +
                           (section.isFirst ? ", so the block is not found" : ""));
            if (!section.isFirst && !isInProblem(work, tag)) reportSkippedBlock(work, line, tag);
            return;
        }
        if (line.use == LineUse::unrecognized)
            reportUnrecognized(work, line, "is not an instruction of " + section.name,
                               section.known);
    }
    if (text.lines.empty()) return;
    addFinding(work, "no_end", text.lines.back(),
               section.name + " has no \"end\"" +
                   (section.isFirst ? ", so no domain is written" : ""));
}

void readFirstSection(Work& work) {
    readSection(work, plot_control::readPlotControlInit, plot_control::readPlotControlInit);
    reportSection(work, 0, {"the first section", known_lines::ofFirstSection(), true});
}

// Index of the line after the first section.
std::size_t afterFirstSection() {
    const auto ends = [](const ControlLine& line) { return line.use == LineUse::sectionEnd; };
    const auto end = std::ranges::find_if(text.lines, ends);
    return static_cast<std::size_t>(end - text.lines.begin()) + (end == text.lines.end() ? 0 : 1);
}

void readAnywhere(Work& work) {
    Domain& addition = work.domains.addition;
    readSection(
        work, [&] { plot_control::readPlotControl(addition); },
        [&] { plot_control::readRest(addition); });
    for (std::size_t i = afterFirstSection(); i < text.lines.size(); ++i)
        text.lines[i].isAnywhere =
            text.lines[i].use == LineUse::instruction || text.lines[i].isValue;
}

// The block that a run reads is the first one.
std::size_t blockBegin(const Domain& domain) {
    const auto begins = [&](const ControlLine& line) {
        return line.use == LineUse::blockBegin && line.folded == domain.writeDomain.label;
    };
    return static_cast<std::size_t>(std::ranges::find_if(text.lines, begins) - text.lines.begin());
}

void readBlockOf(Work& work, Domain& domain) {
    readSection(
        work, [&] { plot_control::readPlotControl(domain); },
        [&] { plot_control::readRest(domain); });
    const std::size_t begin = blockBegin(domain);
    if (!domain.exists || begin == text.lines.size()) return;
    reportSection(work, begin + 1,
                  {"the block " + quoted(domain.writeDomain.label),
                   known_lines::ofBlock(domain.name), false});
}

// Lines after the first section that no reader used.
void reportOutside(Work& work) {
    bool inSkippedBlock = false;
    for (std::size_t i = afterFirstSection(); i < text.lines.size(); ++i) {
        const ControlLine& line = text.lines[i];
        if (line.use == LineUse::blockBegin) inSkippedBlock = false;
        if (line.use || line.isValue) continue;
        const bool isTimeSeries = line.folded == plot_control::timeSeriesLine;
        if (const std::string_view tag = known_lines::blockTag(line.folded); !tag.empty())
            reportSkippedBlock(work, line, tag);
        else if (!inSkippedBlock && !isTimeSeries && !line.folded.starts_with("end"))
            reportUnrecognized(work, line, "is outside of all blocks", known_lines::ofRest());
        // A misspelt first line of a block is reported alone.
        if (line.folded.starts_with("write ")) inSkippedBlock = true;
        if (line.folded.starts_with("end")) inSkippedBlock = false;
    }
}

// The lines that have an effect, each with its values.
void listSelections(Work& work) {
    std::vector<Selection>& selections = work.report.selections;
    for (const ControlLine& line : text.lines) {
        if (line.isValue) {
            if (!selections.empty()) selections.back().text += "  " + line.text;
        } else if (line.use == LineUse::instruction || line.use == LineUse::option ||
                   line.use == LineUse::blockBegin) {
            selections.push_back({line.text, line.use == LineUse::blockBegin});
            work.requestLines.try_emplace(line.folded, FileLine{line.file, line.number});
        }
    }
}

} // namespace

void readControlFile(Work& work) {
    const std::string name = model::fileName(model::run.problemPrefix + ".plot.control");
    tryStep(work, {.kind = "control_file"},
            [&] { model::run.controlFileExists = file_units::exists(name); });
    if (model::run.controlFileExists) {
        work.report.controlFile = name;
        text = {};
        const auto before = std::ssize(work.report.findings);
        text.lines = readControlLines(work, name);
        if (text.lines.empty() && std::ssize(work.report.findings) == before)
            work.report.findings.push_back(
                {.kind = "no_end",
                 .file = name,
                 .text = "the file has no instruction, so no domain is written"});
        model::run.controlSource = &source;
        readFirstSection(work);
        readAnywhere(work);
        for (Domain* domain : run::processingOrder(work.domains)) readBlockOf(work, *domain);
        reportOutside(work);
        listSelections(work);
        std::ranges::stable_sort(work.report.findings.begin() + before, work.report.findings.end(),
                                 {}, &Finding::line);
        model::run.controlSource = nullptr;
    }
    plot_data::selectWriter();
    model::run.pmPassRequired = run::pmNeededByCommonNodeDomains(work.domains);
}

} // namespace check
