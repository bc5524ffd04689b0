#include "companion/check/check.hpp"

#include "companion/screen/screen.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <set>

namespace check {

using screen::printable;
using screen::widthOf;

namespace {

constexpr std::size_t maximumColumns = 60; // output times that are shown with a sign each
constexpr std::size_t lineWidth = 100;
constexpr std::size_t maximumNameWidth = 30; // characters of the names of a variable in the table

std::string padded(std::string text, std::size_t width) {
    const std::size_t own = widthOf(text);
    return own < width ? text.append(width - own, ' ') : text;
}

std::string rightAligned(const std::string& text, std::size_t width) {
    const std::size_t own = widthOf(text);
    return own < width ? std::string(width - own, ' ') + text : text;
}

// With a comma after each three digits from the right.
std::string grouped(std::int64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3; at -= 3) digits.insert(at - 3, ",");
    return digits;
}

std::string sizeText(std::int64_t bytes) {
    constexpr std::array<const char*, 5> units{"bytes", "kB", "MB", "GB", "TB"};
    if (bytes < 10000) return grouped(bytes) + " " + units[0];
    auto size = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; size >= 999.5 && unit + 1 < units.size(); ++unit) size /= 1000;
    char text[32];
    std::snprintf(text, sizeof text, size < 9.95 ? "%.1f %s" : "%.0f %s", size, units[unit]);
    return text;
}

std::vector<std::string> printableAll(const std::vector<std::string>& names) {
    std::vector<std::string> list;
    for (const std::string& name : names) list.push_back(printable(name));
    return list;
}

// Words in lines of at most `lineWidth` characters, each after two blanks.
std::string wrapped(const std::vector<std::string>& words) {
    std::string out, line;
    for (const std::string& word : words) {
        if (!line.empty() && widthOf(line) + 2 + widthOf(word) > lineWidth) {
            out += line + '\n';
            line.clear();
        }
        line += "  " + word;
    }
    return line.empty() ? out : out + line + '\n';
}

std::string problemText(const Report& report) {
    std::string out = "Problem " + printable(report.prefix);
    if (report.folder != ".") out += " in " + printable(report.folder);
    if (!report.title.empty()) out += ": " + printable(report.title);
    out += '\n';
    if (report.controlFile.empty())
        return out + "No control file: all variables of all domains, as text\n";
    out += "\nRequests in " + printable(report.controlFile) + ":\n";
    if (report.selections.empty()) out += "  none, so no domain is written\n";
    bool inBlock = false;
    for (const Selection& selection : report.selections) {
        inBlock = selection.beginsBlock || inBlock;
        const char* indent = inBlock && !selection.beginsBlock ? "    " : "  ";
        out += indent + printable(selection.text) + '\n';
    }
    return out;
}

std::string timesList(const Report& report) {
    constexpr std::size_t most = 12, ends = 3;
    const auto count = report.times.size();
    const auto written = std::ranges::count(report.times, true, &TimeReport::isWritten);
    std::string out =
        "\n" + std::to_string(count) + (count == 1 ? " output time" : " output times");
    if (written != std::ssize(report.times))
        out += ", " + std::to_string(written) + " in the time window";
    std::vector<std::string> words;
    for (std::size_t t = 0; t < count; ++t) {
        if (count > most && t == ends) {
            words.emplace_back("...");
            t = count - ends;
        }
        const TimeReport& time = report.times[t];
        const std::string word = time.suffix + ": " + printable(time.text);
        words.push_back(time.isWritten ? word : "(" + word + ")");
    }
    return out + (words.empty() ? "" : ":") + "\n" + wrapped(words);
}

std::string countText(std::int64_t written, std::int64_t all, bool isWritten) {
    if (!isWritten || written == all) return grouped(all);
    return grouped(written) + " of " + grouped(all);
}

std::string domainsTable(const Report& report) {
    std::vector<std::array<std::string, 6>> rows{
        {"Domain", "Nodes", "Elements", "Output times", "Size", "Plot file"}};
    for (const DomainReport& d : report.domains) {
        const bool hasFile = !d.dataSet.empty();
        const std::string shared = d.ownNodes ? "" : ", shares the nodes of pm";
        rows.push_back({d.tag, countText(d.writtenNodes, d.nodes, hasFile),
                        countText(d.writtenElements, d.elements, hasFile),
                        hasFile ? std::to_string(d.zones) : "",
                        hasFile ? (d.bytesAreExact ? "" : "about ") + sizeText(d.bytes) : "",
                        (hasFile ? printable(d.dataSet) : d.remark) + shared});
    }
    for (const PlotReport& plot : report.plots)
        rows.push_back({"", grouped(plot.nodes), grouped(plot.elements),
                        std::to_string(plot.zones) + (plot.zones == 1 ? " zone" : " zones"),
                        sizeText(plot.bytes), printable(plot.file)});
    std::array<std::size_t, 6> widths{};
    for (const auto& row : rows)
        for (std::size_t c = 0; c < row.size(); ++c)
            widths[c] = std::max(widths[c], widthOf(row[c]));
    std::string out = "\n";
    for (const auto& row : rows) {
        std::string line = padded(row[0], widths[0]);
        for (std::size_t c = 1; c + 1 < row.size(); ++c)
            line += "  " + rightAligned(row[c], widths[c]);
        out += line + "  " + row.back() + '\n';
    }
    return out;
}

// The indices of the output times above the signs: tens, then ones.
std::string columnHeads(const Report& report, std::size_t width) {
    std::string tens, ones;
    for (const TimeReport& time : report.times) {
        const bool showsTens = time.index % 10 == 0 || &time == &report.times.front();
        tens += showsTens && time.index >= 10 ? static_cast<char>('0' + time.index / 10 % 10) : ' ';
        ones += static_cast<char>('0' + time.index % 10);
    }
    const std::string begin(width, ' ');
    const bool hasTens = tens.find_first_not_of(' ') != std::string::npos;
    return (hasTens ? begin + tens + '\n' : "") + begin + ones + '\n';
}

std::string signsOf(const VariableReport& variable) {
    std::string signs;
    for (const CellState state : variable.cells) signs += wordOf(state).sign;
    return signs;
}

// The output times on less than a line. The report as JSON has all of them.
std::string timesText(const std::vector<std::int32_t>& times) {
    const std::string all = rangesText(times);
    if (all.size() <= lineWidth) return all;
    return all.substr(0, all.rfind(", ", lineWidth - 20)) + ", ... (" +
           std::to_string(times.size()) + " in all)";
}

// For many output times: each state with its output times, but for those not in the plot file.
std::string statesOf(const Report& report, const VariableReport& variable) {
    std::string text;
    for (int state = 1; state <= static_cast<int>(CellState::unreadable); ++state) {
        std::vector<std::int32_t> times;
        for (std::size_t t = 0; t < variable.cells.size(); ++t)
            if (static_cast<int>(variable.cells[t]) == state)
                times.push_back(report.times[t].index);
        if (times.empty()) continue;
        const std::string word(wordOf(static_cast<CellState>(state)).word);
        text += (text.empty() ? "" : "; ") + word + " " + timesText(times);
    }
    return text;
}

std::string variablesTable(const Report& report, const DomainReport& domain) {
    const bool withSigns = report.times.size() <= maximumColumns;
    std::size_t names = 0;
    for (const VariableReport& variable : domain.variables)
        names = std::max(names, widthOf(joined(printableAll(variable.names))));
    names = std::min(names, maximumNameWidth);
    constexpr std::size_t typeWidth = 16;
    std::string out = "\nVariables of " + domain.tag + '\n';
    if (withSigns) out += columnHeads(report, 2 + names + 2 + typeWidth);
    for (const VariableReport& variable : domain.variables) {
        std::string name = joined(printableAll(variable.names));
        if (widthOf(name) > names) name += "\n" + std::string(names + 2, ' ');
        const std::string type = variable.type + (variable.ofElements ? " element" : " node");
        out += "  " + padded(name, names) + "  " + padded(type, typeWidth) +
               (withSigns ? signsOf(variable) : statesOf(report, variable)) + '\n';
    }
    return out;
}

std::string legend(const Report& report) {
    std::set<CellState> used;
    for (const DomainReport& domain : report.domains)
        for (const VariableReport& variable : domain.variables)
            used.insert(variable.cells.begin(), variable.cells.end());
    used.erase(CellState::notRead);
    std::string out;
    for (const CellState state : used)
        out += (out.empty() ? "\n" : "   ") + std::string(1, wordOf(state).sign) + " " +
               std::string(wordOf(state).word);
    return out.empty() || report.times.size() > maximumColumns ? "" : out + '\n';
}

std::string locationOf(const Finding& finding) {
    std::string location = printable(finding.file);
    if (finding.line > 0) location += ":" + std::to_string(finding.line);
    if (finding.times.empty()) return location.empty() ? "problem" : location;
    const std::string times =
        (finding.times.size() == 1 ? "time " : "times ") + timesText(finding.times);
    return location.empty() ? times : times + ": " + location;
}

std::string findingsText(const Report& report) {
    const auto count = std::ssize(report.findings);
    if (count == 0) return "\nNo findings.\n";
    const auto ends = std::ranges::count(report.findings, true, &Finding::endsRun);
    std::string out = "\n" + std::to_string(count) + (count == 1 ? " finding" : " findings");
    if (ends > 0) out += ", of which " + std::to_string(ends) + " would end a run";
    out += ":\n";
    for (const Finding& finding : report.findings)
        out += "  " + locationOf(finding) + ": " + printable(finding.text) +
               (finding.endsRun ? ". The run would end here.\n" : ".\n");
    return out;
}

// The columns of tables are padded, also the last one.
std::string withoutTrailingBlanks(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c == '\n')
            while (out.ends_with(' ')) out.pop_back();
        out += c;
    }
    return out;
}

} // namespace

std::string textOf(const Report& report) {
    std::string out = problemText(report) + timesList(report) + domainsTable(report);
    for (const DomainReport& domain : report.domains)
        if (!domain.variables.empty()) out += variablesTable(report, domain);
    out += legend(report);
    if (!report.unreadFiles.empty())
        out +=
            "\nResult files that no variable reads:\n" + wrapped(printableAll(report.unreadFiles));
    out += "\nThe plot files take " + sizeText(report.bytesNeeded);
    if (report.bytesFree >= 0) out += "; " + sizeText(report.bytesFree) + " are free";
    return withoutTrailingBlanks(out + ".\n" + findingsText(report));
}

} // namespace check
